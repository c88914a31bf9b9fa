#include "odbc/odbc_col_impl.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>

#include "odbc/long_data_read.h"
#include "odbc/narrowed.h"
#include "odbc/odbc_query_impl.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

constexpr SQLSMALLINT kNameBytes = 256;
constexpr std::uint32_t kLargestFixedBytes = 16;
// "-9223372036854775808", and MariaDB's unsigned 64-bit integers.
constexpr std::uint32_t kLongestBigInt = 20;

// C types whose values are not handed out as bytes.
// Kept: for these a byte store gets the text of the 64-bit column, and nothing of the others.
constexpr SQLSMALLINT kNotGivenAsBytes[] = {SQL_C_SBIGINT, SQL_C_TINYINT, SQL_C_LONG, SQL_C_SHORT,
                                            SQL_C_DOUBLE};

// What std::from_chars reads to the end, strtoll reads alike; the rest (blanks, a plus sign, a
// number out of range) is strtoll's to judge.
bool readLong(const ByteStore& text, std::int64_t& value) {
  const auto read = std::from_chars(text.Text(), text.Text() + text.Length(), value);
  if (read.ec == std::errc() && read.ptr == text.Text() + text.Length()) return true;
  char* end = nullptr;
  errno = 0;
  const long long parsed = std::strtoll(text.Text(), &end, 10);
  if (end != text.Text() + text.Length() || text.Length() == 0 || errno == ERANGE) return false;
  value = parsed;
  return true;
}

}  // namespace

Odbc::e_Status OdbcColImpl::Initialize() {
  if (const e_Status status = OdbcDataImpl::Initialize(); status != e_Ok) return status;
  if (const e_Status status = describe(); status != e_Ok) return status;
  SQLLEN displaySize = 0;
  if (const e_Status status = attribute(SQL_COLUMN_DISPLAY_SIZE, displaySize); status != e_Ok) {
    return status;
  }
  // 0 and less: the driver does not know.
  displaySize_ = displaySize > 0 ? narrowed<std::uint32_t>(displaySize) : columnSize_;
  SQLLEN isUnsigned = SQL_FALSE;
  if (const e_Status status = attribute(SQL_COLUMN_UNSIGNED, isUnsigned); status != e_Ok) {
    return status;
  }

  const ColumnRule& rule = columnRule(sqlType_);
  wide_ = rule.characters == CharacterKind::kWide;
  if (rule.characters == CharacterKind::kNarrow) decimalDigits_ = 0;
  std::int64_t bytes = rule.bufferBytes({columnSize_, displaySize_});
  if (bytes > std::numeric_limits<int>::max()) bytes = kFirstPiece;
  SetCType(isUnsigned != SQL_FALSE ? rule.unsignedCType : rule.cType, static_cast<int>(bytes));
  // Long data get their buffer when it is known how long they are.
  if (cType_ != SQL_C_CHAR && cType_ != SQL_C_BINARY) SetData();
  return e_Ok;
}

Odbc::e_Status OdbcColImpl::describe() {
  // All outputs start as zero: some drivers leave alone what they do not know.
  name_.Truncate(0, 0);
  name_.Extend(kNameBytes, 0);
  SQLSMALLINT nameLength = 0;
  SQLSMALLINT sqlType = 0;
  SQLULEN columnSize = 0;
  SQLSMALLINT decimalDigits = 0;
  SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
  const e_Status status = statusFromOwner(
      SQLDescribeCol(stmtHandle_, static_cast<SQLUSMALLINT>(number_), name_.Data(), kNameBytes,
                     &nameLength, &sqlType, &columnSize, &decimalDigits, &nullable));
  // A longer name was cut, and its length is that of the whole.
  nameLength_ = std::clamp<SQLSMALLINT>(nameLength, 0, kNameBytes - 1);
  name_.Resize(static_cast<std::uint32_t>(nameLength_), 0);
  if (status != e_Ok) return status;
  sqlType_ = sqlType;
  columnSize_ = narrowed<std::uint32_t>(columnSize);
  decimalDigits_ = decimalDigits;
  nullable_ = nullable;
  return e_Ok;
}

Odbc::e_Status OdbcColImpl::attribute(SQLUSMALLINT field, SQLLEN& value) {
  return statusFromOwner(SQLColAttribute(stmtHandle_, static_cast<SQLUSMALLINT>(number_), field,
                                         nullptr, 0, nullptr, &value));
}

Odbc::e_Status OdbcColImpl::SetCType(short cType, int lengthBytes) {
  const e_Status status = OdbcDataImpl::SetCType(cType, lengthBytes);
  plan_ = cellReadRule(cType_);
  return status;
}

Odbc::e_Status OdbcColImpl::GetName(std::string& name) {
  name = name_.Text();
  return e_Ok;
}

Odbc::e_Status OdbcColImpl::GetData(ByteStore* value) {
  const bool asText = std::find(std::begin(kNotGivenAsBytes), std::end(kNotGivenAsBytes), cType_) !=
                      std::end(kNotGivenAsBytes);
  if (!asText || value == nullptr || isNull()) return OdbcDataImpl::GetData(value);
  *value = text_;
  return e_Ok;
}

// NOLINTNEXTLINE(bugprone-virtual-near-miss)
Odbc::e_Status OdbcColImpl::GetData() {
  e_Status status = e_Ok;
  switch (plan_.read) {
    case CellRead::kFixed:
      status = readFixed();
      break;
    case CellRead::kBigInt:
      status = readBigInt();
      break;
    case CellRead::kLong:
      status = readLongData();
      break;
    case CellRead::kNothing:
      break;
  }
  if (status != e_Ok) indicator_ = SQL_NULL_DATA;  // never the value of an earlier row
  return status;
}

SQLRETURN OdbcColImpl::getData(SQLSMALLINT cType, unsigned char* data, SQLLEN bytes) {
  indicator_ = 0;
  return SQLGetData(stmtHandle_, static_cast<SQLUSMALLINT>(number_), cType, data, bytes,
                    &indicator_);
}

Odbc::e_Status OdbcColImpl::readFixed() {
  if (buffer_.Length() != plan_.bytes) {
    buffer_.Truncate(0, 0);
    if (buffer_.Extend(plan_.bytes, 0) != plan_.bytes) return e_Error;
  }
  std::memset(buffer_.Data(), 0, kLargestFixedBytes);  // the block has room for it
  return statusFromOwner(getData(cType_, buffer_.Data(), plan_.bytes));
}

Odbc::e_Status OdbcColImpl::readBigInt() {
  const std::uint32_t length =
      std::clamp<std::uint32_t>(displaySize_, kLongestBigInt, std::uint32_t{kFirstPiece});
  text_.Truncate(0, 0);
  if (text_.Extend(length + 1, 0) != length + 1) return e_Error;
  const e_Status status = statusFromOwner(getData(SQL_C_CHAR, text_.Data(), length + 1));
  // An indicator beyond the buffer means that the text was cut: it is no 64-bit number.
  if (indicator_ == SQL_NO_TOTAL) indicator_ = static_cast<SQLLEN>(std::strlen(text_.Text()));
  const bool fits = indicator_ >= 0 && indicator_ <= length;
  text_.Truncate(status == e_Ok && fits ? static_cast<std::uint32_t>(indicator_) : 0, 0);
  if (status != e_Ok || isNull()) {
    buffer_.Truncate(0, 0);
    return status;
  }
  std::int64_t value = 0;
  if (!readLong(text_, value)) return e_Error;
  buffer_.Truncate(0, 0);
  buffer_.Slam(0, reinterpret_cast<const unsigned char*>(&value), sizeof value);
  return e_Ok;
}

Odbc::e_Status OdbcColImpl::readLongData() {
  LongDataRead read(buffer_, cType_ == SQL_C_CHAR, wide_, lengthBytes_);
  for (;;) {
    if (!read.prepare()) {
      GetStatus(SQL_SUCCESS);
      return e_Error;
    }
    const SQLRETURN rc = getData(cType_, read.target(), read.request());
    if (rc == SQL_NO_DATA && read.endEarly(indicator_)) return GetStatus(SQL_SUCCESS);
    if (!SQL_SUCCEEDED(rc)) return statusFromOwner(rc);
    SQLLEN total = 0;
    switch (read.take(rc, indicator_, total)) {
      case LongDataRead::Step::kMore:
        break;  // the warning of a piece that was cut is not read: the next call would replace it
      case LongDataRead::Step::kDone:
        indicator_ = total;
        return statusFromOwner(rc);
      case LongDataRead::Step::kNull:
        buffer_.Truncate(0, 0);
        return statusFromOwner(rc);
      case LongDataRead::Step::kImpossible:
        GetStatus(SQL_SUCCESS);
        return e_Error;
    }
  }
}

}  // namespace KORVEX::Zel::DB::ODBC
