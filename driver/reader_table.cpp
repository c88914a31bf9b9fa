#include "driver/reader_table.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

#include "datatypes/data_types.h"
#include "datatypes/large_pages.h"
#include "datatypes/short_number.h"
#include "driver/column_number.h"
#include "driver/date_time_column.h"
#include "odbc/cell_readers.h"

namespace KORVEX::Zel::DB {

namespace {

using DataTypes::DataValue;
using DataTypes::TypeFamily;
using ODBC::CellContent;
using ODBC::Odbc;

// The bytes of a text, binary or structure column where they lie; a text has its NUL behind it.
ReadResult readBytes(const CellContent& column, std::string_view& bytes) {
  if (column.isNull()) return {ReadResult::kNull};
  bytes = {column.buffer.Text(), column.buffer.Length()};
  return {ReadResult::kValue};
}

bool comesAsBytes(const CellContent& column) {
  return column.cType == SQL_C_CHAR || column.cType == SQL_C_BINARY;
}

// A malloc'ed copy with a NUL behind it, also of no bytes at all; null when there is no memory.
char* copyBytes(std::string_view bytes) {
  char* copy = static_cast<char*>(std::malloc(bytes.size() + 1));
  if (copy == nullptr) return nullptr;
  DataTypes::preferLargePages(copy, bytes.size());
  std::memcpy(copy, bytes.data(), bytes.size());
  copy[bytes.size()] = '\0';
  return copy;
}

constexpr ReadResult kOutOfMemory = {ReadResult::kFailed, "not enough memory for the value"};

template <auto Member, typename Value>
ReadResult readWith(const CellContent& column, unsigned int, DataValue& cell) {
  Value value{};
  const ReadResult result = readResultOf(ODBC::readCell(column, value));
  if (result.outcome == ReadResult::kValue) cell.*Member = value;
  return result;
}

// 64-bit integers come from their own C type, from any other numeric one when the number fits, and
// from text.
ReadResult readInt64(const CellContent& column, unsigned int, DataValue& cell) {
  long value = 0;
  Odbc::e_Status status = Odbc::e_Error;
  if (column.cType == SQL_C_SBIGINT || column.cType == SQL_C_CHAR) {
    status = ODBC::readCell(column, value);
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

ReadResult readDouble(const CellContent& column, unsigned int, DataValue& cell) {
  double value = 0;
  Odbc::e_Status status = Odbc::e_Error;
  if (column.cType == SQL_C_DOUBLE || column.cType == SQL_C_CHAR) {
    status = ODBC::readCell(column, value);
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
ReadResult readAsText(const CellContent& column, bool plainNumbers, std::string& formatted,
                      std::string_view& text) {
  if (comesAsBytes(column)) return readBytes(column, text);
  if (column.cType == SQL_C_TYPE_TIMESTAMP || column.cType == SQL_C_TYPE_TIME) {
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

ReadResult readString(const CellContent& column, unsigned int, DataValue& cell) {
  std::string formatted;
  std::string_view text;
  const ReadResult result = readAsText(column, false, formatted, text);
  if (result.outcome != ReadResult::kValue) return result;
  char* copy = copyBytes(text);
  if (copy == nullptr) return kOutOfMemory;
  cell.string = copy;
  return result;
}

ReadResult readBinary(const CellContent& column, unsigned int, DataValue& cell) {
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
unsigned int parsedType(const CellContent& column, unsigned int type, std::string_view text) {
  if (DataTypes::typeNumber(type) != DataTypes::kFixedDecimal ||
      DataTypes::precisionOf(type) != 0) {
    return type;
  }
  constexpr int kMaxPrecision = DataTypes::kMaxDecimalPrecision;
  if (column.sqlType == SQL_DECIMAL || column.sqlType == SQL_NUMERIC) {
    const int precision = static_cast<int>(std::min<unsigned>(column.columnSize, kMaxPrecision));
    return DataTypes::createFixedDecimal(precision,
                                         std::clamp<int>(column.decimalDigits, 0, precision));
  }
  const std::size_t point = text.find_first_of(".,");
  const std::size_t scale = point == std::string_view::npos ? 0 : text.size() - point - 1;
  return DataTypes::createFixedDecimal(
      kMaxPrecision, static_cast<int>(std::min<std::size_t>(scale, kMaxPrecision)));
}

// Parses the column's text as the type.
ReadResult readParsed(const CellContent& column, unsigned int type, DataValue& cell) {
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

// The usual decimal straight from the column's text; every other text goes the general way.
ReadResult readDecimal(const CellContent& column, unsigned int type, DataValue& cell) {
  const bool isText = column.cType == SQL_C_CHAR && !column.isNull();
  if (isText && column.buffer.Capacity() >= DataTypes::kShortNumberRoom &&
      DataTypes::readShortDecimal(column.buffer.Text(), column.buffer.Length(), type,
                                  cell.decimal)) {
    return {ReadResult::kValue};
  }
  return readParsed(column, type, cell);
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
    {TypeFamily::kFixedDecimal, readDecimal},
    {TypeFamily::kBinary, readBinary},
};

// A number of the C type that usually comes for its family, as it lies in the buffer. The same as
// the family's own reader, which would first look the C type up.
template <auto Member, typename Raw, typename Value = Raw>
ReadResult readAsItLies(const CellContent& column, unsigned int, DataValue& cell) {
  if (column.isNull()) return {ReadResult::kNull};
  Raw raw;
  if (column.buffer.Capacity() < sizeof raw) return {ReadResult::kFailed};
  std::memcpy(&raw, column.buffer.Data(), sizeof raw);
  cell.*Member = static_cast<Value>(raw);
  return {ReadResult::kValue};
}

// A text column's characters with the NUL that stands behind them. The same as readString, which
// would first ask how the column comes.
ReadResult readText(const CellContent& column, unsigned int, DataValue& cell) {
  if (column.isNull()) return {ReadResult::kNull};
  const char* text = column.buffer.Text();
  const std::size_t bytes = std::size_t{column.buffer.Length()} + 1;
  void* copy = std::malloc(bytes);
  if (copy == nullptr) return kOutOfMemory;
  copy = DataTypes::preferLargePages(copy, bytes);
  cell.string = static_cast<const char*>(std::memcpy(copy, text, bytes));
  return {ReadResult::kValue};
}

struct DirectReaderRow {
  TypeFamily family;
  short cType;
  ColumnReader read;
};

constexpr DirectReaderRow kDirectReaders[] = {
    {TypeFamily::kInt16, SQL_C_SHORT, readAsItLies<&DataValue::int16, std::int16_t>},
    {TypeFamily::kInt32, SQL_C_LONG, readAsItLies<&DataValue::int32, std::int32_t>},
    {TypeFamily::kInt64, SQL_C_SBIGINT, readAsItLies<&DataValue::int64, std::int64_t>},
    {TypeFamily::kInterval, SQL_C_SBIGINT, readAsItLies<&DataValue::int64, std::int64_t>},
    {TypeFamily::kDouble, SQL_C_DOUBLE, readAsItLies<&DataValue::float64, double>},
    {TypeFamily::kString, SQL_C_CHAR, readText},
    {TypeFamily::kBoolean, SQL_C_BIT, readAsItLies<&DataValue::boolean, std::uint8_t, bool>},
};

}  // namespace

ReadResult readResultOf(Odbc::e_Status status) {
  if (status == Odbc::e_Ok) return {ReadResult::kValue};
  return {status == Odbc::e_Null ? ReadResult::kNull : ReadResult::kFailed};
}

constexpr std::array<TypeReaders, DataTypes::kTypeCount> kColumnReaders = [] {
  std::array<TypeReaders, DataTypes::kTypeCount> readers{};
  for (unsigned type = 0; type < DataTypes::kTypeCount; ++type) {
    for (const ReaderRow& row : kReaders) {
      if (row.family == DataTypes::familyOf(type)) readers[type] = {row.read, row.readSafely};
    }
  }
  return readers;
}();

ColumnReader settleColumnReader(unsigned int type, short cType, bool safely) {
  for (const DirectReaderRow& row : kDirectReaders) {
    if (row.family == DataTypes::familyOf(type) && row.cType == cType) return row.read;
  }
  const ColumnReader ofTimestamps =
      cType == SQL_C_TYPE_TIMESTAMP ? findTimestampReader(type, safely) : nullptr;
  return ofTimestamps != nullptr ? ofTimestamps : findColumnReader(type, safely);
}

}  // namespace KORVEX::Zel::DB
