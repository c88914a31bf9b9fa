#pragma once

// Numbers in packed values, which need not be aligned and may have their bytes reversed.

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace DataTypes {

inline constexpr std::size_t kPackedLengthBytes = 4;  // before the bytes of a packed binary

namespace detail {

constexpr std::uint16_t reversed(std::uint16_t word) {
  return __builtin_bswap16(word);
}

constexpr std::uint32_t reversed(std::uint32_t word) {
  return __builtin_bswap32(word);
}

constexpr std::uint64_t reversed(std::uint64_t word) {
  return __builtin_bswap64(word);
}

}  // namespace detail

template <class Number>
Number loadPacked(const unsigned char* packed, bool swap) {
  using Short = std::conditional_t<sizeof(Number) == 2, std::uint16_t, std::uint32_t>;
  std::conditional_t<sizeof(Number) == 8, std::uint64_t, Short> word = 0;
  std::memcpy(&word, packed, sizeof word);
  return std::bit_cast<Number>(swap ? detail::reversed(word) : word);
}

inline void storePackedLength(std::uint32_t length, unsigned char* out) {
  for (unsigned i = 0; i < kPackedLengthBytes; ++i)
    out[i] = static_cast<unsigned char>(length >> (24 - 8 * i));
}

}  // namespace DataTypes
