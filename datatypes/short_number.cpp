#include "datatypes/short_number.h"

#include "datatypes/digit_windows.h"
#include "datatypes/int128.h"
#include "datatypes/type_code.h"

namespace DataTypes {

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

namespace {

bool isPoint(char c) {
  return c == '.' || c == ',';
}

// A text without its sign, and the type it is wanted as.
struct Unsigned {
  const char* digits;
  std::size_t length;
  bool isNegative;
  unsigned precision;
  unsigned scale;
};

// Keeps a magnitude that is below 10^18.
[[gnu::always_inline]] inline bool keep(const Unsigned& text, std::uint64_t magnitude,
                                        FixedDecimalValue& value) {
  constexpr unsigned kMostDigits = 18;
  if (text.precision <= kMostDigits && magnitude >= lowWord(kPowersOfTen[text.precision - 1])) {
    return false;
  }
  // Two's complement of 128 bits; a zero has no sign.
  value = {};
  value.high = text.isNegative && magnitude != 0 ? ~std::uint64_t{0} : 0;
  value.low = text.isNegative ? -magnitude : magnitude;
  value.scale = static_cast<std::uint8_t>(text.scale);
  value.precision = static_cast<std::uint8_t>(text.precision);
  return true;
}

// A text of 1 to 16 characters whose point is not where the scale wants it: databases leave zeros
// at the end out.
[[gnu::noinline]] bool readTrimmed(Unsigned text, FixedDecimalValue& value) {
  // Fifteen digits besides the point, and as many zeros, are below 10^18.
  constexpr std::size_t kMostZeros = 3;
  std::size_t behind = 0;
  while (behind < text.length && !isPoint(text.digits[text.length - 1 - behind])) ++behind;
  if (behind == 0 || behind >= text.scale || behind + 1 >= text.length) return false;
  const std::size_t zeros = text.scale - behind;
  std::uint64_t magnitude = 0;
  const __m128i window = paddedWindow(text.digits, text.length);
  if (zeros > kMostZeros ||
      !readSixteen(withoutPoint(window, static_cast<unsigned>(behind)), magnitude)) {
    return false;
  }
  return keep(text, magnitude * lowWord(kPowersOfTen[zeros - 1]), value);
}

}  // namespace

bool readShortDecimal(const char* text, std::size_t length, unsigned int typeCode,
                      FixedDecimalValue& value) {
  const unsigned precision = precisionOf(typeCode);
  const unsigned scale = scaleOf(typeCode);
  const bool isNegative = *text == '-';
  const std::size_t signLength = isNegative || *text == '+' ? 1 : 0;
  text += signLength;
  length -= signLength;
  // Nothing, and a signed nothing, whose length has wrapped around.
  if (length - 1 >= kWindow || precision - 1U >= kPowersOfTen.size()) return false;
  const Unsigned parts = {text, length, isNegative, precision, scale};
  __m128i window = paddedWindow(text, length);
  if (scale != 0) {
    if (length <= scale + 1 || !isPoint(text[length - 1 - scale])) return readTrimmed(parts, value);
    window = withoutPoint(window, scale);
  }
  std::uint64_t magnitude = 0;
  return readSixteen(window, magnitude) && keep(parts, magnitude, value);
}

}  // namespace DataTypes
