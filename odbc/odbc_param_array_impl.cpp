#include "odbc/odbc_param_array_impl.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

#include "odbc/data_value_bytes.h"
#include "odbc/narrowed.h"
#include "odbc/odbc_query_impl.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

// Drivers that do not know a parameter's size describe one from here on. Such a size is no reason
// to pad a value, nor to reserve it for every row.
constexpr std::uint32_t kSizeUnknownFrom = 64 * 1024;

// So that the 32-bit indicators can say the length.
constexpr std::size_t kLargestValue = std::numeric_limits<std::int32_t>::max() - 1;

// Types whose values are cut to the described size. A number cut short would be another number.
constexpr SQLSMALLINT kCutTypes[] = {
    SQL_CHAR,         SQL_VARCHAR, SQL_LONGVARCHAR, SQL_WCHAR,         SQL_WVARCHAR,
    SQL_WLONGVARCHAR, SQL_BINARY,  SQL_VARBINARY,   SQL_LONGVARBINARY,
};

}  // namespace

Odbc::e_Status OdbcParamArrayImpl::Initialize() {
  if (const e_Status status = OdbcParamImpl::Initialize(); status != e_Ok) return status;
  SQLSMALLINT sqlType = 0;
  SQLULEN size = 0;
  SQLSMALLINT decimalDigits = 0;
  SQLSMALLINT nullable = 0;
  const e_Status status = statusFromOwner(SQLDescribeParam(
      stmtHandle_, static_cast<SQLUSMALLINT>(number_), &sqlType, &size, &decimalDigits, &nullable));
  if (status != e_Ok) return status;
  describedBytes_ = narrowed<std::uint32_t>(size);
  content_.columnSize = describedBytes_;
  lengthBytes_ = narrowed<std::int32_t>(size);
  return e_Ok;
}

Odbc::e_Status OdbcParamArrayImpl::SetSqlType(short sqlType, unsigned int columnSize,
                                              short decimalDigits) {
  if (sqlTypeFixed_) return GetStatus(SQL_SUCCESS);
  sqlTypeFixed_ = true;
  return OdbcParamImpl::SetSqlType(sqlType, columnSize, decimalDigits);
}

Odbc::e_Status OdbcParamArrayImpl::SetCType(short cType, int lengthBytes) {
  if (cTypeFixed_) return GetStatus(SQL_SUCCESS);
  std::int64_t length = lengthBytes;
  bool described = false;
  if (cType == SQL_C_CHAR) {
    described = lengthBytes < 1;
    length = (described ? std::int64_t{describedBytes_} : length) + 1;
  } else if (cType == SQL_C_BINARY) {
    described = true;
    length = describedBytes_;
  } else if (cType == SQL_C_SBIGINT || cType == SQL_C_UBIGINT) {
    length = sizeof(std::int64_t);
  }
  const e_Status status = OdbcParamImpl::SetCType(cType, narrowed<int>(length));
  cTypeFixed_ = content_.cType == cType;
  if (cTypeFixed_) lengthIsDescribed_ = described;
  return status;
}

Odbc::e_Status OdbcParamArrayImpl::SetDirection(short direction) {
  if (directionFixed_) return GetStatus(SQL_SUCCESS);
  const e_Status status = OdbcParamImpl::SetDirection(direction);
  directionFixed_ = direction_ == direction;
  return status;
}

Odbc::e_Status OdbcParamArrayImpl::appendIndicator(std::int32_t indicator) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(&indicator);
  if (indicators_.Append(bytes, sizeof indicator) == 0) return e_Error;
  ++rows_;
  bound_ = false;
  return GetStatus(SQL_SUCCESS);
}

// Whether a value of this layout may follow the rows so far.
bool OdbcParamArrayImpl::decideLayout(Layout layout, std::uint32_t valueBytes) {
  if (layout_ == Layout::kUndecided) {
    // Rows that came before the first value are padding; only now is it known how much.
    layout_ = layout;
    valueBytes_ = valueBytes;
    return appendNulls(static_cast<std::size_t>(rows_));
  }
  return layout_ == layout && valueBytes_ == valueBytes;
}

// The place of NULL rows, without their indicators.
bool OdbcParamArrayImpl::appendNulls(std::size_t rows) {
  if (layout_ == Layout::kFixed) {
    const std::uint64_t length = content_.buffer.Length() + std::uint64_t{valueBytes_} * rows;
    return length <= std::numeric_limits<std::uint32_t>::max() &&
           content_.buffer.Extend(static_cast<std::uint32_t>(length), 0) == length;
  }
  if (layout_ == Layout::kCollected) {
    records_.insert(records_.end(), rows, Record{collected_.Length(), 0});
  }
  return true;
}

Odbc::e_Status OdbcParamArrayImpl::appendFixed(const void* value, std::uint32_t bytes,
                                               bool isNull) {
  if (!decideLayout(Layout::kFixed, bytes)) return e_Error;
  const bool done =
      isNull ? appendNulls(1)
             : content_.buffer.Append(static_cast<const unsigned char*>(value), bytes) != 0;
  return done ? appendIndicator(isNull ? SQL_NULL_DATA : 0) : e_Error;
}

Odbc::e_Status OdbcParamArrayImpl::appendCollected(std::span<const unsigned char> value, bool text,
                                                   std::int32_t indicator) {
  if (!decideLayout(Layout::kCollected, 0)) return e_Error;
  if (value.size() > kLargestValue) return e_Error;
  const Record record = {collected_.Length(), static_cast<std::uint32_t>(value.size())};
  if (record.bytes > 0 && collected_.Append(value.data(), record.bytes) == 0) return e_Error;
  records_.push_back(record);
  if (indicator != SQL_NULL_DATA) width_ = std::max(width_, record.bytes + (text ? 1 : 0));
  return appendIndicator(indicator);
}

bool OdbcParamArrayImpl::cutsToDescribedSize() const {
  return describedBytes_ > 0 &&
         (!sqlTypeFixed_ || std::find(std::begin(kCutTypes), std::end(kCutTypes),
                                      content_.sqlType) != std::end(kCutTypes));
}

Odbc::e_Status OdbcParamArrayImpl::appendCut(std::span<const unsigned char> value, bool binary,
                                             bool isNull) {
  const std::int32_t given = binary ? narrowed<std::int32_t>(value.size()) : std::int32_t{SQL_NTS};
  std::size_t kept = isNull ? 0 : value.size();
  if (kept > describedBytes_ && cutsToDescribedSize()) kept = describedBytes_;
  return appendCollected(value.first(kept), !binary, isNull ? std::int32_t{SQL_NULL_DATA} : given);
}

Odbc::e_Status OdbcParamArrayImpl::SetText(std::string_view text, bool isNull) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  return appendCut({bytes, text.size()}, false, isNull);
}

Odbc::e_Status OdbcParamArrayImpl::SetData(ByteStore* value, bool binary, bool isNull) {
  ByteStore none;
  ByteStore& store = value == nullptr ? none : *value;
  const std::uint32_t length = store.Length();
  const e_Status status = appendCut({store.Data(), length}, binary, isNull);
  // Callers see what was kept of their value.
  const bool resize = describedBytes_ > 0 && describedBytes_ < kSizeUnknownFrom;
  if (resize && (cutsToDescribedSize() || length < describedBytes_))
    store.Resize(describedBytes_, 0);
  return status;
}

Odbc::e_Status OdbcParamArrayImpl::SetData(unsigned int typeCode, const DataTypes::DataValue& value,
                                           bool isNull) {
  const auto content = dataValueBytes(typeCode, value, isNull);
  if (!content) return e_Error;
  const std::int32_t given =
      content->binary ? narrowed<std::int32_t>(content->bytes.size()) : std::int32_t{SQL_NTS};
  const e_Status status = appendCollected(content->bytes, !content->binary,
                                          isNull ? std::int32_t{SQL_NULL_DATA} : given);
  if (status == e_Ok) variableLength_ = true;
  return status;
}

// The width of a row in what is bound, which is also the buffer length that tells the driver so.
std::uint32_t OdbcParamArrayImpl::slotBytes() const {
  const std::uint32_t needed = std::max(width_, 1U);
  if (variableLength_) return needed;
  // The cell's length is what the caller or the driver promised; a longer value widens the slots.
  if (lengthIsDescribed_ && describedBytes_ >= kSizeUnknownFrom) return needed;
  return std::max(needed, static_cast<std::uint32_t>(std::max(lengthBytes_, 0)));
}

bool OdbcParamArrayImpl::packSlots(std::uint32_t slot) {
  const std::uint64_t total = std::uint64_t{slot} * std::max<std::size_t>(records_.size(), 1);
  packed_.Truncate(0, 0);
  if (total > std::numeric_limits<std::uint32_t>::max()) return false;
  if (packed_.ExtendUnset(static_cast<std::uint32_t>(total)) != total) return false;
  unsigned char* to = packed_.Data();
  for (const Record& record : records_) {
    if (record.bytes > 0) std::memcpy(to, collected_.Data() + record.offset, record.bytes);
    std::memset(to + record.bytes, 0, slot - record.bytes);
    to += slot;
  }
  return true;
}

// Drivers read 64-bit entries. None may say more bytes than there are: a value may have been cut.
void OdbcParamArrayImpl::widenIndicators() {
  boundIndicators_.resize(static_cast<std::size_t>(std::max(rows_, 1)));
  for (std::size_t row = 0; row < static_cast<std::size_t>(rows_); ++row) {
    std::int32_t entry = 0;
    std::memcpy(&entry, indicators_.Data() + row * sizeof entry, sizeof entry);
    boundIndicators_[row] =
        layout_ == Layout::kCollected ? std::min<SQLLEN>(entry, records_[row].bytes) : entry;
  }
}

Odbc::e_Status OdbcParamArrayImpl::Bind() {
  if (bound_) return e_Ok;
  if (layout_ != Layout::kCollected) {
    // ODBC knows the size of these types and takes it for the distance of the rows.
    widenIndicators();
    return bindParameter(content_.buffer.Data(), lengthBytes_, boundIndicators_.data());
  }
  const std::uint32_t slot = slotBytes();
  if (!packSlots(slot)) {
    GetStatus(SQL_SUCCESS);
    return e_Error;
  }
  widenIndicators();
  return bindParameter(packed_.Data(), slot, boundIndicators_.data());
}

void OdbcParamArrayImpl::CutRows(int rows) {
  if (rows_ <= rows) return;
  rows_ = rows;
  bound_ = false;
  const auto kept = static_cast<std::uint32_t>(rows);
  indicators_.Truncate(kept * static_cast<std::uint32_t>(sizeof(std::int32_t)), 0);
  if (layout_ == Layout::kFixed) content_.buffer.Truncate(kept * valueBytes_, 0);
  if (layout_ == Layout::kCollected) {
    collected_.Truncate(records_[kept].offset, 0);
    records_.resize(kept);
  }
}

void OdbcParamArrayImpl::padFar(int rows) {
  while (rows_ < rows) {
    if (!appendNulls(1) || appendIndicator(SQL_NULL_DATA) != e_Ok) return;
  }
}

}  // namespace KORVEX::Zel::DB::ODBC
