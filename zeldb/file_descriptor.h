#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zeldb {

// An open file, written without a buffer. All operations throw Failure with the file's name and
// the system's reason.
class FileDescriptor {
 public:
  // `flags` as for open(2).
  FileDescriptor(const std::string& path, int flags);
  ~FileDescriptor();
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  bool isRegular() const;
  std::uint64_t sizeBytes() const;
  // What is there of `length` bytes from a place on.
  std::string read(std::uint64_t at, std::size_t length) const;
  void write(std::uint64_t at, std::string_view text);
  // Behind what was written or cut last.
  void append(std::string_view text);
  void truncate(std::uint64_t length);
  // Returns when everything is on the disk.
  void sync();
  // False when another process holds the file; it is held until it is closed.
  bool lock();
  // Gives the file, with all that is in it, another name in the same folder.
  void rename(const std::string& path);

 private:
  [[noreturn]] void fail() const;

  std::string path_;
  int descriptor_;
};

}  // namespace zeldb
