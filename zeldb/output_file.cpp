#include "zeldb/output_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

// Through a link the file it points at is meant, not the link.
std::filesystem::path resolved(const std::filesystem::path& path) {
  std::error_code noTarget;
  const auto target = std::filesystem::canonical(path, noTarget);
  return noTarget ? path : target;
}

bool isPlace(const std::filesystem::path& path) {
  std::error_code unknown;
  return std::filesystem::is_regular_file(path, unknown) || !std::filesystem::exists(path, unknown);
}

// Renaming may reach the disk before the content does.
bool reachesDisk(const std::filesystem::path& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const bool synced = file >= 0 && fsync(file) == 0;
  const int cause = errno;
  if (file >= 0) {
    close(file);
  }
  errno = cause;
  return synced;
}

}  // namespace

OutputFile::OutputFile(const std::filesystem::path& path) : path_(resolved(path)), written_(path_) {
  if (isPlace(path_)) {
    written_.replace_filename(fmt::format(".{}.{}.part", path_.filename().string(), getpid()));
  }
  errno = 0;
  stream_.open(written_, std::ios::binary);
  if (!stream_) {
    fail();
  }
  stream_.exceptions(std::ios::badbit | std::ios::failbit);
}

OutputFile::~OutputFile() {
  if (written_ != path_) {
    std::error_code ignored;
    std::filesystem::remove(written_, ignored);
  }
}

void OutputFile::complete() {
  try {
    stream_.close();
  } catch (const std::ios_base::failure&) {
    fail();
  }
  if (written_ == path_) {
    return;
  }
  if (!reachesDisk(written_) || std::rename(written_.c_str(), path_.c_str()) != 0) {
    fail();
  }
  written_ = path_;
}

void OutputFile::fail() const {
  throw Failure(ExitCode::kFile, fmt::format("{}: {}", path_.string(), std::strerror(errno)));
}

}  // namespace zeldb
