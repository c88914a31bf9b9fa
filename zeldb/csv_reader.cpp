#include "zeldb/csv_reader.h"

#include <csv.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <utility>

#include "zeldb/failure.h"
#include "zeldb/interrupt.h"

namespace zeldb {
namespace {

constexpr std::size_t kChunkBytes = 65536;
// A quote that is never closed must not take the whole file into memory.
constexpr std::uint64_t kMaxRecordBytes = std::uint64_t{256} << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

// The parser calls back for every field and every line end; what a chunk completes waits in
// `ready`.
struct CsvReader::Parser {
  csv_parser csv{};
  std::deque<CsvRecord> ready;   // complete records, oldest first
  std::vector<CsvRecord> spare;  // handed out before: their storage is used again
  CsvRecord open;                // the record being read
  std::size_t openFields = 0;    // its fields so far
  std::uint64_t line = 1;        // of the next byte
  std::uint64_t byte = 0;        // of the file, behind what has been parsed
  std::uint64_t recordByte = 0;  // where the last complete record ended
  int lastLineEnd = 0;
  std::size_t headerFields = 0;

  explicit Parser(char delimiter) {
    csv_init(&csv, CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL | CSV_EMPTY_IS_NULL);
    csv_set_delim(&csv, static_cast<unsigned char>(delimiter));
    csv_set_space_func(&csv, [](unsigned char) { return 0; });
  }
  ~Parser() { csv_free(&csv); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  void onField(const char* text, std::size_t length) {
    if (openFields == 0) {
      open.line = line;
    }
    if (openFields == open.fields.size()) {
      open.fields.emplace_back();
    }
    CsvField& field = open.fields[openFields++];
    field.empty = text == nullptr;
    field.text.assign(text != nullptr ? text : "", length);
    line += static_cast<std::uint64_t>(std::count(field.text.begin(), field.text.end(), '\n'));
    lastLineEnd = 0;
  }

  // `end` is the character that ends the line, or -1 at the end of the file.
  void onLineEnd(int end) {
    const bool secondOfPair = end == '\n' && lastLineEnd == '\r';
    lastLineEnd = end;
    if (!secondOfPair) {
      // Where rows have one field, a blank line is a row of which that field is empty.
      if (openFields == 0 && headerFields == 1 && end >= 0) {
        onField(nullptr, 0);
        lastLineEnd = end;
      }
      ++line;
      completeRecord();
    }
  }

  void completeRecord() {
    if (openFields > 0) {
      headerFields = headerFields == 0 ? openFields : headerFields;
      open.fields.resize(openFields);
      open.endByte = byte;
      open.endLine = line;
      ready.push_back(std::move(open));
      openFields = 0;
      open = CsvRecord();
      if (!spare.empty()) {
        open = std::move(spare.back());
        spare.pop_back();
      }
    }
    recordByte = byte;
  }

  void handOut(CsvRecord& record) {
    std::swap(record, ready.front());
    spare.push_back(std::move(ready.front()));
    ready.pop_front();
  }

  static void fieldCallback(void* text, std::size_t length, void* self) {
    static_cast<Parser*>(self)->onField(static_cast<const char*>(text), length);
  }
  static void lineCallback(int end, void* self) { static_cast<Parser*>(self)->onLineEnd(end); }
};

CsvReader::CsvReader(const std::filesystem::path& path, char delimiter)
    : path_(path),
      file_(std::fopen(path.c_str(), "rb")),
      parser_(std::make_unique<Parser>(delimiter)),
      buffer_(kChunkBytes) {
  if (!file_ || std::filesystem::is_directory(path)) {
    const int cause = file_ ? EISDIR : errno;
    throw Failure(ExitCode::kFile, fmt::format("{}: {}", path.string(), std::strerror(cause)));
  }
  std::error_code noSize;
  const auto size = std::filesystem::file_size(path, noSize);
  sizeBytes_ = noSize ? 0 : size;
}

CsvReader::~CsvReader() = default;

bool CsvReader::next(CsvRecord& record) {
  while (parser_->ready.empty() && !atEnd_) {
    readChunk();
  }
  if (parser_->ready.empty()) {
    return false;
  }
  parser_->handOut(record);
  return true;
}

void CsvReader::seek(std::uint64_t byte, std::uint64_t line) {
  if (byte == 0 || byte > sizeBytes_ ||
      lseek(fileno(file_.get()), static_cast<off_t>(byte - 1), SEEK_SET) < 0) {
    throw Failure(ExitCode::kFile,
                  fmt::format("{}: there is no byte {} to go on at", path_.string(), byte));
  }
  Parser& old = *parser_;
  auto parser = std::make_unique<Parser>(static_cast<char>(old.csv.delim_char));
  parser->headerFields = old.headerFields;
  parser->line = line;
  parser->byte = parser->recordByte = bytesRead_ = byte;
  // A record may have ended between the two characters of a line's end.
  char before = 0;
  parser->lastLineEnd = read(fileno(file_.get()), &before, 1) == 1 ? before : 0;
  parser_ = std::move(parser);
  bomChecked_ = true;
  atEnd_ = false;
}

void CsvReader::readChunk() {
  Parser& parser = *parser_;
  // As much as there is: a pipe's writer may pause.
  const ssize_t got = read(fileno(file_.get()), buffer_.data(), buffer_.size());
  if (got < 0) {
    const int cause = errno;
    Interrupt::check();
    if (cause == EINTR) {
      return;
    }
    throw Failure(ExitCode::kFile, fmt::format("{}: {}", path_.string(), std::strerror(cause)));
  }
  const auto length = static_cast<std::size_t>(got);
  std::string_view chunk(buffer_.data(), length);
  skipByteOrderMark(chunk);
  bytesRead_ += length;
  while (!chunk.empty()) {
    const std::size_t end = std::min(chunk.find('\n'), chunk.size() - 1) + 1;
    parseLine(chunk.substr(0, end));
    chunk.remove_prefix(end);
  }
  if (parser.byte - parser.recordByte > kMaxRecordBytes) {
    failMalformed("a record of more than 256 MiB; is a quote not closed?");
  }
  if (length == 0) {
    atEnd_ = true;
    if (csv_fini(&parser.csv, Parser::fieldCallback, Parser::lineCallback, &parser) != 0) {
      failMalformed("the file ends within quotes");
    }
  }
}

// The parser does not tell where in a text a record is complete, so that it gets at most the end of
// one line at a time. The text has a line feed at its end at most.
void CsvReader::parseLine(std::string_view text) {
  Parser& parser = *parser_;
  while (!text.empty()) {
    std::size_t end = std::min(text.find('\r'), text.size() - 1) + 1;
    end += text.substr(end) == "\n" ? 1 : 0;
    parser.byte += end;
    if (csv_parse(&parser.csv, text.data(), end, Parser::fieldCallback, Parser::lineCallback,
                  &parser) != end) {
      failMalformed("a quote in a field that is not quoted, or text behind a closing quote");
    }
    text.remove_prefix(end);
  }
}

void CsvReader::skipByteOrderMark(std::string_view& chunk) {
  if (!bomChecked_ && chunk.starts_with(kByteOrderMark)) {
    chunk.remove_prefix(kByteOrderMark.size());
    parser_->byte += kByteOrderMark.size();
  }
  bomChecked_ = true;
}

void CsvReader::failMalformed(const char* reason) const {
  throw Failure(ExitCode::kFile,
                fmt::format("{}: {}", place(parser_->line, parser_->openFields), reason));
}

std::string CsvReader::place(std::uint64_t line, std::size_t field) const {
  return fmt::format("{}:{}:{}", path_.string(), line, field + 1);
}

std::string CsvReader::range(std::uint64_t firstLine, std::uint64_t lastLine) const {
  return fmt::format("{}: rows of lines {} to {}", place(firstLine, 0), firstLine, lastLine);
}

}  // namespace zeldb
