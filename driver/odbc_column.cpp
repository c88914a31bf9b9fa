#include "driver/odbc_column.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <iterator>

#include "datatypes/type_code.h"

namespace KORVEX::Zel::DB {

namespace {

using namespace DataTypes;

struct SqlTypeRow {
  int sqlType;
  unsigned typeCode;
};

// Small and tiny integers widen to integer. Kept: the old time type 10 is a timestamp while 92 is a
// time, as the server has always been told.
constexpr SqlTypeRow kSqlTypes[] = {
    {-98, kBinary},
    {SQL_LONGVARBINARY, kBinary},
    {SQL_VARBINARY, kBinary},
    {SQL_BINARY, kBinary},
    {SQL_WLONGVARCHAR, kString},
    {SQL_WVARCHAR, kString},
    {SQL_WCHAR, kString},
    {SQL_LONGVARCHAR, kString},
    {SQL_CHAR, kString},
    {SQL_VARCHAR, kString},
    {SQL_BIT, kBoolean},
    {SQL_TINYINT, kInteger},
    {SQL_INTEGER, kInteger},
    {SQL_SMALLINT, kInteger},
    {SQL_BIGINT, kLong},
    {SQL_NUMERIC, kFixedDecimal},
    {SQL_DECIMAL, kFixedDecimal},
    {SQL_FLOAT, kFloat},
    {SQL_REAL, kFloat},
    {SQL_DOUBLE, kFloat},
    {SQL_DATE, kTimestamp},
    {SQL_TIME, kTimestamp},
    {SQL_TYPE_DATE, kTimestamp},
    {SQL_TIMESTAMP, kBigDateTime},
    {SQL_TYPE_TIMESTAMP, kBigDateTime},
    {SQL_TYPE_TIME, kTime},
};

// A type of one database only.
constexpr SqlTypeRow kVeltaFloat = {3000, kFloat};

struct SqlTextRow {
  unsigned typeNumber;
  const char* text;
  const char* keyText;
};

// Kept: a 16-bit integer has no text here, and a double is created as REAL.
constexpr SqlTextRow kSqlTexts[] = {
    {kInteger, "INTEGER", "INTEGER"},
    {kLong, "BIGINT", "BIGINT"},
    {kFloat, "REAL", "REAL"},
    {kDate, "TIMESTAMP", "TIMESTAMP"},
    {kString, "NVARCHAR(5000)", "NVARCHAR(500)"},
    {kMoney, "DECIMAL(19, 4)", "DECIMAL(19, 4)"},
    {kTimestamp, "TIMESTAMP", "TIMESTAMP"},
    {kBoolean, "TINYINT", "TINYINT"},
    {kInterval, "BIGINT", "BIGINT"},
    {kBigDateTime, "TIMESTAMP", "TIMESTAMP"},
    {kBinary, "VARBINARY(5000)", "VARBINARY(500)"},
    {kTime, "TIME", "TIME"},
};

constexpr char kNoSqlType[] = "error";

std::string decimalText(unsigned type) {
  return "DECIMAL(" + std::to_string(precisionOf(type)) + "," + std::to_string(scaleOf(type)) + ")";
}

std::string moneyText(unsigned number) {
  return "DECIMAL(19, " + std::to_string(number - kMoney1 + 1) + ")";
}

}  // namespace

unsigned int zelDataType(int sqlType, const std::string& databaseType) {
  if (sqlType == kVeltaFloat.sqlType && databaseType == "VELTA") return kVeltaFloat.typeCode;
  const auto* row = std::ranges::find(kSqlTypes, sqlType, &SqlTypeRow::sqlType);
  return row == std::end(kSqlTypes) ? DataTypes::kUnknown : row->typeCode;
}

OdbcColumn::OdbcColumn() = default;

OdbcColumn::OdbcColumn(const std::string& name, int position, unsigned int type, int size,
                       bool nullable, bool primaryKey, int scale, const std::string& databaseType)
    : Column(name, position, type, size, scale, nullable, primaryKey),
      databaseType_(databaseType) {}

OdbcColumn::OdbcColumn(const std::string& name, int position, unsigned int type, int size,
                       bool nullable, bool primaryKey, bool /*unused*/, int scale,
                       const std::string& databaseType)
    : OdbcColumn(name, position, type, size, nullable, primaryKey, scale, databaseType) {}

unsigned int OdbcColumn::getZelDataType(int sqlType) const {
  return zelDataType(sqlType, databaseType_);
}

std::string OdbcColumn::getSqlTypeString(unsigned int type, bool keyColumn) const {
  const unsigned number = typeNumber(type);
  if (number == kFixedDecimal) return decimalText(type);
  if (number >= kMoney1 && number <= kMoney15) return moneyText(number);
  const auto* row = std::ranges::find(kSqlTexts, number, &SqlTextRow::typeNumber);
  if (row == std::end(kSqlTexts)) return kNoSqlType;
  return keyColumn ? row->keyText : row->text;
}

}  // namespace KORVEX::Zel::DB
