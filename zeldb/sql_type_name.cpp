#include "zeldb/sql_type_name.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "datatypes/type_code.h"
#include "zeldb/column_type.h"

namespace zeldb {
namespace {

// In the order of Product: SQLite, PostgreSQL, MariaDB, the standard's.
using Names = std::array<std::string_view, 4>;

struct SqlTypeRow {
  unsigned int number;
  Names names;
  Names keyNames{};  // where they differ
};

constexpr std::array<SqlTypeRow, 13> kSqlTypes = {{
    {DataTypes::kInt16, {"smallint", "smallint", "smallint", "smallint"}},
    {DataTypes::kInteger, {"integer", "integer", "integer", "integer"}},
    {DataTypes::kLong, {"bigint", "bigint", "bigint", "bigint"}},
    {DataTypes::kInterval, {"bigint", "bigint", "bigint", "bigint"}},
    {DataTypes::kFloat, {"double", "double precision", "double", "double precision"}},
    {DataTypes::kBoolean, {"bit", "boolean", "bit(1)", "boolean"}},
    {DataTypes::kDate, {"date", "date", "date", "date"}},
    {DataTypes::kTime, {"time", "time(0)", "time", "time"}},
    {DataTypes::kTimestamp, {"timestamp", "timestamp(3)", "datetime(3)", "timestamp(3)"}},
    {DataTypes::kBigDateTime, {"timestamp", "timestamp(6)", "datetime(6)", "timestamp(6)"}},
    {DataTypes::kString,
     {"text", "text", "longtext", "varchar(4000)"},
     {"text", "text", "varchar(255)", "varchar(255)"}},
    {DataTypes::kBinary,
     {"blob", "bytea", "longblob", "varbinary(4000)"},
     {"blob", "bytea", "varbinary(255)", "varbinary(255)"}},
    {DataTypes::kFixedDecimal, {"text", "numeric", "decimal(65,30)", "decimal(34,10)"}},
}};

constexpr unsigned kMoneyDigits = 19;

struct Digits {
  unsigned precision;  // 0: no decimal, or one without a precision
  unsigned scale;
};

Digits digitsOf(unsigned int type) {
  const unsigned number = DataTypes::typeNumber(type);
  if (number == DataTypes::kMoney) {
    return {kMoneyDigits, 4};
  }
  if (number >= DataTypes::kMoney1 && number <= DataTypes::kMoney15) {
    return {kMoneyDigits, number - DataTypes::kMoney1 + 1};
  }
  return number == DataTypes::kFixedDecimal
             ? Digits{DataTypes::precisionOf(type), DataTypes::scaleOf(type)}
             : Digits{0, 0};
}

}  // namespace

std::string sqlTypeName(unsigned int type, const ProductTraits& product, bool key) {
  const Digits digits = digitsOf(type);
  const bool asText = product.digits && digits.precision > *product.digits;
  if (digits.precision > 0 && !asText) {
    return fmt::format("decimal({},{})", digits.precision, digits.scale);
  }
  const unsigned number = asText ? unsigned{DataTypes::kString} : DataTypes::typeNumber(type);
  const auto* const row =
      std::find_if(kSqlTypes.begin(), kSqlTypes.end(),
                   [&](const SqlTypeRow& candidate) { return candidate.number == number; });
  const auto at = static_cast<std::size_t>(product.product);
  const std::string_view name =
      key && !row->keyNames[at].empty() ? row->keyNames[at] : row->names[at];
  return std::string(name);
}

}  // namespace zeldb
