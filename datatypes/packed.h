#pragma once

// Numbers in packed values, which need not be aligned and may have their bytes reversed.

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace DataTypes {

inline constexpr std::size_t kPackedLengthBytes = 4;  // before the bytes of a packed binary

template <class Number>
Number loadPacked(const unsigned char* packed, bool swap) {
  unsigned char bytes[sizeof(Number)];
  std::memcpy(bytes, packed, sizeof bytes);
  if (swap) std::reverse(bytes, bytes + sizeof bytes);
  Number number;
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

inline void storePackedLength(std::uint32_t length, unsigned char* out) {
  for (unsigned i = 0; i < kPackedLengthBytes; ++i)
    out[i] = static_cast<unsigned char>(length >> (24 - 8 * i));
}

}  // namespace DataTypes
