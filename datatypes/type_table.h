#pragma once

// What is known about each type number, a row a number. Everything that depends on a type looks
// here; code runs once over the rows.

#include <array>
#include <cstdint>

#include "datatypes/type_code.h"

namespace DataTypes {

// The fourteen families of types that are bound and read alike. Each of them is served by one
// binder and one reader of the driver.
enum class TypeFamily : std::uint8_t {
  kNone,
  kInt16,
  kInt32,
  kInt64,
  kDouble,
  kDate,
  kString,
  kMoney,
  kTimestamp,
  kBoolean,
  kInterval,
  kBigDateTime,
  kTime,
  kFixedDecimal,
  kBinary,
};

// What the payload of a cell holds.
enum class PayloadKind : std::uint8_t {
  kNone,
  kInt16,
  kInt32,
  kInt64,
  kDouble,
  kByte,
  kText,
  kBytes,
  kDecimal,
};

// Where a type's integer digits and scale come from when it is promoted to a fixed decimal.
enum class DigitSource : std::uint8_t {
  kNone,         // no digits: 0 and 0
  kRow,          // the row's own numbers
  kLegacyMoney,  // 19 digits, of which the legacy money precision are decimals
  kTypeCode,     // precision and scale of the type code
};

// Bits of TypeRow::classes.
inline constexpr std::uint8_t kNumericClass = 1;
inline constexpr std::uint8_t kIntegerClass = 2;
inline constexpr std::uint8_t kGenericDateClass = 4;

// The names of a fixed decimal carry its numbers; its row holds none.
struct TypeRow {
  TypeEnum number;
  const char* name;
  const char* upperName;
  const char* legacyName;
  const char* legacyUpperName;
  const char* constName;
  TypeFamily family;
  PayloadKind payload;
  std::uint8_t bufferLength;  // bytes of a value of fixed size, 0 for text, bytes and no type
  std::uint8_t classes;
  DigitSource digits;
  std::uint8_t integerDigits;  // only for DigitSource::kRow
  std::uint8_t scale;          // only for DigitSource::kRow and money(n)
};

namespace detail {

// clang-format off
inline constexpr std::uint8_t kNumInt = kNumericClass | kIntegerClass;
inline constexpr std::uint8_t kNumDate = kNumericClass | kGenericDateClass;

constexpr TypeRow moneyRow(unsigned scale, const char* name, const char* upper) {
  return {static_cast<TypeEnum>(kMoney1 + scale - 1), name, upper, name, upper, "&moneyConst",
          TypeFamily::kMoney, PayloadKind::kInt64, 8, kNumericClass, DigitSource::kRow,
          static_cast<std::uint8_t>(19 - scale), static_cast<std::uint8_t>(scale)};
}
// clang-format on

}  // namespace detail

// Kept: code 6 belongs to all three classes and code 9 to none, and int16 has no digits; the server
// relies on these masks.
// clang-format off
inline constexpr std::array<TypeRow, kTypeCount> kTypeTable = {{
    {kInt16, "int16", "INT16", "int16", "INT16", "&intConst",
     TypeFamily::kInt16, PayloadKind::kInt16, 2, detail::kNumInt, DigitSource::kNone, 0, 0},
    {kInteger, "integer", "INTEGER", "int32", "INT32", "&intConst",
     TypeFamily::kInt32, PayloadKind::kInt32, 4, detail::kNumInt, DigitSource::kRow, 10, 0},
    {kLong, "long", "LONG", "int64", "INT64", "&intConst",
     TypeFamily::kInt64, PayloadKind::kInt64, 8, detail::kNumInt, DigitSource::kRow, 19, 0},
    {kFloat, "float", "FLOAT", "double", "DOUBLE", "&floatConst",
     TypeFamily::kDouble, PayloadKind::kDouble, 8, kNumericClass, DigitSource::kNone, 0, 0},
    {kDate, "date", "DATE", "date", "DATE", "&dateConst",
     TypeFamily::kDate, PayloadKind::kInt64, 8, detail::kNumDate, DigitSource::kRow, 19, 0},
    {kString, "string", "STRING", "string", "STRING", "&stringConst",
     TypeFamily::kString, PayloadKind::kText, 0, 0, DigitSource::kNone, 0, 0},
    {kUnknown, "N/A", "UNKNOWN", "N/A", "UNKNOWN", "N/A",
     TypeFamily::kNone, PayloadKind::kNone, 0,
     kNumericClass | kIntegerClass | kGenericDateClass, DigitSource::kNone, 0, 0},
    {kMoney, "money", "MONEY", "money", "MONEY", "&moneyConst",
     TypeFamily::kMoney, PayloadKind::kInt64, 8, kNumericClass, DigitSource::kLegacyMoney, 0, 0},
    {kTimestamp, "timestamp", "TIMESTAMP", "timestamp", "TIMESTAMP", "&timestampConst",
     TypeFamily::kTimestamp, PayloadKind::kInt64, 8, kNumericClass, DigitSource::kRow, 19, 0},
    {kNoType, "N/A", "UNKNOWN", "N/A", "UNKNOWN", "N/A",
     TypeFamily::kNone, PayloadKind::kNone, 0, 0, DigitSource::kNone, 0, 0},
    {kBoolean, "boolean", "BOOLEAN", "boolean", "BOOLEAN", "&boolConst",
     TypeFamily::kBoolean, PayloadKind::kByte, 1, detail::kNumInt, DigitSource::kRow, 1, 0},
    detail::moneyRow(1, "money(1)", "MONEY(1)"),
    detail::moneyRow(2, "money(2)", "MONEY(2)"),
    detail::moneyRow(3, "money(3)", "MONEY(3)"),
    detail::moneyRow(4, "money(4)", "MONEY(4)"),
    detail::moneyRow(5, "money(5)", "MONEY(5)"),
    detail::moneyRow(6, "money(6)", "MONEY(6)"),
    detail::moneyRow(7, "money(7)", "MONEY(7)"),
    detail::moneyRow(8, "money(8)", "MONEY(8)"),
    detail::moneyRow(9, "money(9)", "MONEY(9)"),
    detail::moneyRow(10, "money(10)", "MONEY(10)"),
    detail::moneyRow(11, "money(11)", "MONEY(11)"),
    detail::moneyRow(12, "money(12)", "MONEY(12)"),
    detail::moneyRow(13, "money(13)", "MONEY(13)"),
    detail::moneyRow(14, "money(14)", "MONEY(14)"),
    detail::moneyRow(15, "money(15)", "MONEY(15)"),
    {kInterval, "interval", "INTERVAL", "interval", "INTERVAL", "&intervalConst",
     TypeFamily::kInterval, PayloadKind::kInt64, 8, kNumericClass, DigitSource::kRow, 19, 0},
    {kBigDateTime, "bigdatetime", "BIGDATETIME", "bigdatetime", "BIGDATETIME", "&bigdatetimeConst",
     TypeFamily::kBigDateTime, PayloadKind::kInt64, 8, detail::kNumDate, DigitSource::kRow, 19, 0},
    {kBinary, "binary", "BINARY", "binary", "BINARY", "&binaryConst",
     TypeFamily::kBinary, PayloadKind::kBytes, 0, 0, DigitSource::kNone, 0, 0},
    {kTime, "time", "TIME", "time", "TIME", "&timeConst",
     TypeFamily::kTime, PayloadKind::kInt64, 8, kNumericClass, DigitSource::kRow, 19, 0},
    {kFixedDecimal, "", "", "", "", "&fixeddecimalConst",
     TypeFamily::kFixedDecimal, PayloadKind::kDecimal, 24, kNumericClass, DigitSource::kTypeCode,
     0, 0},
}};
// clang-format on

namespace detail {

constexpr bool isTableInOrder() {
  for (unsigned i = 0; i < kTypeCount; ++i)
    if (kTypeTable[i].number != i || kTypeTable[i].name == nullptr) return false;
  return true;
}
static_assert(isTableInOrder());

constexpr std::array<unsigned, kTypeCount> columnLengths() {
  std::array<unsigned, kTypeCount> lengths{};
  for (unsigned i = 0; i < kTypeCount; ++i) lengths[i] = kTypeTable[i].bufferLength;
  return lengths;
}

}  // namespace detail

// The buffer length in bytes of each type number; 0 for text, bytes and the two codes without a
// value.
inline constexpr std::array<unsigned, kTypeCount> g_column_lengths = detail::columnLengths();

// The row of a type code, or null when its type number is above 30.
constexpr const TypeRow* typeRow(unsigned typeCode) {
  return typeNumber(typeCode) < kTypeCount ? &kTypeTable[typeNumber(typeCode)] : nullptr;
}

// The family of a type code; kNone for codes without a value and above 30.
constexpr TypeFamily familyOf(unsigned typeCode) {
  return typeNumber(typeCode) < kTypeCount ? kTypeTable[typeNumber(typeCode)].family
                                           : TypeFamily::kNone;
}

// What a cell of this type code holds; kNone for codes without a value and above 30.
constexpr PayloadKind payloadOf(unsigned typeCode) {
  return typeNumber(typeCode) < kTypeCount ? kTypeTable[typeNumber(typeCode)].payload
                                           : PayloadKind::kNone;
}

constexpr bool isScaledMoney(unsigned typeCode) {
  return typeNumber(typeCode) >= kMoney1 && typeNumber(typeCode) <= kMoney15;
}

}  // namespace DataTypes
