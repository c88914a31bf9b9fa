#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zeldb/record_source.h"

namespace zeldb {

// Reads a CSV file record by record: comma or another delimiter, double quotes, a quote in quotes
// doubled, line ends LF or CRLF, a byte order mark at the start skipped. Blank lines are skipped,
// except below a header of one field, where they are records with an empty field. White space
// around a field belongs to it. What is in memory does not depend on the number of records.
class CsvReader : public RecordSource {
 public:
  // Throws Failure when the file cannot be opened.
  explicit CsvReader(const std::filesystem::path& path, char delimiter = ',');
  ~CsvReader() override;
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  // Throws Failure that names file, line and field when the text is malformed or the file cannot be
  // read.
  bool next(CsvRecord& record) override;

  // Goes on at a place that a record of the same file has ended at. The header must have been
  // read. Throws Failure when the file has no such place.
  void seek(std::uint64_t byte, std::uint64_t line);

  // "FILE:LINE:FIELD"
  std::string place(std::uint64_t line, std::size_t field) const override;
  std::string range(std::uint64_t firstLine, std::uint64_t lastLine) const override;
  std::uint64_t bytesRead() const override { return bytesRead_; }
  // 0 when the file has none, as a pipe.
  std::uint64_t sizeBytes() const override { return sizeBytes_; }

 private:
  struct Parser;
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void readChunk();
  void parseLine(std::string_view text);
  void skipByteOrderMark(std::string_view& chunk);
  [[noreturn]] void failMalformed(const char* reason) const;

  std::filesystem::path path_;
  std::unique_ptr<std::FILE, CloseFile> file_;
  std::unique_ptr<Parser> parser_;
  std::vector<char> buffer_;
  std::uint64_t bytesRead_ = 0;
  std::uint64_t sizeBytes_ = 0;
  bool bomChecked_ = false;
  bool atEnd_ = false;
};

}  // namespace zeldb
