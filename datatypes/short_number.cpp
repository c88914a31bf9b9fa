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
