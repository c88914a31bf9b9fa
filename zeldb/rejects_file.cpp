#include "zeldb/rejects_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>

#include "zeldb/csv_writer.h"

namespace zeldb {

RejectsFile::RejectsFile(const std::string& path, std::uint64_t maxErrors)
    : path_(path), maxErrors_(maxErrors), file_(path, std::ios::binary) {
  writeLine("line,sqlstate,reason");
}

void RejectsFile::add(std::uint64_t line, const Failure& failure) {
  std::string text = fmt::format("{},{},", line, failure.state());
  appendCsvField(text, failure.what());
  writeLine(text);
  if (++count_ > maxErrors_) {
    throw Failure(ExitCode::kRowsRejected,
                  fmt::format("{}, more than the {} allowed", summary(), maxErrors_));
  }
}

std::string RejectsFile::summary() const {
  return fmt::format("{} row{} rejected, named in {}", count_, count_ == 1 ? "" : "s", path_);
}

void RejectsFile::writeLine(const std::string& line) {
  if (!(file_ << line << '\n' << std::flush)) {
    throw Failure(ExitCode::kFile, fmt::format("{}: {}", path_, std::strerror(errno)));
  }
}

}  // namespace zeldb
