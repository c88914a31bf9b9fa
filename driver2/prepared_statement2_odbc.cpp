#include "driver2/prepared_statement2_odbc.h"

#include <algorithm>
#include <cstdlib>

#include "datatypes/data_types.h"
#include "driver2/boundary.h"
#include "driver2/connection2_odbc.h"
#include "driver2/db_error2_odbc.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

constexpr SQLSMALLINT kNameBytes = 256;

// What closing a statement drops, in this order.
constexpr SQLUSMALLINT kReleases[] = {SQL_CLOSE, SQL_UNBIND, SQL_RESET_PARAMS};

}  // namespace

PreparedStatement2Odbc::PreparedStatement2Odbc(Connection2Odbc* connection, const char* sql,
                                               const TransferPolicy& policy)
    : sql_(sql == nullptr ? "" : sql), connection_(connection), policy_(policy) {}

PreparedStatement2Odbc::~PreparedStatement2Odbc() {
  if (stmt_ != SQL_NULL_HSTMT) {
    close(nullptr);
    SQLFreeHandle(SQL_HANDLE_STMT, stmt_);
  }
  for (void* buffer : columnBuffers_) std::free(buffer);
}

int PreparedStatement2Odbc::checkUnusual(SQLRETURN rc, DBError* error) const {
  return policy_.succeeded(rc) ? 0 : failOdbc(error, SQL_HANDLE_STMT, stmt_, rc);
}

int PreparedStatement2Odbc::initialize(int count, const unsigned int* types, DBError* error) {
  if (check(SQLAllocHandle(SQL_HANDLE_STMT, connection_->getHandle(), &stmt_), error) != 0) {
    return -1;
  }
  auto* text = reinterpret_cast<SQLCHAR*>(sql_.data());
  if (check(SQLPrepare(stmt_, text, SQL_NTS), error) != 0) return -1;
  if (describeParameters(error) != 0) return -1;
  SQLSMALLINT columns = 0;
  if (check(SQLNumResultCols(stmt_, &columns), error) != 0) return -1;
  if (columns <= 0) {
    columnTypes_.assign(1, 0);
    return 0;
  }
  if (types != nullptr && count != columns) {
    return failAccess(error, "specified column count does not match query");
  }
  if (describeColumns(static_cast<std::size_t>(columns), error) != 0) return -1;
  if (types != nullptr) {
    processZelTypes(count, types);
  } else {
    createZelDataTypes();
  }
  columnTypes_.push_back(0);
  return 0;
}

// Every output is zeroed first: not every driver writes all of them.
int PreparedStatement2Odbc::describeParameters(DBError* error) {
  SQLSMALLINT count = 0;
  if (check(SQLNumParams(stmt_, &count), error) != 0) return -1;
  parameters_.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  scratch_.resize(policy_.ownIndicators ? parameters_.size() : 1);
  SQLUSMALLINT number = 0;
  for (DATA_XFER_SETTINGS& parameter : parameters_) {
    const SQLRETURN rc =
        SQLDescribeParam(stmt_, ++number, &parameter.sqlType, &parameter.columnSize,
                         &parameter.decimalDigits, &parameter.nullable);
    if (check(rc, error) != 0) return -1;
  }
  return 0;
}

// Kept: a longer name makes the buffer grow, but the second call is told the first one's length.
int PreparedStatement2Odbc::describeColumn(SQLUSMALLINT number, std::vector<SQLCHAR>& name,
                                           DBError* error) {
  DATA_XFER_SETTINGS& column = columns_[number - 1U];
  SQLSMALLINT nameLength = 0;
  const auto describe = [&] {
    return SQLDescribeCol(stmt_, number, name.data(), kNameBytes, &nameLength, &column.sqlType,
                          &column.columnSize, &column.decimalDigits, &column.nullable);
  };
  std::ranges::fill(name, SQLCHAR{0});
  SQLRETURN rc = describe();
  if (rc == SQL_SUCCESS_WITH_INFO && nameLength > kNameBytes) {
    name.resize(std::max(name.size(), static_cast<std::size_t>(nameLength) + 1));
    rc = describe();
  }
  if (check(rc, error) != 0) return -1;
  name.back() = 0;
  columnNames_[number - 1U] = reinterpret_cast<const char*>(name.data());
  return 0;
}

int PreparedStatement2Odbc::describeColumns(std::size_t count, DBError* error) {
  columns_.resize(count);
  columnNames_.resize(count);
  columnLengths_.assign(count, 0);
  columnValues_.assign(count, nullptr);
  columnBlocks_.reserve(count);
  columnOffsets_.assign(count + 1, 0);
  std::vector<SQLCHAR> name(kNameBytes + 1);
  for (std::size_t i = 0; i < count; ++i) {
    if (describeColumn(static_cast<SQLUSMALLINT>(i + 1), name, error) != 0) return -1;
  }
  return 0;
}

void PreparedStatement2Odbc::addColumn(unsigned int type, SQLSMALLINT fetchAs) {
  const unsigned int number = DataTypes::typeNumber(type);
  const unsigned int bytes =
      number < DataTypes::kTypeCount ? DataTypes::g_column_lengths[number] : 0;
  columnTypes_.push_back(type);
  plans_.push_back({.routine = policy_.routineFor(fetchAs),
                    .bufferBytes = static_cast<int>(bytes),
                    .isText = number == DataTypes::kString,
                    .isBinary = number == DataTypes::kBinary,
                    .isDecimal = number == DataTypes::kFixedDecimal,
                    .dateUnit = dateUnitOf(type),
                    .inPlaceAs = isFetchedInPlace(fetchAs) ? fetchAs : SQLSMALLINT{0}});
  columnBuffers_.push_back(nullptr);
  if (bytes == 0) return;
  columnBuffers_.back() = std::calloc(1, bytes);
  if (columnBuffers_.back() == nullptr) throw std::bad_alloc();
}

void PreparedStatement2Odbc::processZelTypes(int count, const unsigned int* types) {
  for (int i = 0; i < count; ++i) addColumn(types[i], policy_.fetchTypeFor(types[i]));
}

void PreparedStatement2Odbc::createZelDataTypes() {
  for (const DATA_XFER_SETTINGS& column : columns_) {
    const ColumnTransfer transfer = describedTransfer(column);
    addColumn(transfer.typeCode, transfer.fetchAs);
  }
}

int PreparedStatement2Odbc::close(DBError* error) {
  if (stmt_ != SQL_NULL_HSTMT) {
    for (const SQLUSMALLINT what : kReleases) {
      if (check(SQLFreeStmt(stmt_, what), error) != 0) return -1;
    }
  }
  bound_ = false;
  executed_ = false;
  return 0;
}

int PreparedStatement2Odbc::getNumberParameters(int& count, DBError* /*error*/) const {
  count = static_cast<int>(parameters_.size());
  return 0;
}

int PreparedStatement2Odbc::getEffectiveNumberColumns(int& count, DBError* /*error*/) const {
  count = static_cast<int>(columns_.size());
  return 0;
}

const char* PreparedStatement2Odbc::getColumnName(std::size_t column, DBError* error) const {
  if (column < columnNames_.size()) return columnNames_[column].c_str();
  failAccess(error, "invalid column");  // a driver may have fewer columns than the server expects
  return nullptr;
}

int PreparedStatement2Odbc::getEffectiveDataType(int column, unsigned int& type,
                                                 DBError* error) const {
  const auto index = static_cast<unsigned int>(column);
  if (index > columns_.size()) return failAccess(error, "invalid column");
  type = columnTypes_[index];
  return 0;
}

}  // namespace KORVEX::Zel::DB::ODBC
