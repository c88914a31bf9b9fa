#pragma once

// Decimal digits written two at a time, without a terminator.

#include <array>
#include <cstdint>
#include <cstring>

namespace DataTypes {

namespace detail {

// "00" to "99".
inline constexpr auto kDigitPairs = [] {
  std::array<char, 200> pairs{};
  for (unsigned i = 0; i < 100; ++i) {
    pairs[i * 2] = static_cast<char>('0' + i / 10);
    pairs[i * 2 + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

}  // namespace detail

// Writes a number below 100 as two digits.
inline char* putPair(char* out, unsigned value) {
  std::memcpy(out, &detail::kDigitPairs[value * std::size_t{2}], 2);
  return out + 2;
}

// Writes a number below 10000 as four digits.
inline char* putFour(char* out, unsigned value) {
  putPair(out, value / 100);
  return putPair(out + 2, value % 100);
}

// Writes a number below 10^8 as eight digits.
inline char* putEight(char* out, std::uint32_t value) {
  putFour(out, value / 10000);
  return putFour(out + 4, value % 10000);
}

// Writes a number below 10^16 as sixteen digits.
inline char* putSixteen(char* out, std::uint64_t value) {
  constexpr std::uint64_t kEightDigits = 100000000;
  putEight(out, static_cast<std::uint32_t>(value / kEightDigits));
  return putEight(out + 8, static_cast<std::uint32_t>(value % kEightDigits));
}

// Writes the `width` last digits of a number, with leading zeros.
inline char* putFixed(char* out, std::uint64_t value, unsigned width) {
  char* const end = out + width;
  char* at = end;
  for (; at - out >= 2; value /= 100) putPair(at -= 2, static_cast<unsigned>(value % 100));
  if (at != out) *out = static_cast<char>('0' + value % 10);
  return end;
}

// How many digits a number has; 1 for 0.
inline unsigned digitCount(std::uint64_t value) {
  unsigned count = 1;
  for (; value >= 10000; value /= 10000) count += 4;
  return count + (value >= 1000 ? 3U : value >= 100 ? 2U : value >= 10 ? 1U : 0U);
}

// Writes a number without leading zeros.
inline char* putNumber(char* out, std::uint64_t value) {
  const unsigned count = digitCount(value);
  putFixed(out, value, count);
  return out + count;
}

}  // namespace DataTypes
