#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zeldb {

// One field of a CSV record.
struct CsvField {
  std::string text;
  bool empty = false;  // nothing between the delimiters, not even quotes
};

// One record of a CSV file.
struct CsvRecord {
  std::uint64_t line = 0;  // where it starts, from 1
  std::vector<CsvField> fields;
};

// Reads a CSV file record by record: comma, double quotes, a quote in quotes doubled, line ends LF
// or CRLF, a byte order mark at the start skipped. Blank lines are skipped, except below a header
// of one field, where they are records with an empty field. White space around a field belongs to
// it. What is in memory does not depend on the number of records.
class CsvReader {
 public:
  // Throws Failure when the file cannot be opened.
  explicit CsvReader(const std::filesystem::path& path);
  ~CsvReader();
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  // The next record, valid until the next call, or null at the end. Throws Failure that names file,
  // line and field when the text is malformed or the file cannot be read.
  const CsvRecord* next();

  const std::filesystem::path& path() const { return path_; }
  // How far the file has been read, and its whole size (0 when it has none, as a pipe).
  std::uint64_t bytesRead() const { return bytesRead_; }
  std::uint64_t sizeBytes() const { return sizeBytes_; }

 private:
  struct Parser;
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void readChunk();
  void skipByteOrderMark(std::string_view& chunk) const;
  [[noreturn]] void failMalformed(const char* reason) const;

  std::filesystem::path path_;
  std::unique_ptr<std::FILE, CloseFile> file_;
  std::unique_ptr<Parser> parser_;
  std::vector<char> buffer_;
  std::uint64_t bytesRead_ = 0;
  std::uint64_t sizeBytes_ = 0;
  bool atEnd_ = false;
};

}  // namespace zeldb
