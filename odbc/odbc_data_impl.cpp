#include "odbc/odbc_data_impl.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

#include "odbc/cell_readers.h"
#include "odbc/data_value_bytes.h"
#include "odbc/odbc_query_impl.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

// One buffer size for every number of a fixed size.
constexpr int kNumberBufferBytes = 24;

struct CTypeRule {
  SQLSMALLINT cType;
  bool number;  // the buffer length is fixed, else as given
};

constexpr CTypeRule kCTypes[] = {
    {SQL_C_UTINYINT, true}, {SQL_C_STINYINT, true},   {SQL_C_ULONG, true},
    {SQL_C_USHORT, true},   {SQL_C_SLONG, true},      {SQL_C_SSHORT, true},
    {SQL_C_BIT, true},      {SQL_C_TINYINT, true},    {SQL_C_LONG, true},
    {SQL_C_SHORT, true},    {SQL_C_FLOAT, true},      {SQL_C_DOUBLE, true},
    {SQL_C_UBIGINT, false}, {SQL_C_SBIGINT, false},   {SQL_C_BINARY, false},
    {SQL_C_CHAR, false},    {SQL_C_TYPE_TIME, false}, {SQL_C_TYPE_TIMESTAMP, false},
};

constexpr std::uint32_t kSizeAsGiven = 0;

// SQL types whose decimal digits are always 0; most have one size only.
struct SqlTypeRule {
  SQLSMALLINT sqlType;
  std::uint32_t columnSize;
};

constexpr SqlTypeRule kSqlTypes[] = {
    {SQL_BIT, 1},
    {SQL_TINYINT, 3},
    {SQL_BIGINT, 19},
    {SQL_INTEGER, 10},
    {SQL_SMALLINT, 5},
    {SQL_REAL, 7},
    {SQL_FLOAT, 15},
    {SQL_DOUBLE, 15},
    {SQL_LONGVARBINARY, kSizeAsGiven},
    {SQL_VARBINARY, kSizeAsGiven},
    {SQL_BINARY, kSizeAsGiven},
    {SQL_LONGVARCHAR, kSizeAsGiven},
    {SQL_CHAR, kSizeAsGiven},
    {SQL_VARCHAR, kSizeAsGiven},
};

}  // namespace

OdbcDataImpl::OdbcDataImpl(OdbcQueryImpl* owner, short number)
    : OdbcImpl(owner),
      owner_(owner),
      envHandle_(owner->GetHandle(e_Env)),
      dbcHandle_(owner->GetHandle(e_Dbc)),
      stmtHandle_(owner->GetHandle(e_Stmt)),
      number_(number) {}

OdbcDataImpl::~OdbcDataImpl() {
  DeleteChildren();
  OdbcDataImpl::Finalize();
}

Odbc::e_Status OdbcDataImpl::Initialize() {
  return number_ < 1 ? e_Error : e_Ok;
}

SQLHANDLE OdbcDataImpl::GetHandle(e_Handle kind) {
  switch (kind) {
    case e_Env:
      return envHandle_;
    case e_Dbc:
      return dbcHandle_;
    case e_Stmt:
      return stmtHandle_;
    case e_None:
      break;
  }
  return SQL_NULL_HANDLE;
}

Odbc::e_Status OdbcDataImpl::failureFromOwner(SQLRETURN rc) {
  return GetStatus(owner_, rc);
}

Odbc::e_Status OdbcDataImpl::SetCType(short cType, int lengthBytes) {
  const auto* rule = std::find_if(std::begin(kCTypes), std::end(kCTypes),
                                  [cType](const CTypeRule& row) { return row.cType == cType; });
  if (rule != std::end(kCTypes)) {
    const int length = rule->number ? kNumberBufferBytes : lengthBytes;
    if (content_.cType != cType || lengthBytes_ != length) bound_ = false;
    content_.cType = cType;
    lengthBytes_ = length;
    content_.indicator = SQL_NULL_DATA;
  }
  return GetStatus(SQL_SUCCESS);
}

Odbc::e_Status OdbcDataImpl::SetSqlType(short sqlType, unsigned int columnSize,
                                        short decimalDigits) {
  const auto* rule =
      std::find_if(std::begin(kSqlTypes), std::end(kSqlTypes),
                   [sqlType](const SqlTypeRule& row) { return row.sqlType == sqlType; });
  const bool listed = rule != std::end(kSqlTypes);
  bound_ = false;
  content_.sqlType = sqlType;
  content_.columnSize = listed && rule->columnSize != kSizeAsGiven ? rule->columnSize : columnSize;
  content_.decimalDigits = listed ? short{0} : decimalDigits;
  return GetStatus(SQL_SUCCESS);
}

Odbc::e_Status OdbcDataImpl::SetDirection(short direction) {
  const bool known = direction == SQL_PARAM_INPUT || direction == SQL_PARAM_INPUT_OUTPUT ||
                     direction == SQL_PARAM_OUTPUT;
  if (known && direction != direction_) {
    direction_ = direction;
    bound_ = false;
  }
  return GetStatus(SQL_SUCCESS);
}

Odbc::e_Status OdbcDataImpl::GetCType(short& cType, int& lengthBytes) {
  cType = content_.cType;
  lengthBytes = lengthBytes_;
  return e_Ok;
}

Odbc::e_Status OdbcDataImpl::GetSqlType(short& sqlType, unsigned int& columnSize,
                                        short& decimalDigits) {
  sqlType = content_.sqlType;
  columnSize = content_.columnSize;
  decimalDigits = content_.decimalDigits;
  return e_Ok;
}

Odbc::e_Status OdbcDataImpl::GetDirection(short& direction) {
  direction = direction_;
  return e_Ok;
}

Odbc::e_Status OdbcDataImpl::SetBindArea() {
  const unsigned char* block = content_.buffer.Data();
  const std::uint32_t size = content_.buffer.Length();
  const std::uint32_t wanted = static_cast<std::uint32_t>(std::max(lengthBytes_, 0)) + 1;
  if (size == wanted) {
    std::memset(content_.buffer.Data(), 0, std::min(writtenBytes_, wanted));
  } else {
    content_.buffer.Truncate(0, 0);
    content_.buffer.Extend(wanted, 0);
  }
  writtenBytes_ = 0;
  if (content_.buffer.Data() != block || content_.buffer.Length() != size) bound_ = false;
  return GetStatus(SQL_SUCCESS);
}

Odbc::e_Status OdbcDataImpl::SetData() {
  const e_Status status = SetBindArea();
  content_.indicator = 0;
  return status;
}

Odbc::e_Status OdbcDataImpl::storeBytes(short cType, int lengthBytes, const void* value,
                                        std::size_t valueBytes, SQLLEN indicator) {
  SetCType(cType, lengthBytes);
  SetBindArea();
  // The value may be larger than the length that is told to ODBC; the spare bytes that every block
  // has take it.
  if (valueBytes >= content_.buffer.Capacity()) return e_Error;
  if (valueBytes > 0) std::memcpy(content_.buffer.Data(), value, valueBytes);
  writtenBytes_ = static_cast<std::uint32_t>(valueBytes);
  content_.indicator = indicator;
  return e_Ok;
}

// Text and bytes never make the buffer shorter, so that the binding lasts over shorter values.
Odbc::e_Status OdbcDataImpl::storeText(short cType, const void* value, std::size_t valueBytes) {
  if (valueBytes > static_cast<std::size_t>(std::numeric_limits<int>::max())) return e_Error;
  const int length = std::max(static_cast<int>(valueBytes), lengthBytes_);
  return storeBytes(cType, length, value, valueBytes, static_cast<SQLLEN>(valueBytes));
}

Odbc::e_Status OdbcDataImpl::SetData(ByteStore* value, bool binary) {
  const ByteStore none;
  const ByteStore& bytes = value == nullptr ? none : *value;
  return storeText(binary ? SQL_C_BINARY : SQL_C_CHAR, bytes.Data(), bytes.Length());
}

Odbc::e_Status OdbcDataImpl::SetData(unsigned int typeCode, const DataTypes::DataValue& value) {
  const auto content = dataValueBytes(typeCode, value, false);
  if (!content) return e_Error;
  return storeText(content->cType(), content->bytes.data(), content->bytes.size());
}

Odbc::e_Status OdbcDataImpl::bindParameter(SQLPOINTER data, SQLLEN bufferBytes,
                                           SQLLEN* indicators) {
  const e_Status status = statusFromOwner(SQLBindParameter(
      stmtHandle_, static_cast<SQLUSMALLINT>(number_), direction_, content_.cType, content_.sqlType,
      content_.columnSize, content_.decimalDigits, data, bufferBytes, indicators));
  if (status == e_Ok) bound_ = true;
  return status;
}

Odbc::e_Status OdbcDataImpl::GetData(char& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(bool& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(short& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(int& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(long& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(unsigned char& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(unsigned short& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(unsigned int& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(unsigned long& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(double& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(TIMESTAMP_STRUCT& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(TIME_STRUCT& value) {
  return readCell(content_, value);
}

Odbc::e_Status OdbcDataImpl::GetData(ByteStore* value) {
  if (value == nullptr) return e_Error;
  value->Truncate(0, 0);
  if (isNull()) return e_Null;
  value->Append(content_.buffer.Data(), content_.buffer.Length());
  return e_Ok;
}

Odbc::e_Status OdbcDataImpl::GetBytes(std::span<const unsigned char>& bytes) {
  bytes = {};
  if (isNull()) return e_Null;
  bytes = {content_.buffer.Data(), content_.buffer.Length()};
  return e_Ok;
}

}  // namespace KORVEX::Zel::DB::ODBC
