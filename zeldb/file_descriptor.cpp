#include "zeldb/file_descriptor.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

constexpr mode_t kMode = 0666;  // less the process's mask

}  // namespace

FileDescriptor::FileDescriptor(const std::string& path, int flags)
    : path_(path), descriptor_(open(path.c_str(), flags | O_CLOEXEC, kMode)) {
  if (descriptor_ < 0) {
    fail();
  }
}

FileDescriptor::~FileDescriptor() {
  close(descriptor_);
}

bool FileDescriptor::isRegular() const {
  struct stat status{};
  return fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
}

std::uint64_t FileDescriptor::sizeBytes() const {
  struct stat status{};
  if (fstat(descriptor_, &status) != 0) {
    fail();
  }
  return static_cast<std::uint64_t>(status.st_size);
}

std::string FileDescriptor::read(std::uint64_t at, std::size_t length) const {
  std::string text(length, '\0');
  std::size_t done = 0;
  while (done < length) {
    const ssize_t part =
        pread(descriptor_, &text[done], length - done, static_cast<off_t>(at + done));
    if (part < 0 && errno != EINTR) {
      fail();
    }
    if (part == 0) {
      break;
    }
    done += part > 0 ? static_cast<std::size_t>(part) : 0;
  }
  text.resize(done);
  return text;
}

void FileDescriptor::write(std::uint64_t at, std::string_view text) {
  while (!text.empty()) {
    const ssize_t part = pwrite(descriptor_, text.data(), text.size(), static_cast<off_t>(at));
    if (part < 0 && errno != EINTR) {
      fail();
    }
    const std::size_t written = part > 0 ? static_cast<std::size_t>(part) : 0;
    text.remove_prefix(written);
    at += written;
  }
}

void FileDescriptor::append(std::string_view text) {
  while (!text.empty()) {
    const ssize_t part = ::write(descriptor_, text.data(), text.size());
    if (part < 0 && errno != EINTR) {
      fail();
    }
    text.remove_prefix(part > 0 ? static_cast<std::size_t>(part) : 0);
  }
}

void FileDescriptor::truncate(std::uint64_t length) {
  if (ftruncate(descriptor_, static_cast<off_t>(length)) != 0 ||
      lseek(descriptor_, static_cast<off_t>(length), SEEK_SET) < 0) {
    fail();
  }
}

void FileDescriptor::sync() {
  if (fdatasync(descriptor_) != 0) {
    fail();
  }
}

bool FileDescriptor::lock() {
  return flock(descriptor_, LOCK_EX | LOCK_NB) == 0;
}

// The folder is synced as well: the name is in it.
void FileDescriptor::rename(const std::string& path) {
  sync();
  if (std::rename(path_.c_str(), path.c_str()) != 0) {
    fail();
  }
  path_ = path;
  const std::string folder = std::filesystem::path(path).parent_path().string();
  FileDescriptor(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY).sync();
}

void FileDescriptor::fail() const {
  throw Failure(ExitCode::kFile, fmt::format("{}: {}", path_, std::strerror(errno)));
}

}  // namespace zeldb
