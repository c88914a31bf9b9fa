#include "datatypes/cast.h"

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "datatypes/conversions.h"
#include "datatypes/decimal_text.h"
#include "datatypes/hex.h"
#include "datatypes/money_format.h"
#include "datatypes/number_text.h"
#include "host/intl.h"

namespace DataTypes {
namespace {

// An exact number: coefficient x 10^-scale.
struct Exact {
  Uint128 coefficient;  // two's complement
  unsigned scale;
};

Exact whole(long value) {
  return {static_cast<Uint128>(Int128{value}), 0};
}

bool toWhole(Uint128 coefficient, long min, long max, long& out) {
  const auto value = static_cast<Int128>(coefficient);
  if (value < min || value > max) return false;
  out = static_cast<long>(value);
  return true;
}

// Microseconds of the units of instants; 0 for every other type.
long microsPerUnit(TypeFamily family) {
  switch (family) {
    case TypeFamily::kDate:
    case TypeFamily::kTime:
      return 1000000;
    case TypeFamily::kTimestamp:
      return 1000;
    case TypeFamily::kBigDateTime:
      return 1;
    default:
      return 0;
  }
}

bool isPossible(TypeFamily from, TypeFamily to) {
  if (from == TypeFamily::kNone || to == TypeFamily::kNone) return false;
  const auto isPair = [from, to](TypeFamily one, auto test) {
    return (from == one && test(to)) || (to == one && test(from));
  };
  const auto isBytesPartner = [](TypeFamily family) {
    return family != TypeFamily::kString && family != TypeFamily::kBinary;
  };
  const auto isInstant = [](TypeFamily family) { return microsPerUnit(family) != 0; };
  return !isPair(TypeFamily::kBinary, isBytesPartner) && !isPair(TypeFamily::kInterval, isInstant);
}

// The number in a cell of any type but float, string and binary.
Exact readExact(const DataValue& cell, unsigned type) {
  switch (payloadOf(type)) {
    case PayloadKind::kInt16:
      return whole(cell.int16);
    case PayloadKind::kInt32:
      return whole(cell.int32);
    case PayloadKind::kByte:
      return whole(cell.boolean != 0 ? 1 : 0);
    case PayloadKind::kDecimal:
      return {makeUint128(cell.decimal.high, cell.decimal.low),
              precisionOf(type) != 0 ? scaleOf(type) : cell.decimal.scale};
    default: {
      Exact number = whole(cell.int64);
      if (familyOf(type) == TypeFamily::kMoney) number.scale = moneyFormat(type).decimals;
      return number;
    }
  }
}

// Brings the coefficient to another scale; false when that loses a digit or does not fit.
bool rescale(Exact& number, unsigned scale) {
  const bool isNegative = signBit(number.coefficient);
  Uint128 magnitude = magnitudeOf(number.coefficient);
  for (; number.scale > scale && magnitude != 0; --number.scale) {
    if (magnitude % 10 != 0) return false;
    magnitude /= 10;
  }
  for (; number.scale < scale && magnitude != 0; ++number.scale) {
    const Uint256 product = wideProduct(magnitude, 10);
    if (product.high != 0 || signBit(product.low)) return false;
    magnitude = product.low;
  }
  number = {isNegative ? -magnitude : magnitude, scale};
  return true;
}

bool writeDecimal(Exact number, unsigned type, DataValue& cell) {
  FixedDecimalValue value;
  // A zero of the type sets scale and precision and refuses those that are out of range.
  if (!value.setDecimalValue(static_cast<int>(precisionOf(type)), static_cast<int>(scaleOf(type)),
                             0) ||
      !rescale(number, scaleOf(type)))
    return false;
  value.high = highWord(number.coefficient);
  value.low = lowWord(number.coefficient);
  if (value.checkPrecisionOverflow()) return false;
  std::memcpy(cell.bytes, &value, sizeof value);
  return true;
}

bool writeExact(Exact number, unsigned type, DataValue& cell) {
  if (payloadOf(type) == PayloadKind::kDecimal) return writeDecimal(number, type, cell);
  const bool isMoney = familyOf(type) == TypeFamily::kMoney;
  if (!rescale(number, isMoney ? moneyFormat(type).decimals : 0)) return false;
  long value = 0;
  switch (payloadOf(type)) {
    case PayloadKind::kInt16:
      if (!toWhole(number.coefficient, SHRT_MIN, SHRT_MAX, value)) return false;
      cell.int16 = static_cast<std::int16_t>(value);
      return true;
    case PayloadKind::kInt32:
      if (!toWhole(number.coefficient, INT_MIN, INT_MAX, value)) return false;
      cell.int32 = static_cast<std::int32_t>(value);
      return true;
    case PayloadKind::kByte:
      if (!toWhole(number.coefficient, 0, 1, value)) return false;
      cell.boolean = static_cast<std::uint8_t>(value);
      return true;
    default:
      return toWhole(number.coefficient, LONG_MIN, LONG_MAX, cell.int64);
  }
}

// The nearest double: decimal text is converted exactly.
bool writeDouble(Exact number, DataValue& cell) {
  char text[kMaxDecimalText + 1];
  text[printDecimal(number.coefficient, number.scale, text)] = '\0';
  return parseDouble(text, cell.float64) == NumberStatus::kOk;
}

bool castFromDouble(double value, unsigned to, DataValue& cell) {
  constexpr double kBeyondLong = 9223372036854775808.0;
  if (payloadOf(to) == PayloadKind::kDecimal) {
    FixedDecimalValue decimal;
    if (!decimal.setDecimalValue(static_cast<int>(precisionOf(to)), static_cast<int>(scaleOf(to)),
                                 value))
      return false;
    std::memcpy(cell.bytes, &decimal, sizeof decimal);
    return true;
  }
  if (!(std::fabs(value) <= kBeyondLong)) return false;
  if (familyOf(to) == TypeFamily::kMoney) {
    const MoneyFormat format = moneyFormat(to);
    char text[64];
    KORVEX::Zel::intl_snprintf(text, sizeof text, "%.*f", static_cast<int>(format.decimals), value);
    return parseMoney(text, format.decimals, format.factor, cell.int64) == NumberStatus::kOk;
  }
  if (value != std::trunc(value) || value == kBeyondLong) return false;
  return writeExact(whole(static_cast<long>(value)), to, cell);
}

bool castInstant(long value, TypeFamily from, TypeFamily to, DataValue& cell) {
  constexpr Int128 kMicrosPerDay = Int128{86400} * 1000000;
  Int128 micros = Int128{value} * microsPerUnit(from);
  if (to == TypeFamily::kTime && from != TypeFamily::kTime)
    micros = (micros % kMicrosPerDay + kMicrosPerDay) % kMicrosPerDay;
  if (micros % microsPerUnit(to) != 0) return false;
  return toWhole(static_cast<Uint128>(micros / microsPerUnit(to)), LONG_MIN, LONG_MAX, cell.int64);
}

bool castToString(DataValue& source, unsigned from, DataValue& cell) {
  if (payloadOf(from) != PayloadKind::kBytes) {
    cell.string = unpackToNewString(from, source.bytes);
    return cell.string != nullptr;
  }
  const std::size_t bytes = std::size_t{source.binary.length} * 2 + 1;
  auto* text = static_cast<char*>(std::malloc(bytes));
  const char* message = nullptr;
  if (text == nullptr || convertBinaryToHexString(bytes, source.binary.data, source.binary.length,
                                                  text, message) < 0) {
    std::free(text);
    return false;
  }
  cell.string = text;
  return true;
}

bool castFromString(const char* text, unsigned to, DataValue& cell) {
  const char* message = nullptr;
  cell.setNull();  // there is nothing to free
  return convertFromString(to, text, cell, message, nullptr, nullptr, nullptr, nullptr);
}

// Casts into a zeroed cell.
bool castValue(DataValue& source, unsigned from, unsigned to, DataValue& cell) {
  const TypeFamily fromFamily = familyOf(from);
  const TypeFamily toFamily = familyOf(to);
  if (toFamily == TypeFamily::kString) return castToString(source, from, cell);
  if (fromFamily == TypeFamily::kString) return castFromString(source.string, to, cell);
  if (fromFamily == TypeFamily::kDouble) return castFromDouble(source.float64, to, cell);
  if (microsPerUnit(fromFamily) != 0 && microsPerUnit(toFamily) != 0)
    return castInstant(source.int64, fromFamily, toFamily, cell);
  const Exact number = readExact(source, from);
  return toFamily == TypeFamily::kDouble ? writeDouble(number, cell) : writeExact(number, to, cell);
}

}  // namespace

bool cast(DataValue* cell, const unsigned int& from, const unsigned int& to) {
  if (cell == nullptr || !isPossible(familyOf(from), familyOf(to))) return false;
  const bool isSameType =
      from == to || (familyOf(from) == familyOf(to) && familyOf(from) != TypeFamily::kMoney &&
                     familyOf(from) != TypeFamily::kFixedDecimal);
  if (cell->isNull() || isSameType) return true;
  DataValue result;
  if (!castValue(*cell, from, to, result)) return false;
  *cell = result;
  return true;
}

}  // namespace DataTypes
