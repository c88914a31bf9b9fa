#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zeldb {

// One field of a record.
struct CsvField {
  std::string text;
  bool empty = false;  // nothing between the delimiters, not even quotes: NULL
};

// One record of texts.
struct CsvRecord {
  std::uint64_t line = 0;  // where it starts, from 1
  std::vector<CsvField> fields;
  std::uint64_t endByte = 0;  // of the file, where the next one starts; 0 when it is no file
  std::uint64_t endLine = 0;  // likewise
};

// Where a load takes its records from.
class RecordSource {
 public:
  virtual ~RecordSource() = default;
  // Puts the next record into `record`, whose storage is used again, and returns true, or returns
  // false at the end. Throws Failure.
  virtual bool next(CsvRecord& record) = 0;
  // The place of a field, to be put before a complaint about it. Fields count from 0.
  virtual std::string place(std::uint64_t line, std::size_t field) const = 0;
  // The records from one line to another, likewise.
  virtual std::string range(std::uint64_t firstLine, std::uint64_t lastLine) const = 0;
  // How far the source has been read, and its whole size (0 when that is not known).
  virtual std::uint64_t bytesRead() const = 0;
  virtual std::uint64_t sizeBytes() const = 0;
};

}  // namespace zeldb
