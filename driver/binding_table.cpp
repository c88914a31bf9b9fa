#include "driver/binding_table.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <iterator>

#include "datatypes/data_types.h"
#include "driver2/rows_by_type.h"
#include "driver2/timestamp_structure.h"
#include "odbc/data_value_bytes.h"

namespace KORVEX::Zel::DB {

namespace {

using DataTypes::DataValue;
using DataTypes::TypeFamily;
using ODBC::Odbc;
using ODBC::OdbcParam;

template <int Number>
int fixed(unsigned int, const DataValue&) {
  return Number;
}

int textLength(unsigned int, const DataValue& value) {
  const auto text = ODBC::dataValueBytes(DataTypes::kString, value, value.isNull());
  return static_cast<int>(text->bytes.size());
}

int byteLength(unsigned int, const DataValue& value) {
  return value.isNull() ? 0 : static_cast<int>(value.binary.length);
}

int precision(unsigned int type, const DataValue&) {
  return static_cast<int>(DataTypes::precisionOf(type));
}

int scale(unsigned int type, const DataValue&) {
  return static_cast<int>(DataTypes::scaleOf(type));
}

// The precision, a sign and a point.
int decimalTextLength(unsigned int type, const DataValue& value) {
  return precision(type, value) + 2;
}

int moneyScale(unsigned int type, const DataValue&) {
  constexpr int kPlainMoneyScale = 4;
  const unsigned number = DataTypes::typeNumber(type);
  return number == DataTypes::kMoney ? kPlainMoneyScale
                                     : static_cast<int>(number - DataTypes::kMoney1 + 1);
}

template <auto Member>
Odbc::e_Status storeNumber(OdbcParam& parameter, unsigned int, const DataValue& value) {
  return parameter.SetData(value.*Member, value.isNull());
}

Odbc::e_Status storeLong(OdbcParam& parameter, unsigned int, const DataValue& value) {
  return parameter.SetData(long{value.int64}, value.isNull());
}

// An unsigned char would select another setter.
Odbc::e_Status storeBoolean(OdbcParam& parameter, unsigned int, const DataValue& value) {
  return parameter.SetData(value.boolean != 0, value.isNull());
}

// Strings (5) and bytes (28), whose lengths vary from row to row.
Odbc::e_Status storeVariable(OdbcParam& parameter, unsigned int type, const DataValue& value) {
  return parameter.SetData(DataTypes::typeNumber(type), value, value.isNull());
}

Odbc::e_Status storeTimestamp(OdbcParam& parameter, unsigned int type, const DataValue& value) {
  TIMESTAMP_STRUCT timestamp{};
  if (!value.isNull()) convertTime(type, value, timestamp);
  return parameter.SetData(timestamp, value.isNull());
}

// Seconds since midnight; a whole day more counts as the same time.
Odbc::e_Status storeTime(OdbcParam& parameter, unsigned int, const DataValue& value) {
  TIME_STRUCT time{};
  if (!value.isNull()) {
    const long seconds = value.int64;
    const long second = seconds % 60;
    const long minute = (seconds - second) / 60 % 60;
    const long hour = (seconds - 60 * minute - second) / 3600 % 24;
    time.hour = static_cast<SQLUSMALLINT>(hour);
    time.minute = static_cast<SQLUSMALLINT>(minute);
    time.second = static_cast<SQLUSMALLINT>(second);
  }
  return parameter.SetData(time, value.isNull());
}

// The value's text; `Size` holds the longest text of the family and its terminator.
template <std::size_t Size>
Odbc::e_Status storeText(OdbcParam& parameter, unsigned int type, const DataValue& value) {
  std::array<char, Size> text{};
  if (!value.isNull()) {
    DataValue copy = value;
    DataTypes::convertToString(type, false, false, copy, text.data(), text.size());
  }
  return parameter.SetText(text.data(), value.isNull());
}

// 64-bit integers and intervals as characters, for databases without a 64-bit binary transfer.
constexpr BindingRule kBigIntAsChar = {SQL_C_CHAR, SQL_BIGINT, fixed<20>,
                                       fixed<0>,   fixed<0>,   storeText<21>};

struct FamilyRule {
  TypeFamily family;
  BindingRule rule;
  const BindingRule* asChar = nullptr;  // where there is a form as characters
};

constexpr FamilyRule kRules[] = {
    {TypeFamily::kInt16,
     {SQL_C_SHORT, SQL_SMALLINT, fixed<0>, fixed<0>, fixed<0>, storeNumber<&DataValue::int16>}},
    {TypeFamily::kInt32,
     {SQL_C_SLONG, SQL_INTEGER, fixed<0>, fixed<0>, fixed<0>, storeNumber<&DataValue::int32>}},
    {TypeFamily::kInt64,
     {SQL_C_SBIGINT, SQL_BIGINT, fixed<0>, fixed<0>, fixed<0>, storeLong},
     &kBigIntAsChar},
    {TypeFamily::kDouble,
     {SQL_C_DOUBLE, SQL_DOUBLE, fixed<0>, fixed<0>, fixed<0>, storeNumber<&DataValue::float64>}},
    {TypeFamily::kDate,
     {SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, fixed<19>, fixed<0>, fixed<0>, storeTimestamp}},
    {TypeFamily::kString, {SQL_C_CHAR, SQL_VARCHAR, textLength, fixed<0>, fixed<0>, storeVariable}},
    {TypeFamily::kMoney,
     {SQL_C_CHAR, SQL_DECIMAL, fixed<19>, moneyScale, fixed<21>, storeText<22>}},
    {TypeFamily::kTimestamp,
     {SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, fixed<23>, fixed<3>, fixed<0>, storeTimestamp}},
    {TypeFamily::kBoolean, {SQL_C_BIT, SQL_TINYINT, fixed<0>, fixed<0>, fixed<0>, storeBoolean}},
    {TypeFamily::kInterval,
     {SQL_C_SBIGINT, SQL_BIGINT, fixed<0>, fixed<0>, fixed<0>, storeLong},
     &kBigIntAsChar},
    {TypeFamily::kBigDateTime,
     {SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, fixed<26>, fixed<6>, fixed<0>, storeTimestamp}},
    {TypeFamily::kTime, {SQL_C_TYPE_TIME, SQL_TYPE_TIME, fixed<6>, fixed<0>, fixed<0>, storeTime}},
    {TypeFamily::kFixedDecimal,
     {SQL_C_CHAR, SQL_DECIMAL, precision, scale, decimalTextLength, storeText<39>}},
    {TypeFamily::kBinary,
     {SQL_C_BINARY, SQL_VARBINARY, byteLength, fixed<0>, fixed<0>, storeVariable}},
};

constexpr auto kRuleOfType = ODBC::rowsByType(kRules);

}  // namespace

const BindingRule* findBindingRule(unsigned int type, bool bigIntAsChar) {
  const FamilyRule* row = ODBC::rowOf(kRuleOfType, type);
  if (row == nullptr) return nullptr;
  return bigIntAsChar && row->asChar != nullptr ? row->asChar : &row->rule;
}

void setParameterCommons(OdbcParam& parameter, const BindingRule& rule, unsigned int type,
                         const DataValue& value) {
  parameter.SetSqlType(rule.sqlType, static_cast<unsigned int>(rule.columnSize(type, value)),
                       static_cast<short>(rule.decimalDigits(type, value)));
  parameter.SetCType(rule.cType, rule.bufferLength(type, value));
  parameter.SetDirection(SQL_PARAM_INPUT);
}

bool convertTime(unsigned int type, const DataValue& value, TIMESTAMP_STRUCT& timestamp) {
  const ODBC::DateUnit* unit = ODBC::dateUnitOf(type);
  if (unit == nullptr) {
    std::cout << "Invalid data for converting as time\n";
    return false;
  }
  if (ODBC::makeTimestamp(value.int64, *unit, timestamp)) return true;
  std::cout << "Error converting value as date\n";
  return false;
}

}  // namespace KORVEX::Zel::DB
