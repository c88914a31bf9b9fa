#include "datatypes/short_number.h"

#include <emmintrin.h>

#include <array>
#include <cstring>

#include "datatypes/digit_words.h"
#include "datatypes/int128.h"
#include "datatypes/type_code.h"

namespace DataTypes {
namespace {

constexpr std::size_t kWindow = 16;  // characters looked at
constexpr std::uint64_t kTen8 = 100'000'000;

// "0"s in front of the text fill the window up.
struct alignas(kWindow) Padded {
  char zeros[kWindow];
  char text[kWindow];
};

// Which characters of a window stand behind the point, by scale.
constexpr auto kBehindPoint = [] {
  std::array<std::array<std::uint8_t, kWindow>, kWindow> masks{};
  for (std::size_t scale = 0; scale < kWindow; ++scale) {
    for (std::size_t i = kWindow - scale; i < kWindow; ++i) masks[scale][i] = 0xFF;
  }
  return masks;
}();

__m128i load(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

// The characters of a text, at most 16, behind "0"s.
__m128i paddedWindow(const char* text, std::size_t length) {
  Padded padded;
  std::memset(padded.zeros, '0', kWindow);
  std::memcpy(padded.text, text, kWindow);
  return load(padded.zeros + length);
}

// Closes the gap of the point: what stands before it moves on by one character, over it.
__m128i withoutPoint(__m128i window, unsigned scale) {
  const __m128i behind = load(kBehindPoint[scale].data());
  const __m128i moved = _mm_or_si128(_mm_slli_si128(window, 1), _mm_cvtsi32_si128('0'));
  return _mm_or_si128(_mm_and_si128(behind, window), _mm_andnot_si128(behind, moved));
}

// Reads sixteen characters as digits; false when one of them is none. Each step joins neighbours:
// digits to pairs, pairs to fours, fours to eights.
bool readSixteen(__m128i characters, std::uint64_t& value) {
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
  value = (both & 0xFFFFFFFF) * kTen8 + (both >> 32);
  return true;
}

}  // namespace

bool readShortInteger(const char* text, std::size_t length, std::int64_t& value) {
  const bool isNegative = *text == '-';
  text += isNegative ? 1 : 0;
  length -= isNegative ? 1 : 0;
  // A sign alone, whose length has become 0, and nothing, whose length may have wrapped around.
  if (length - 1 >= kWindow) return false;
  std::uint64_t magnitude = 0;
  if (!readSixteen(paddedWindow(text, length), magnitude)) return false;
  value = static_cast<std::int64_t>(isNegative ? -magnitude : magnitude);
  return true;
}

bool readShortDecimal(const char* text, std::size_t length, unsigned int typeCode,
                      FixedDecimalValue& value) {
  const unsigned precision = precisionOf(typeCode);
  const unsigned scale = scaleOf(typeCode);
  const bool isNegative = *text == '-';
  const std::size_t signLength = isNegative || *text == '+' ? 1 : 0;
  text += signLength;
  length -= signLength;
  const std::size_t fraction = scale == 0 ? 0 : scale + 1;
  // A signed nothing, whose length has wrapped around, is too long.
  if (length > kWindow || length <= fraction || precision - 1U >= kPowersOfTen.size()) return false;
  __m128i window = paddedWindow(text, length);
  if (scale != 0) {
    const char point = text[length - fraction];
    if (point != '.' && point != ',') return false;
    window = withoutPoint(window, scale);
  }
  std::uint64_t magnitude = 0;
  if (!readSixteen(window, magnitude)) return false;
  if (precision <= kWindow && magnitude >= lowWord(kPowersOfTen[precision - 1])) return false;
  // Two's complement of 128 bits; a zero has no sign.
  value = {};
  value.high = isNegative && magnitude != 0 ? ~std::uint64_t{0} : 0;
  value.low = isNegative ? -magnitude : magnitude;
  value.scale = static_cast<std::uint8_t>(scale);
  value.precision = static_cast<std::uint8_t>(precision);
  return true;
}

}  // namespace DataTypes
