#pragma once

#include <cstdint>

namespace zeldb {

// A place between two records of a file, and what has become of all records before it.
struct LoadPosition {
  std::uint64_t byte = 0;
  std::uint64_t line = 0;  // of the record behind it, or of blank lines before that
  std::uint64_t committed = 0;
  std::uint64_t rejected = 0;
  std::uint64_t rejectsBytes = 0;  // length of the file that names them

  bool operator==(const LoadPosition&) const = default;
};

}  // namespace zeldb
