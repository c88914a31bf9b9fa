#include "driver/reader_table.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <string_view>

#include "datatypes/data_types.h"
#include "driver/column_number.h"
#include "driver/date_time_column.h"
#include "driver/family_places.h"

namespace KORVEX::Zel::DB {

namespace {

using DataTypes::DataValue;
using DataTypes::TypeFamily;
using ODBC::Odbc;
using ODBC::OdbcCol;

short cTypeOf(OdbcCol& column) {
  short cType = 0;
  int length = 0;
  column.GetCType(cType, length);
  return cType;
}

// The bytes of a text, binary or structure column where they lie; a text has its NUL behind it.
ReadResult readBytes(OdbcCol& column, std::string_view& bytes) {
  std::span<const unsigned char> span;
  const ReadResult result = readResultOf(column.GetBytes(span));
  bytes = {reinterpret_cast<const char*>(span.data()), span.size()};
  return result;
}

// A malloc'ed copy with a NUL behind it, also of no bytes at all; null when there is no memory.
char* copyBytes(std::string_view bytes) {
  char* copy = static_cast<char*>(std::malloc(bytes.size() + 1));
  if (copy == nullptr) return nullptr;
  std::memcpy(copy, bytes.data(), bytes.size());
  copy[bytes.size()] = '\0';
  return copy;
}

constexpr ReadResult kOutOfMemory = {ReadResult::kFailed, "not enough memory for the value"};

template <auto Member, typename Value>
ReadResult readWith(OdbcCol& column, unsigned int, DataValue& cell) {
  Value value{};
  const ReadResult result = readResultOf(column.GetData(value));
  if (result.outcome == ReadResult::kValue) cell.*Member = value;
  return result;
}

// 64-bit integers come from their own C type, from any other numeric one when the number fits, and
// from text.
ReadResult readInt64(OdbcCol& column, unsigned int, DataValue& cell) {
  long value = 0;
  Odbc::e_Status status = Odbc::e_Error;
  const short cType = cTypeOf(column);
  if (cType == SQL_C_SBIGINT || cType == SQL_C_CHAR) {
    status = column.GetData(value);
  } else {
    ColumnNumber number;
    status = readColumnNumber(column, number);
    if (status == Odbc::e_Ok && !number.toInt64(value)) {
      return {ReadResult::kFailed, "the number is not a 64-bit integer"};
    }
  }
  if (status == Odbc::e_Ok) cell.int64 = value;
  return readResultOf(status);
}

ReadResult readDouble(OdbcCol& column, unsigned int, DataValue& cell) {
  double value = 0;
  Odbc::e_Status status = Odbc::e_Error;
  const short cType = cTypeOf(column);
  if (cType == SQL_C_DOUBLE || cType == SQL_C_CHAR) {
    status = column.GetData(value);
  } else {
    ColumnNumber number;
    status = readColumnNumber(column, number);
    value = number.toDouble();
  }
  if (status == Odbc::e_Ok) cell.float64 = value;
  return readResultOf(status);
}

// The column as text: characters as they are, numbers and date structures formatted. `plainNumbers`
// keeps exponents out of the text.
ReadResult readAsText(OdbcCol& column, bool plainNumbers, std::string& formatted,
                      std::string_view& text) {
  const short cType = cTypeOf(column);
  if (cType == SQL_C_CHAR || cType == SQL_C_BINARY) return readBytes(column, text);
  if (cType == SQL_C_TYPE_TIMESTAMP || cType == SQL_C_TYPE_TIME) {
    const ReadResult result = readDateTimeText(column, formatted);
    text = formatted;
    return result;
  }
  ColumnNumber number;
  const Odbc::e_Status status = readColumnNumber(column, number);
  if (status == Odbc::e_Ok) formatted = number.toText(plainNumbers);
  text = formatted;
  return readResultOf(status);
}

ReadResult readString(OdbcCol& column, unsigned int, DataValue& cell) {
  std::string formatted;
  std::string_view text;
  const ReadResult result = readAsText(column, false, formatted, text);
  if (result.outcome != ReadResult::kValue) return result;
  char* copy = copyBytes(text);
  if (copy == nullptr) return kOutOfMemory;
  cell.string = copy;
  return result;
}

ReadResult readBinary(OdbcCol& column, unsigned int, DataValue& cell) {
  std::string_view bytes;
  const ReadResult result = readBytes(column, bytes);
  if (result.outcome != ReadResult::kValue) return result;
  char* copy = copyBytes(bytes);
  if (copy == nullptr) return kOutOfMemory;
  cell.binary = {reinterpret_cast<unsigned char*>(copy), static_cast<std::uint32_t>(bytes.size())};
  return result;
}

// The code to parse a text as: a decimal without precision takes it from a decimal column, and from
// the digits of the text itself otherwise.
unsigned int parsedType(OdbcCol& column, unsigned int type, std::string_view text) {
  if (DataTypes::typeNumber(type) != DataTypes::kFixedDecimal ||
      DataTypes::precisionOf(type) != 0) {
    return type;
  }
  constexpr int kMaxPrecision = DataTypes::kMaxDecimalPrecision;
  short sqlType = 0;
  unsigned int size = 0;
  short digits = 0;
  column.GetSqlType(sqlType, size, digits);
  if (sqlType == SQL_DECIMAL || sqlType == SQL_NUMERIC) {
    const int precision = static_cast<int>(std::min<unsigned>(size, kMaxPrecision));
    return DataTypes::createFixedDecimal(precision, std::clamp<int>(digits, 0, precision));
  }
  const std::size_t point = text.find_first_of(".,");
  const std::size_t scale = point == std::string_view::npos ? 0 : text.size() - point - 1;
  return DataTypes::createFixedDecimal(
      kMaxPrecision, static_cast<int>(std::min<std::size_t>(scale, kMaxPrecision)));
}

// Parses the column's text as the type.
ReadResult readParsed(OdbcCol& column, unsigned int type, DataValue& cell) {
  std::string formatted;
  std::string_view text;
  const ReadResult result = readAsText(column, true, formatted, text);
  if (result.outcome != ReadResult::kValue) return result;
  const char* message = nullptr;
  DataValue parsed;
  // A NUL stands behind each of the texts that readAsText gives.
  const char* terminated = text.data();  // NOLINT(bugprone-suspicious-stringview-data-usage)
  if (!DataTypes::convertFromString(parsedType(column, type, text), terminated, parsed, message,
                                    nullptr, nullptr, nullptr, nullptr)) {
    return {ReadResult::kFailed, message};
  }
  cell = parsed;
  return result;
}

struct ReaderRow {
  TypeFamily family;
  ColumnReader read;
  ColumnReader readSafely = read;
};

constexpr ReaderRow kReaders[] = {
    {TypeFamily::kInt16, readWith<&DataValue::int16, short>},
    {TypeFamily::kInt32, readWith<&DataValue::int32, int>},
    {TypeFamily::kInt64, readInt64},
    {TypeFamily::kDouble, readDouble},
    {TypeFamily::kDate, readDateTime, readDateTimeUtc},
    {TypeFamily::kString, readString},
    {TypeFamily::kMoney, readParsed},
    {TypeFamily::kTimestamp, readDateTime, readDateTimeUtc},
    {TypeFamily::kBoolean, readWith<&DataValue::boolean, bool>},
    {TypeFamily::kInterval, readInt64},
    {TypeFamily::kBigDateTime, readDateTime, readDateTimeUtc},
    {TypeFamily::kTime, readTime},
    {TypeFamily::kFixedDecimal, readParsed},
    {TypeFamily::kBinary, readBinary},
};

constexpr auto kPlaces = familyPlaces(kReaders);

}  // namespace

ReadResult readResultOf(Odbc::e_Status status) {
  if (status == Odbc::e_Ok) return {ReadResult::kValue};
  return {status == Odbc::e_Null ? ReadResult::kNull : ReadResult::kFailed};
}

ColumnReader findColumnReader(unsigned int type, bool safely) {
  const std::size_t at = kPlaces[static_cast<std::size_t>(DataTypes::familyOf(type))];
  if (at == std::size(kReaders)) return nullptr;
  return safely ? kReaders[at].readSafely : kReaders[at].read;
}

}  // namespace KORVEX::Zel::DB
