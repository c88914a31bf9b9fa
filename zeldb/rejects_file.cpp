#include "zeldb/rejects_file.h"

#include <fcntl.h>
#include <fmt/format.h>

#include "zeldb/csv_writer.h"
#include "zeldb/secrets.h"

namespace zeldb {

RejectsFile::RejectsFile(const std::string& path, std::uint64_t maxErrors)
    : path_(path),
      maxErrors_(maxErrors),
      file_(path, O_WRONLY | O_CREAT | O_TRUNC),
      regular_(file_.isRegular()) {
  writeLine("line,sqlstate,reason");
}

RejectsFile::RejectsFile(const std::string& path, std::uint64_t maxErrors, const Mark& mark)
    : path_(path), maxErrors_(maxErrors), file_(path, O_WRONLY), regular_(file_.isRegular()) {
  if (file_.sizeBytes() < mark.bytes) {
    throw Failure(
        ExitCode::kFile,
        fmt::format("{}: the file is shorter than the load that is resumed has left it", path_));
  }
  rewind(mark);
}

void RejectsFile::add(std::uint64_t line, const Failure& failure) {
  std::string text = fmt::format("{},{},", line, failure.state());
  appendCsvField(text, Secrets::masked(failure.what()));
  writeLine(text);
  if (++mark_.rows > maxErrors_) {
    throw Failure(ExitCode::kRowsRejected,
                  fmt::format("{}, more than the {} allowed", summary(), maxErrors_));
  }
}

void RejectsFile::rewind(const Mark& mark) {
  if (regular_) {
    file_.truncate(mark.bytes);
  }
  mark_ = mark;
}

void RejectsFile::sync() {
  if (regular_ && syncedBytes_ != mark_.bytes) {
    file_.sync();
    syncedBytes_ = mark_.bytes;
  }
}

std::string RejectsFile::summary() const {
  return fmt::format("{} row{} rejected, named in {}", mark_.rows, mark_.rows == 1 ? "" : "s",
                     path_);
}

void RejectsFile::writeLine(const std::string& line) {
  file_.append(line + '\n');
  mark_.bytes += line.size() + 1;
}

}  // namespace zeldb
