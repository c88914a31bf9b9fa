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

// A function of its own, and arguments in registers: one with a buffer is guarded against its
// overflow, which costs.
template <std::size_t Max, class Print>
[[gnu::noinline]] void putCut(Print print, char* out, std::size_t outSize) {
  char text[Max];
  copyText(text, print(text), out, outSize);
}

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
    if (outSize > Max)
      out[print(out)] = '\0';
    else
      putCut<Max>(print, out, outSize);
  }
};

template <class Number>
void printInteger(const Printing& p) {
  p.putDirectly<kMaxNumberText>(
      [value = p.load<Number>()](char* out) { return printPadded(value, 0, out); });
}

void printFloat(const Printing& p) {
  printDouble(p.load<double>(), p.out, p.outSize);
}

// Dates and times by a function of instant_text.h.
template <auto Print, class Number = std::int64_t>
void printInstantWith(const Printing& p) {
  p.putDirectly<kMaxInstantText>([value = p.load<Number>(), withZone = p.withZone](char* out) {
    return Print(value, withZone, out);
  });
}

void printDateValue(const Printing& p) {
  if (g_dateSize == 4)
    printInstantWith<printDate, std::int32_t>(p);
  else
    printInstantWith<printDate>(p);
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

// The arguments of convertToString, in its order: they stay in the registers that they came in.
using Printer = void (*)(unsigned type, bool swap, bool withZone, const unsigned char* packed,
                         char* out, std::size_t outSize);

template <void (*Print)(const Printing&)>
void printWith(unsigned type, bool swap, bool withZone, const unsigned char* packed, char* out,
               std::size_t outSize) {
  Print({type, swap, withZone, packed, out, outSize});
}

struct PrinterRow {
  TypeFamily family;
  Printer print;
};

// Families that are not here have no text.
constexpr PrinterRow kPrinterRows[] = {
    {TypeFamily::kInt16, printWith<printInteger<std::int16_t>>},
    {TypeFamily::kInt32, printWith<printInteger<std::int32_t>>},
    {TypeFamily::kInt64, printWith<printInteger<std::int64_t>>},
    {TypeFamily::kDouble, printWith<printFloat>},
    {TypeFamily::kDate, printWith<printDateValue>},
    {TypeFamily::kMoney, printWith<printMoneyValue>},
    {TypeFamily::kTimestamp, printWith<printInstantWith<printTimestamp>>},
    {TypeFamily::kBoolean, printWith<printBoolean>},
    {TypeFamily::kInterval, printWith<printInteger<std::int64_t>>},
    {TypeFamily::kBigDateTime, printWith<printInstantWith<printBigDateTime>>},
    {TypeFamily::kTime, printWith<printInstantWith<printTimeOfDay>>},
    {TypeFamily::kFixedDecimal, printWith<printFixedDecimal>},
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
  if (print != nullptr && packed != nullptr) print(type, swap, withZone, packed, out, outSize);
}

void convertToString(const unsigned int& type, bool swap, bool withZone, DataValue& cell, char* out,
                     std::size_t outSize) {
  if (!cell.isNull()) convertToString(type, swap, withZone, cell.bytes, out, outSize);
}

void convertDoubleToString(double value, char* out, std::size_t outSize) {
  printDouble(value, out, outSize);
}

}  // namespace DataTypes
