#include <cstring>

#include "datatypes/conversions.h"
#include "datatypes/decimal_text.h"
#include "datatypes/digits.h"
#include "datatypes/instant_text.h"
#include "datatypes/money_format.h"
#include "datatypes/number_text.h"
#include "datatypes/packed.h"

namespace DataTypes {
namespace {

// A packed value, how to read it, and where its text goes.
struct Printing {
  unsigned type;
  bool swap;
  bool withZone;
  const unsigned char* packed;
  char* out;
  std::size_t outSize;

  template <class Number>
  Number load() const {
    return loadPacked<Number>(packed, swap);
  }

  void put(const char* text, std::size_t length) const { copyText(text, length, out, outSize); }
};

template <class Number>
void printInteger(const Printing& p) {
  char text[kMaxNumberText];
  p.put(text, printPadded(p.load<Number>(), 0, text));
}

void printFloat(const Printing& p) {
  printDouble(p.load<double>(), p.out, p.outSize);
}

void printDateValue(const Printing& p) {
  char text[kMaxInstantText];
  const long seconds = g_dateSize == 4 ? p.load<std::int32_t>() : p.load<std::int64_t>();
  p.put(text, printDate(seconds, p.withZone, text));
}

void printTimestamp(const Printing& p) {
  char text[kMaxInstantText];
  p.put(text, printInstant(p.load<std::int64_t>(), kTimestampUnit, p.withZone, text));
}

void printBigDateTime(const Printing& p) {
  char text[kMaxInstantText];
  p.put(text, printInstant(p.load<std::int64_t>(), kBigDateTimeUnit, p.withZone, text));
}

void printTime(const Printing& p) {
  char text[kMaxInstantText];
  p.put(text, printTimeOfDay(p.load<std::int64_t>(), p.withZone, text));
}

void printBoolean(const Printing& p) {
  if (*p.packed != 0)
    p.put("true", 4);
  else
    p.put("false", 5);
}

void printMoneyValue(const Printing& p) {
  const MoneyFormat format = moneyFormat(p.type);
  printMoney(p.load<std::int64_t>(), format.decimals, format.factor, p.out, p.outSize);
}

void printFixedDecimal(const Printing& p) {
  FixedDecimalValue value;
  std::memcpy(&value, p.packed, sizeof value);
  const unsigned scale = precisionOf(p.type) != 0 ? scaleOf(p.type) : value.scale;
  char text[kMaxDecimalText];
  p.put(text, printDecimal(makeUint128(value.high, value.low), scale, text));
}

using Printer = void (*)(const Printing&);

// Null: nothing is written.
struct PrinterRow {
  TypeFamily family;
  Printer print;
};

constexpr PrinterRow kPrinters[] = {
    {TypeFamily::kNone, nullptr},
    {TypeFamily::kInt16, printInteger<std::int16_t>},
    {TypeFamily::kInt32, printInteger<std::int32_t>},
    {TypeFamily::kInt64, printInteger<std::int64_t>},
    {TypeFamily::kDouble, printFloat},
    {TypeFamily::kDate, printDateValue},
    {TypeFamily::kString, nullptr},
    {TypeFamily::kMoney, printMoneyValue},
    {TypeFamily::kTimestamp, printTimestamp},
    {TypeFamily::kBoolean, printBoolean},
    {TypeFamily::kInterval, printInteger<std::int64_t>},
    {TypeFamily::kBigDateTime, printBigDateTime},
    {TypeFamily::kTime, printTime},
    {TypeFamily::kFixedDecimal, printFixedDecimal},
    {TypeFamily::kBinary, nullptr},
};

constexpr bool arePrintersInOrder() {
  std::size_t i = 0;
  for (const PrinterRow& row : kPrinters)
    if (row.family != static_cast<TypeFamily>(i++)) return false;
  return i == static_cast<std::size_t>(TypeFamily::kBinary) + 1;
}
static_assert(arePrintersInOrder());

}  // namespace

void convertToString(const unsigned int& type, bool swap, bool withZone, unsigned char* packed,
                     char* out, std::size_t outSize) {
  const Printer print = kPrinters[static_cast<std::size_t>(familyOf(type))].print;
  if (print != nullptr && packed != nullptr) print({type, swap, withZone, packed, out, outSize});
}

void convertToString(const unsigned int& type, bool swap, bool withZone, DataValue& cell, char* out,
                     std::size_t outSize) {
  if (!cell.isNull()) convertToString(type, swap, withZone, cell.bytes, out, outSize);
}

void convertDoubleToString(double value, char* out, std::size_t outSize) {
  printDouble(value, out, outSize);
}

}  // namespace DataTypes
