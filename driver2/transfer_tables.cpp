#include "driver2/transfer_tables.h"

#include <algorithm>
#include <iterator>

namespace KORVEX::Zel::DB::ODBC {

namespace {

using namespace DataTypes;

struct FetchRow {
  unsigned int typeNumber;
  SQLSMALLINT fetchAs;
};

// Kept: a 16-bit integer has no transfer; its column is not fetched.
constexpr FetchRow kFetches[] = {
    {kInteger, SQL_C_SLONG},
    {kLong, SQL_C_SBIGINT},
    {kInterval, SQL_C_SBIGINT},
    {kFloat, SQL_C_DOUBLE},
    {kDate, SQL_C_TYPE_TIMESTAMP},
    {kTimestamp, SQL_C_TYPE_TIMESTAMP},
    {kBigDateTime, SQL_C_TYPE_TIMESTAMP},
    {kTime, SQL_C_TYPE_TIMESTAMP},
    {kString, SQL_C_CHAR},
    {kMoney, kNumericText},
    {kFixedDecimal, kNumericText},
    {kBoolean, SQL_C_BIT},
    {kBinary, SQL_C_BINARY},
};

constexpr SQLSMALLINT kInPlace[] = {SQL_C_SSHORT, SQL_C_SLONG, SQL_C_SBIGINT, SQL_C_DOUBLE,
                                    SQL_C_BIT};

struct DescribedRow {
  SQLSMALLINT sqlType;
  unsigned int typeNumber;
};

// NUMERIC and DECIMAL, whose type code carries their size, stand apart.
constexpr DescribedRow kDescribed[] = {
    {SQL_FLOAT, kFloat},
    {SQL_REAL, kFloat},
    {SQL_DOUBLE, kFloat},
    {SQL_DATETIME, kTimestamp},
    {SQL_TIME, kTime},
    {SQL_TYPE_TIME, kTime},
    {SQL_TIMESTAMP, kBigDateTime},
    {SQL_TYPE_TIMESTAMP, kBigDateTime},
    {SQL_TYPE_DATE, kDate},
    {SQL_CHAR, kString},
    {SQL_VARCHAR, kString},
    {SQL_LONGVARCHAR, kString},
    {SQL_WCHAR, kString},
    {SQL_WVARCHAR, kString},
    {SQL_WLONGVARCHAR, kString},
    {SQL_BIT, kBoolean},
    {SQL_TINYINT, kInteger},
    {SQL_INTEGER, kInteger},
    {SQL_SMALLINT, kInteger},
    {SQL_BIGINT, kLong},
    {SQL_BINARY, kBinary},
    {SQL_VARBINARY, kBinary},
    {SQL_LONGVARBINARY, kBinary},
};

// Kept: a precision above 34 is not clamped.
ColumnTransfer numericTransfer(const DATA_XFER_SETTINGS& column) {
  if (column.decimalDigits > static_cast<int>(kMaxDecimalPrecision)) return {kFloat, SQL_C_DOUBLE};
  return {createFixedDecimal(static_cast<int>(column.columnSize), column.decimalDigits),
          kNumericText};
}

}  // namespace

SQLSMALLINT fetchTypeFor(unsigned int typeCode) {
  const unsigned int number = typeNumber(typeCode);
  if (number >= kMoney1 && number <= kMoney15) return kNumericText;
  const auto* row = std::ranges::find(kFetches, number, &FetchRow::typeNumber);
  return row == std::end(kFetches) ? kNoFetch : row->fetchAs;
}

bool isFetchedInPlace(SQLSMALLINT fetchAs) {
  return std::ranges::find(kInPlace, fetchAs) != std::end(kInPlace);
}

ColumnTransfer describedTransfer(const DATA_XFER_SETTINGS& column) {
  if (column.sqlType == SQL_NUMERIC || column.sqlType == SQL_DECIMAL) {
    return numericTransfer(column);
  }
  const auto* row = std::ranges::find(kDescribed, column.sqlType, &DescribedRow::sqlType);
  if (row == std::end(kDescribed)) return {kUnknown, kNoFetch};
  return {row->typeNumber, fetchTypeFor(row->typeNumber)};
}

}  // namespace KORVEX::Zel::DB::ODBC
