#include <array>
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

  // Writes a text of at most `Max` characters; `print` is given that much room.
  template <std::size_t Max, class Print>
  void putDirectly(Print print) const {
    if (outSize > Max) {
      out[print(out)] = '\0';
      return;
    }
    char text[Max];
    put(text, print(text));
  }
};

template <class Number>
void printInteger(const Printing& p) {
  p.putDirectly<kMaxNumberText>([&p](char* out) { return printPadded(p.load<Number>(), 0, out); });
}

void printFloat(const Printing& p) {
  printDouble(p.load<double>(), p.out, p.outSize);
}

void printDateValue(const Printing& p) {
  const long seconds = g_dateSize == 4 ? p.load<std::int32_t>() : p.load<std::int64_t>();
  p.putDirectly<kMaxInstantText>(
      [&p, seconds](char* out) { return printDate(seconds, p.withZone, out); });
}

void printTimestamp(const Printing& p) {
  p.putDirectly<kMaxInstantText>([&p](char* out) {
    return printInstant(p.load<std::int64_t>(), kTimestampUnit, p.withZone, out);
  });
}

void printBigDateTime(const Printing& p) {
  p.putDirectly<kMaxInstantText>([&p](char* out) {
    return printInstant(p.load<std::int64_t>(), kBigDateTimeUnit, p.withZone, out);
  });
}

void printTime(const Printing& p) {
  p.putDirectly<kMaxInstantText>(
      [&p](char* out) { return printTimeOfDay(p.load<std::int64_t>(), p.withZone, out); });
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

struct PrinterRow {
  TypeFamily family;
  Printer print;
};

// Families that are not here have no text.
constexpr PrinterRow kPrinterRows[] = {
    {TypeFamily::kInt16, printInteger<std::int16_t>},
    {TypeFamily::kInt32, printInteger<std::int32_t>},
    {TypeFamily::kInt64, printInteger<std::int64_t>},
    {TypeFamily::kDouble, printFloat},
    {TypeFamily::kDate, printDateValue},
    {TypeFamily::kMoney, printMoneyValue},
    {TypeFamily::kTimestamp, printTimestamp},
    {TypeFamily::kBoolean, printBoolean},
    {TypeFamily::kInterval, printInteger<std::int64_t>},
    {TypeFamily::kBigDateTime, printBigDateTime},
    {TypeFamily::kTime, printTime},
    {TypeFamily::kFixedDecimal, printFixedDecimal},
};

// The printer of each type number.
constexpr auto kPrinters = [] {
  std::array<Printer, kTypeCount> printers{};
  for (unsigned type = 0; type < kTypeCount; ++type)
    for (const PrinterRow& row : kPrinterRows)
      if (row.family == kTypeTable[type].family) printers[type] = row.print;
  return printers;
}();

}  // namespace

void convertToString(const unsigned int& type, bool swap, bool withZone, unsigned char* packed,
                     char* out, std::size_t outSize) {
  const unsigned number = typeNumber(type);
  const Printer print = number < kTypeCount ? kPrinters[number] : nullptr;
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
