#pragma once

// Sixteen characters of a number's text at a time, in a vector register.

#include <emmintrin.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "datatypes/digit_words.h"

namespace DataTypes {

inline constexpr std::size_t kWindow = 16;  // characters

namespace detail {

// Which characters of a window stand behind the point, by scale.
inline constexpr auto kBehindPoint = [] {
  std::array<std::array<std::uint8_t, kWindow>, kWindow> masks{};
  for (std::size_t scale = 0; scale < kWindow; ++scale) {
    for (std::size_t i = kWindow - scale; i < kWindow; ++i) masks[scale][i] = 0xFF;
  }
  return masks;
}();

}  // namespace detail

// Sixteen bytes from any address.
inline __m128i windowAt(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

inline void putWindow(void* to, __m128i window) {
  _mm_storeu_si128(static_cast<__m128i*>(to), window);
}

// The first `count` characters of a text, 1 to 8, behind "0"s. Eight bytes are read; those behind
// the count are shifted out.
inline std::uint64_t leadingWord(const char* text, std::size_t count) {
  const std::uint64_t zeros = (kEightZeros >> 8) >> (count * 8 - 8);
  return wordAt(text) << (8 - count) * 8 | zeros;
}

// The first `length` characters of a text, 1 to 16, behind "0"s; eight bytes must be readable. Put
// together in registers: what has just been written in parts is slow to be read as a whole.
inline __m128i paddedWindow(const char* text, std::size_t length) {
  const bool isLong = length > 8;
  const std::uint64_t front = isLong ? leadingWord(text, length - 8) : kEightZeros;
  const std::uint64_t back = isLong ? wordAt(text + length - 8) : leadingWord(text, length);
  return _mm_set_epi64x(static_cast<long long>(back), static_cast<long long>(front));
}

// Closes the gap of a point before the last `scale` characters, 0 to 15: what stands before it
// moves on by one character, over it. The point itself is not looked at.
inline __m128i withoutPoint(__m128i window, unsigned scale) {
  const __m128i behind = windowAt(detail::kBehindPoint[scale].data());
  const __m128i moved = _mm_or_si128(_mm_slli_si128(window, 1), _mm_cvtsi32_si128('0'));
  return _mm_or_si128(_mm_and_si128(behind, window), _mm_andnot_si128(behind, moved));
}

// Reads sixteen characters as digits; false when one of them is none. Each step joins neighbours:
// digits to pairs, pairs to fours, fours to eights.
inline bool readSixteen(__m128i characters, std::uint64_t& value) {
  constexpr std::uint64_t kEightDigits = 100'000'000;
  const __m128i digits = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
  const __m128i tooLarge = _mm_subs_epu8(digits, _mm_set1_epi8(9));
  if (_mm_movemask_epi8(_mm_cmpeq_epi8(tooLarge, _mm_setzero_si128())) != 0xFFFF) return false;
  const __m128i tens = _mm_and_si128(digits, _mm_set1_epi16(0x00FF));
  const __m128i pairs =
      _mm_add_epi16(_mm_mullo_epi16(tens, _mm_set1_epi16(10)), _mm_srli_epi16(digits, 8));
  const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 100));
  const __m128i packed = _mm_packs_epi32(fours, fours);
  const __m128i eights = _mm_madd_epi16(packed, _mm_set1_epi32(1 << 16 | 10000));
  const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  value = (both & 0xFFFFFFFF) * kEightDigits + (both >> 32);
  return true;
}

// The digits of a number below 10^16, as characters. Each step splits its lanes in two: eights to
// fours, fours to pairs, pairs to digits. The products are quotients exactly enough for all numbers
// that a lane can hold: 3518437209/2^45 is 1/10000 for 32 bits, 5243/2^19 is 1/100 below 10000 and
// 6554/2^16 is 1/10 below 100.
inline __m128i sixteenDigits(std::uint64_t value) {
  constexpr std::uint64_t kEightDigits = 100'000'000;
  const std::uint64_t upper = value / kEightDigits;
  const __m128i eights = _mm_set_epi64x(static_cast<long long>(value - upper * kEightDigits),
                                        static_cast<long long>(upper));
  const __m128i tenThousands =
      _mm_srli_epi64(_mm_mul_epu32(eights, _mm_set1_epi64x(3518437209)), 45);
  const __m128i behindThem =
      _mm_sub_epi64(eights, _mm_mul_epu32(tenThousands, _mm_set1_epi64x(10000)));
  const __m128i fours = _mm_or_si128(tenThousands, _mm_slli_epi64(behindThem, 32));
  const __m128i hundreds = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);
  const __m128i behindHundreds =
      _mm_sub_epi16(fours, _mm_mullo_epi16(hundreds, _mm_set1_epi16(100)));
  const __m128i pairs = _mm_or_si128(hundreds, _mm_slli_epi32(behindHundreds, 16));
  const __m128i tens = _mm_mulhi_epu16(pairs, _mm_set1_epi16(6554));
  const __m128i ones = _mm_sub_epi16(pairs, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
  return _mm_or_si128(_mm_or_si128(tens, _mm_slli_epi16(ones, 8)), _mm_set1_epi8('0'));
}

// How many "0"s a window of digits begins with, up to 16.
inline unsigned leadingZeros(__m128i window) {
  const int zeros = _mm_movemask_epi8(_mm_cmpeq_epi8(window, _mm_set1_epi8('0')));
  return static_cast<unsigned>(std::countr_one(static_cast<unsigned>(zeros)));
}

// Leaves the first `count` characters out, 0 to 15; others follow the last ones. In registers, as
// above.
inline __m128i withoutFirst(__m128i window, unsigned count) {
  auto front = static_cast<std::uint64_t>(_mm_cvtsi128_si64(window));
  auto back = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(window, window)));
  if (count >= 8) {
    front = back;
    back = 0;
  }
  const unsigned bits = count % 8 * 8;
  front = front >> bits | back << 1 << (63 - bits);
  return _mm_set_epi64x(static_cast<long long>(back >> bits), static_cast<long long>(front));
}

// Writes a window with a point behind its first `count` characters, 1 to 16.
inline void putWithPoint(char* out, __m128i window, unsigned count) {
  const __m128i behind = windowAt(detail::kBehindPoint[kWindow - count].data());
  putWindow(out + 1, window);
  putWindow(out, _mm_or_si128(_mm_andnot_si128(behind, window),
                              _mm_and_si128(behind, _mm_slli_si128(window, 1))));
  out[count] = '.';
}

}  // namespace DataTypes
