#include "datatypes/fixed_decimal_value.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "datatypes/decimal_text.h"
#include "datatypes/decimals.h"
#include "datatypes/int128.h"
#include "datatypes/type_code.h"
#include "host/intl.h"

namespace DataTypes {
namespace {

static_assert(std::is_standard_layout_v<FixedDecimalValue> &&
              std::is_aggregate_v<FixedDecimalValue>);

constexpr int kMaxPrecision = static_cast<int>(kPowersOfTen.size());
constexpr int kMaxScale = 255;

// Zeroes the record, the bytes behind its fields included: equality and hashing look at them.
bool prepare(FixedDecimalValue& value, int precision, int scale) {
  std::memset(&value, 0, sizeof value);
  value.scale = static_cast<std::uint8_t>(scale);
  value.precision = static_cast<std::uint8_t>(precision);
  return precision >= 1 && precision <= kMaxPrecision && scale >= 0 && scale <= kMaxScale;
}

bool toResultType(FixedDecimalValue& a, int precision, int scale, int shift) {
  if (precision > static_cast<int>(kMaxDecimalPrecision)) return false;
  if (!decimal_shift(a.high, a.low, shift)) return false;
  a.scale = static_cast<std::uint8_t>(scale);
  a.precision = static_cast<std::uint8_t>(precision);
  return true;
}

}  // namespace

bool FixedDecimalValue::setDecimalValue(int newPrecision, int newScale, long value) {
  return prepare(*this, newPrecision, newScale) &&
         decimal_setFromInt64(high, low, value, newScale) && !checkPrecisionOverflow();
}

bool FixedDecimalValue::setDecimalValue(int newPrecision, int newScale, int value) {
  return setDecimalValue(newPrecision, newScale, static_cast<long>(value));
}

bool FixedDecimalValue::setDecimalValue(int newPrecision, int newScale, double value) {
  constexpr double kSmallest = 1e-6;
  constexpr double kLargestFixed = 1e80;
  constexpr std::size_t kBufferBytes = 64;
  const double magnitude = std::fabs(value);
  if (magnitude < kSmallest) value = 0.0;
  char text[kBufferBytes];
  if (magnitude > kLargestFixed)
    KORVEX::Zel::intl_snprintf(text, sizeof text, "%0.25g", value);
  else
    KORVEX::Zel::intl_snprintf(text, sizeof text, "%0.*f", newScale, value);
  return setDecimalValue(newPrecision, newScale, text);
}

bool FixedDecimalValue::setDecimalValue(int newPrecision, int newScale, const char* text) {
  if (!prepare(*this, newPrecision, newScale) || text == nullptr) return false;
  Uint128 coefficient = 0;
  if (!parseDecimal(text, newScale, coefficient)) return false;
  high = highWord(coefficient);
  low = lowWord(coefficient);
  return !checkPrecisionOverflow();
}

bool FixedDecimalValue::checkPrecisionOverflow() const {
  if (precision < 1 || precision > kMaxPrecision) return true;
  return magnitudeOf(makeUint128(high, low)) >= kPowersOfTen[precision - 1U];
}

bool FixedDecimalValue::toAdditionResultType(FixedDecimalValue& a, FixedDecimalValue& b) {
  const int scale = std::max(a.scale, b.scale);
  const int integer = std::max(a.precision - a.scale, b.precision - b.scale);
  return toResultType(a, integer + 1 + scale, scale, scale - a.scale);
}

bool FixedDecimalValue::toSubtractionResultType(FixedDecimalValue& a, FixedDecimalValue& b) {
  return toAdditionResultType(a, b);
}

bool FixedDecimalValue::toMultiplicationResultType(FixedDecimalValue& a, FixedDecimalValue& b) {
  return toResultType(a, a.precision + b.precision + 1, a.scale + b.scale, b.scale);
}

bool FixedDecimalValue::toDivisionResultType(FixedDecimalValue& a, FixedDecimalValue& b) {
  return toResultType(a, a.precision + b.precision + b.scale + 1, b.precision + a.scale + 1,
                      b.precision + 1);
}

bool FixedDecimalValue::toSameScale(FixedDecimalValue& a, FixedDecimalValue& b) {
  return decimal_shift(a.high, a.low, b.scale - a.scale);
}

int FixedDecimalValue::toMaxScale(FixedDecimalValue& a, FixedDecimalValue& b) {
  FixedDecimalValue& smaller = a.scale < b.scale ? a : b;
  const int scale = std::max(a.scale, b.scale);
  return decimal_shift(smaller.high, smaller.low, scale - smaller.scale) ? scale : -1;
}

}  // namespace DataTypes
