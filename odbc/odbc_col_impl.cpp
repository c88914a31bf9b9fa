#include "odbc/odbc_col_impl.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>

#include "datatypes/short_number.h"
#include "odbc/long_data_read.h"
#include "odbc/narrowed.h"
#include "odbc/odbc_query_impl.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

constexpr SQLSMALLINT kNameBytes = 256;
// "-9223372036854775808", and MariaDB's unsigned 64-bit integers.
constexpr std::uint32_t kLongestBigInt = 20;

// C types whose values are not handed out as bytes.
// Kept: for these a byte store gets the text of the 64-bit column, and nothing of the others.
constexpr SQLSMALLINT kNotGivenAsBytes[] = {SQL_C_SBIGINT, SQL_C_TINYINT, SQL_C_LONG, SQL_C_SHORT,
                                            SQL_C_DOUBLE};

// The usual text is read at once; the rest (blanks, a plus sign, long numbers) is strtoll's to
// judge.
bool readLong(const ByteStore& text, std::int64_t& value) {
  static_assert(kLongestBigInt >= DataTypes::kShortNumberRoom);
  if (DataTypes::readShortInteger(text.Text(), text.Length(), value)) return true;
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
  displaySize_ = displaySize > 0 ? narrowed<std::uint32_t>(displaySize) : content_.columnSize;
  SQLLEN isUnsigned = SQL_FALSE;
  if (const e_Status status = attribute(SQL_COLUMN_UNSIGNED, isUnsigned); status != e_Ok) {
    return status;
  }

  const ColumnRule& rule = columnRule(content_.sqlType);
  wide_ = rule.characters == CharacterKind::kWide;
  if (rule.characters == CharacterKind::kNarrow) content_.decimalDigits = 0;
  std::int64_t bytes = rule.bufferBytes({content_.columnSize, displaySize_});
  if (bytes > std::numeric_limits<int>::max()) bytes = kFirstPiece;
  SetCType(isUnsigned != SQL_FALSE ? rule.unsignedCType : rule.cType, static_cast<int>(bytes));
  // Long data get their buffer when it is known how long they are.
  if (content_.cType != SQL_C_CHAR && content_.cType != SQL_C_BINARY) SetData();
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
  content_.sqlType = sqlType;
  content_.columnSize = narrowed<std::uint32_t>(columnSize);
  content_.decimalDigits = decimalDigits;
  nullable_ = nullable;
  return e_Ok;
}

Odbc::e_Status OdbcColImpl::attribute(SQLUSMALLINT field, SQLLEN& value) {
  return statusFromOwner(SQLColAttribute(stmtHandle_, static_cast<SQLUSMALLINT>(number_), field,
                                         nullptr, 0, nullptr, &value));
}

Odbc::e_Status OdbcColImpl::SetCType(short cType, int lengthBytes) {
  const e_Status status = OdbcDataImpl::SetCType(cType, lengthBytes);
  plan_ = cellReadRule(content_.cType);
  if (plan_.read == CellRead::kLong) {
    plan_.bytes = static_cast<std::uint32_t>(LongDataRead::firstRequest(lengthBytes_, wide_));
  } else if (plan_.read == CellRead::kBigInt) {
    plan_.bytes = std::clamp(displaySize_, kLongestBigInt, std::uint32_t{kFirstPiece}) + 1;
  }
  return status;
}

Odbc::e_Status OdbcColImpl::GetName(std::string& name) {
  name = name_.Text();
  return e_Ok;
}

Odbc::e_Status OdbcColImpl::GetData(ByteStore* value) {
  const bool asText = std::find(std::begin(kNotGivenAsBytes), std::end(kNotGivenAsBytes),
                                content_.cType) != std::end(kNotGivenAsBytes);
  if (!asText || value == nullptr || isNull()) return OdbcDataImpl::GetData(value);
  *value = text_;
  return e_Ok;
}

Odbc::e_Status OdbcColImpl::readBigInt() {
  unsigned char* const text = text_.ReplaceUnset(plan_.bytes);
  if (text == nullptr) return e_Error;
  // The digits of an earlier row must not be read again where a driver leaves the text alone.
  std::memset(text, 0, kLongestBigInt + 1);
  const SQLRETURN rc = getData(SQL_C_CHAR, text, plan_.bytes);
  return keepUsualBigInt(rc) ? GetStatus(rc) : keepBigInt(rc);
}

// The usual answer: a short text that is one number, in the place of another number.
[[gnu::always_inline]] inline bool OdbcColImpl::keepUsualBigInt(SQLRETURN rc) {
  const SQLLEN length = content_.indicator;
  if (rc != SQL_SUCCESS || length < 1 || length >= plan_.bytes ||
      content_.buffer.Length() != sizeof(std::int64_t)) {
    return false;
  }
  text_.CutTail(static_cast<std::uint32_t>(length));
  // Where the value belongs: a block of the allocator, aligned for everything.
  auto& value = *reinterpret_cast<std::int64_t*>(content_.buffer.Data());
  return DataTypes::readShortInteger(text_.Text(), text_.Length(), value);
}

// Every answer.
Odbc::e_Status OdbcColImpl::keepBigInt(SQLRETURN rc) {
  const e_Status status = statusFromOwner(rc);
  // An indicator beyond the buffer means that the text was cut: it is no 64-bit number.
  SQLLEN& indicator = content_.indicator;
  if (indicator == SQL_NO_TOTAL) {
    indicator = static_cast<SQLLEN>(strnlen(text_.Text(), kLongestBigInt + 1));
  }
  const bool fits = indicator >= 0 && indicator < plan_.bytes;
  text_.Truncate(status == e_Ok && fits ? static_cast<std::uint32_t>(indicator) : 0, 0);
  if (status != e_Ok || isNull()) {
    content_.buffer.Truncate(0, 0);
    return status;
  }
  std::int64_t value = 0;
  if (!readLong(text_, value)) return e_Error;
  if (content_.buffer.Length() != sizeof value) {
    content_.buffer.Truncate(0, 0);
    if (content_.buffer.Extend(sizeof value, 0) != sizeof value) return e_Error;
  }
  std::memcpy(content_.buffer.Data(), &value, sizeof value);
  return e_Ok;
}

// What is wrong is not the driver's: there is no record of it.
[[gnu::cold]] Odbc::e_Status OdbcColImpl::failWithoutRecord() {
  GetStatus(SQL_SUCCESS);
  return e_Error;
}

Odbc::e_Status OdbcColImpl::readLongData() {
  const std::int64_t request = plan_.bytes;
  unsigned char* const room = LongDataRead::makeFirstRoom(content_.buffer, plan_.bytes);
  if (room == nullptr) return failWithoutRecord();
  const SQLRETURN rc = getData(content_.cType, room, request);
  if (!LongDataRead::isWhole(rc, content_.indicator, request)) return readPieces(rc, request);
  content_.buffer.CutTail(static_cast<std::uint32_t>(content_.indicator));
  return GetStatus(SQL_SUCCESS);
}

// `rc` answered the first request.
Odbc::e_Status OdbcColImpl::readPieces(SQLRETURN rc, std::int64_t request) {
  LongDataRead read(content_.buffer, content_.cType == SQL_C_CHAR, wide_, request);
  for (;;) {
    if (rc == SQL_NO_DATA && read.endEarly(content_.indicator)) return GetStatus(SQL_SUCCESS);
    if (!SQL_SUCCEEDED(rc)) return statusFromOwner(rc);
    SQLLEN total = 0;
    switch (read.take(rc, content_.indicator, total)) {
      case LongDataRead::Step::kMore:
        break;  // the warning of a piece that was cut is not read: the next call would replace it
      case LongDataRead::Step::kDone:
        content_.indicator = total;
        return statusFromOwner(rc);
      case LongDataRead::Step::kNull:
        content_.buffer.Truncate(0, 0);
        return statusFromOwner(rc);
      case LongDataRead::Step::kImpossible:
        return failWithoutRecord();
    }
    if (!read.prepare()) return failWithoutRecord();
    rc = getData(content_.cType, read.target(), read.request());
  }
}

}  // namespace KORVEX::Zel::DB::ODBC
