#pragma once

// Decimal digits written and read eight at a time, without a terminator. Characters stand in words
// as in memory: the first one is the lowest byte.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace DataTypes {

static_assert(std::endian::native == std::endian::little);

inline constexpr std::uint64_t kEightZeros = 0x3030303030303030;

// The digits of numbers below 100 in bytes that are at least two apart: the tens replace the
// number, the ones go to the next byte. 103/1024 is 1/10 exactly enough below 100.
constexpr std::uint64_t splitPairs(std::uint64_t numbers, std::uint64_t lowBytes) {
  const std::uint64_t tens = numbers * 103 >> 10 & lowBytes * 15;
  return tens + ((numbers - tens * 10) << 8);
}

// The eight digits of a number below 10^8, as numbers 0 to 9.
constexpr std::uint64_t eightDigits(std::uint32_t value) {
  const std::uint64_t fours = value / 10000 | std::uint64_t{value % 10000} << 32;
  const std::uint64_t hundreds = fours * 10486 >> 20 & 0x0000007F0000007F;
  const std::uint64_t pairs = hundreds | (fours - hundreds * 100) << 16;
  return splitPairs(pairs, 0x0001000100010001);
}

inline void putWord(char* out, std::uint64_t word) {
  std::memcpy(out, &word, sizeof word);
}

inline std::uint64_t wordAt(const char* text) {
  std::uint64_t word = 0;
  std::memcpy(&word, text, sizeof word);
  return word;
}

namespace detail {

// "00" to "99".
inline constexpr auto kDigitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[i * 2] = static_cast<char>('0' + i / 10);
    pairs[i * 2 + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// ".000" to ".999".
inline constexpr auto kPointAndThree = [] {
  std::array<char, 4000> texts{};
  for (std::size_t i = 0; i < 1000; ++i) {
    texts[i * 4] = '.';
    texts[i * 4 + 1] = static_cast<char>('0' + i / 100);
    texts[i * 4 + 2] = static_cast<char>('0' + i / 10 % 10);
    texts[i * 4 + 3] = static_cast<char>('0' + i % 10);
  }
  return texts;
}();

// 10^0 to 10^7.
inline constexpr std::array<std::uint64_t, 8> kTenTo = {1,     10,     100,     1000,
                                                        10000, 100000, 1000000, 10000000};

}  // namespace detail

// Writes a number below 100 as two digits.
inline char* putPair(char* out, unsigned value) {
  std::memcpy(out, &detail::kDigitPairs[std::size_t{value} * 2], 2);
  return out + 2;
}

// Writes "." and a number below 1000 as three digits.
inline char* putPointAndThree(char* out, unsigned value) {
  std::memcpy(out, &detail::kPointAndThree[std::size_t{value} * 4], 4);
  return out + 4;
}

// Writes a number below 1000 without leading zeros. Four bytes are written in any case.
inline char* putUpToThree(char* out, unsigned value) {
  const unsigned count = value >= 100 ? 3 : value >= 10 ? 2 : 1;
  std::uint32_t word = 0;
  std::memcpy(&word, &detail::kPointAndThree[std::size_t{value} * 4], 4);
  word >>= (4 - count) * 8;
  std::memcpy(out, &word, 4);
  return out + count;
}

// Writes "." and a number below 10^6 as six digits.
inline char* putPointAndSix(char* out, unsigned value) {
  out = putPointAndThree(out, value / 1000);
  std::memcpy(out, &detail::kPointAndThree[std::size_t{value % 1000} * 4 + 1], 3);
  return out + 3;
}

// Writes a number below 10^8 as eight digits.
inline char* putEight(char* out, std::uint32_t value) {
  putWord(out, eightDigits(value) | kEightZeros);
  return out + 8;
}

// Writes the `width` last digits of a number, with leading zeros.
inline char* putFixed(char* out, std::uint64_t value, unsigned width) {
  char* const end = out + width;
  char* at = end;
  for (; at - out >= 2; value /= 100) putPair(at -= 2, static_cast<unsigned>(value % 100));
  if (at != out) *out = static_cast<char>('0' + value % 10);
  return end;
}

// Writes a number below 10^8 without leading zeros. Up to eight bytes are written in any case.
inline char* putShort(char* out, std::uint32_t value) {
  const std::uint64_t digits = eightDigits(value);
  // One digit stays, also of 0.
  const unsigned zeros = static_cast<unsigned>(std::countr_zero(digits | 1ULL << 56)) / 8;
  putWord(out, (digits | kEightZeros) >> zeros * 8);
  return out + 8 - zeros;
}

// Writes a number without leading zeros. `out` has room for 24 characters.
inline char* putNumber(char* out, std::uint64_t value) {
  constexpr std::uint64_t kEightDigits = 100000000;
  if (value < kEightDigits) return putShort(out, static_cast<std::uint32_t>(value));
  const std::uint64_t upper = value / kEightDigits;
  if (upper < kEightDigits) {
    out = putShort(out, static_cast<std::uint32_t>(upper));
  } else {
    out = putShort(out, static_cast<std::uint32_t>(upper / kEightDigits));
    out = putEight(out, static_cast<std::uint32_t>(upper % kEightDigits));
  }
  return putEight(out, static_cast<std::uint32_t>(value % kEightDigits));
}

// Reads eight characters as digits; false when one of them is none. Each step joins neighbours:
// digits to pairs, pairs to fours, fours to eight.
constexpr bool readEight(std::uint64_t characters, std::uint64_t& value) {
  // The upper half of a digit is 3, and still is when 6 is added.
  constexpr std::uint64_t kUpperHalves = 0xF0F0F0F0F0F0F0F0;
  const std::uint64_t raised = characters + 0x0606060606060606;
  if (((characters & kUpperHalves) | (raised & kUpperHalves) >> 4) != 0x3333333333333333)
    return false;
  const std::uint64_t pairs = (characters & 0x0F0F0F0F0F0F0F0F) * 2561 >> 8;
  const std::uint64_t fours = (pairs & 0x00FF00FF00FF00FF) * 6553601 >> 16;
  value = (fours & 0x0000FFFF0000FFFF) * 42949672960001 >> 32;
  return true;
}

// `count` characters, one to seven of them, behind "0"s. A word that begins or ends with them must
// lie within the text.
inline std::uint64_t shortWord(const char* at, std::size_t count, const char* textEnd) {
  const std::size_t missing = (8 - count) * 8;  // bits
  if (textEnd - at >= 8) return wordAt(at) << missing | kEightZeros >> count * 8;
  const std::uint64_t others = ~std::uint64_t{0} >> count * 8;
  return (wordAt(at + count - 8) & ~others) | (kEightZeros & others);
}

// Inlined by force, here and below: the calls would cost as much as the work.
// Appends `count` digits to a value that has room for them; false when a character is none. The
// text that they are part of has at least eight characters.
template <class Number>
[[gnu::always_inline]] inline bool appendDigits(const char* at, std::size_t count,
                                                const char* textEnd, Number& value) {
  constexpr std::uint64_t kEightDigits = 100000000;
  std::uint64_t group = 0;
  if (const std::size_t odd = count % 8; odd != 0) {
    if (!readEight(shortWord(at, odd, textEnd), group)) return false;
    value = value * detail::kTenTo[odd] + group;
    at += odd;
  }
  std::size_t left = count / 8;
  for (std::uint64_t next = 0; left >= 2; left -= 2, at += 16) {
    if (!readEight(wordAt(at), group) || !readEight(wordAt(at + 8), next)) return false;
    value = value * (kEightDigits * kEightDigits) + (group * kEightDigits + next);
  }
  if (left == 0) return true;
  if (!readEight(wordAt(at), group)) return false;
  value = value * kEightDigits + group;
  return true;
}

// Reads the last eight characters of a text, a point before the last `decimals` digits (one to
// seven) and digits, as a number of seven digits. The point itself is not looked at.
inline bool readAroundPoint(const char* textEnd, unsigned decimals, std::uint64_t& value) {
  const std::uint64_t word = wordAt(textEnd - 8);
  const std::uint64_t beforePoint = (1ULL << (7 - decimals) * 8) - 1;
  // The digits before the point move over it and make room for a "0".
  return readEight((word & beforePoint) << 8 | '0' | (word & ~(beforePoint << 8 | 0xFF)), value);
}

// Reads digits with a point before the last `decimals` of them, at least eight characters to
// `textEnd`; false when one is none. The value must have room for them.
template <class Number>
[[gnu::always_inline]] inline bool readDigits(const char* begin, const char* textEnd,
                                              unsigned decimals, Number& value) {
  constexpr std::uint64_t kSevenDigits = 10000000;
  const auto length = static_cast<std::size_t>(textEnd - begin);
  value = 0;
  if (decimals == 0) return appendDigits(begin, length, textEnd, value);
  if (decimals > 7)
    return appendDigits(begin, length - decimals - 1, textEnd, value) &&
           appendDigits(textEnd - decimals, decimals, textEnd, value);
  std::uint64_t tail = 0;
  if (!appendDigits(begin, length - 8, textEnd, value) || !readAroundPoint(textEnd, decimals, tail))
    return false;
  value = value * kSevenDigits + tail;
  return true;
}

}  // namespace DataTypes
