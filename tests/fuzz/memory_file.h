#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "tests/fuzz/fuzz_input.h"

// A file without a place on a disk, for what takes a path.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("fuzz", 0)) { require(descriptor_ >= 0); }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  void write(const std::string& text) {
    require(ftruncate(descriptor_, 0) == 0);
    require(pwrite(descriptor_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()));
  }

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};
