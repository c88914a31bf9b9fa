#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace DataTypes {

inline constexpr std::size_t kLargePageBytes = std::size_t{2} << 20;

// What preferLargePages does for a long value; out of the way of the short ones.
[[gnu::cold, gnu::noinline]] inline void* adviseLargePages(void* memory, std::size_t bytes) {
  const auto begin = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t first = (begin + kLargePageBytes - 1) / kLargePageBytes * kLargePageBytes;
  const std::uintptr_t last = (begin + bytes) / kLargePageBytes * kLargePageBytes;
  auto* const pages = static_cast<char*>(memory) + (first - begin);
  if (first < last) madvise(pages, last - first, MADV_HUGEPAGE);
  return memory;
}

// Asks the system to back with large pages, where it has them, memory that a long value is about to
// fill: the page faults, one for 2 MB instead of 512, are most of what such a value costs. Only a
// wish, for memory that is not moved again: moving takes large pages apart. Bytes, in any
// alignment; less than two large pages are left as they are. Gives the memory back.
inline void* preferLargePages(void* memory, std::size_t bytes) {
  return bytes < 2 * kLargePageBytes ? memory : adviseLargePages(memory, bytes);
}

}  // namespace DataTypes
