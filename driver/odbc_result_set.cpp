#include "driver/odbc_result_set.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <typeinfo>

#include "datatypes/type_table.h"
#include "driver/message_keys.h"
#include "driver/odbc_column.h"
#include "driver/odbc_statement.h"
#include "driver/reader_table.h"
#include "driver2/boundary.h"
#include "host/log_service_impl.h"
#include "host/row.h"
#include "host/row_descriptor.h"
#include "odbc/odbc_error.h"

namespace KORVEX::Zel::DB {

namespace {

using DataTypes::DataValue;
using ODBC::Odbc;

ResultCode failColumn(const char* key, int index, const char* text) {
  LogServiceImpl::log(key, LogServiceImpl::toString<int>(index).c_str(), text);
  return kFailure;
}

// Strings and bytes come in buffers of their own, which the row takes over.
bool carriesBuffer(unsigned int type) {
  const unsigned number = DataTypes::typeNumber(type);
  return number == DataTypes::kString || number == DataTypes::kBinary;
}

// Frees the buffer of a cell that no row has taken over.
void releaseBuffer(unsigned int type, DataValue& value) {
  if (!carriesBuffer(type) || value.isNull()) return;
  const void* buffer = DataTypes::typeNumber(type) == DataTypes::kString
                           ? static_cast<const void*>(value.string)
                           : static_cast<const void*>(value.binary.data);
  std::free(const_cast<void*>(buffer));
}

[[gnu::always_inline]] inline void addColumn(Row& row, unsigned int type, DataValue& cell,
                                             bool handOver) {
  try {
    row.addColumn(type, cell, handOver);
  } catch (...) {
    releaseBuffer(type, cell);
    throw;
  }
}

}  // namespace

OdbcResultSet::OdbcResultSet(Statement& statement) : ResultSet(statement) {}

OdbcResultSet::~OdbcResultSet() = default;

OdbcStatement& OdbcResultSet::checkStatement() const {
  // OdbcStatement is final, so that its exact type is all a checked cast would look for.
  Statement& statement = getStatement();
  if (typeid(statement) != typeid(OdbcStatement)) throw std::bad_cast();
  checked_ = static_cast<OdbcStatement*>(&statement);
  return *checked_;
}

ResultCode OdbcResultSet::failWithDiagnostic(const char* key) const {
  ODBC::OdbcStmt* stmt = odbcStatement().getStmt();
  LogServiceImpl::log(key, stmt == nullptr ? "" : getOdbcError(stmt).c_str());
  return kFailure;
}

// Out of the way of the columns that can be read.
[[gnu::cold]] ResultCode OdbcResultSet::failMissing(int index, bool isReadable) {
  ODBC::OdbcStmt* stmt = odbcStatement().getStmt();
  const bool hasRecord = isReadable && stmt != nullptr;
  return failColumn(keys::kGettingColumnValue, index, hasRecord ? getOdbcError(stmt).c_str() : "");
}

[[gnu::cold]] ResultCode OdbcResultSet::failRead(int index, ReadResult result) {
  if (result.outcome == ReadResult::kUnparsable) {
    LogServiceImpl::log(keys::kParsingColumnValue, LogServiceImpl::toString<int>(index).c_str());
    return kFailure;
  }
  const std::string diagnostic = getOdbcError(odbcStatement().getStmt()->GetColumn(index));
  const bool explain = diagnostic.empty() && result.reason != nullptr;
  return failColumn(keys::kGettingColumnValue, index, explain ? result.reason : diagnostic.c_str());
}

ResultCode OdbcResultSet::close() {
  return kSuccess;
}

ResultCode OdbcResultSet::next(bool& more) {
  ODBC::OdbcStmt* stmt = odbcStatement().getStmt();  // outside the guard: a bad cast goes on
  return guarded(kFailure, [&] {
    const Odbc::e_Status status = stmt == nullptr ? Odbc::e_Error : stmt->Fetch();
    if (status != Odbc::e_Ok && status != Odbc::e_NoData)
      return failWithDiagnostic(keys::kIterating);
    more = status == Odbc::e_Ok;
    return kSuccess;
  });
}

ResultCode OdbcResultSet::getNumColumns(int& count) {
  return guarded(kFailure, [&] {
    ODBC::OdbcStmt* stmt = odbcStatement().getStmt();
    if (stmt != nullptr && stmt->GetColumnCount(count) == Odbc::e_Ok) return kSuccess;
    return failWithDiagnostic(keys::kGettingColumnCount);
  });
}

ResultCode OdbcResultSet::getColumnName(int index, std::string& name) {
  return guarded(kFailure, [&] {
    ODBC::OdbcStmt* stmt = odbcStatement().getStmt();
    if (stmt != nullptr && stmt->GetColumnName(index, name) == Odbc::e_Ok) return kSuccess;
    return failWithDiagnostic(keys::kGettingColumnName);
  });
}

ResultCode OdbcResultSet::getColumnType(int index, unsigned int& type) {
  return guarded(kFailure, [&] {
    OdbcStatement& statement = odbcStatement();
    int sqlType = 0;
    if (statement.getStmt() == nullptr ||
        statement.getStmt()->GetColumnType(index, sqlType) != Odbc::e_Ok) {
      return failWithDiagnostic(keys::kGettingColumnType);
    }
    type = zelDataType(sqlType, statement.databaseType());
    return kSuccess;
  });
}

ResultCode OdbcResultSet::getColumnInfo(int index, std::string& name, unsigned int& type) {
  const ResultCode result = getColumnName(index, name);
  return result == kSuccess ? getColumnType(index, type) : result;
}

// Out of the way of the rows that have their plans. Columns are read with getColumn, which a
// derived class may replace; they have plans only where nobody has.
[[gnu::cold, gnu::noinline]] bool OdbcResultSet::makePlans(std::size_t columns) {
  if (typeid(*this) != typeid(OdbcResultSet)) return false;
  plans_.resize(columns);
  return true;
}

// How many columns of the current row are read by plan.
[[gnu::always_inline]] inline int OdbcResultSet::countPlanned(int columns) {
  if (columns < 1 || !hasContents()) return 0;
  const auto wanted = static_cast<std::size_t>(columns);
  if (plans_.size() < wanted && !makePlans(wanted)) return 0;
  const std::size_t present = contents_->size();  // and one, unless there is none
  return wanted < present ? columns : static_cast<int>(std::max<std::size_t>(present, 1)) - 1;
}

// Out of the way of the columns whose plan is settled. False for a type that cannot be read.
[[gnu::cold, gnu::noinline]] bool OdbcResultSet::settle(ColumnPlan& plan,
                                                        const ODBC::CellContent& column,
                                                        unsigned int type) {
  const ColumnReader reader =
      settleColumnReader(type, column.cType, odbcStatement().transfersSafely());
  if (reader == nullptr) return false;
  plan = {type, column.cType, carriesBuffer(type), reader};
  return true;
}

// Reads a column as getColumn would; false leaves it, and the telling why, to that one. A reader
// leaves nothing behind that would change the second reading.
[[gnu::always_inline]] inline bool OdbcResultSet::readPlanned(ColumnPlan& plan,
                                                              const ODBC::CellContent& column,
                                                              unsigned int type, DataValue& cell) {
  if (!plan.isFor(column, type) && !settle(plan, column, type)) return false;
  const ReadResult result = plan.read(column, type, cell);
  static_assert(ReadResult::kValue == 0 && ReadResult::kNull == 1);  // as the cell's flag says it
  cell.null = static_cast<std::uint8_t>(result.outcome);
  return result.outcome <= ReadResult::kNull;
}

// Out of the way of the columns that can be read by plan.
[[gnu::cold]] ResultCode OdbcResultSet::readUnplanned(int index, unsigned int type,
                                                      DataValue& cell) {
  cell = DataValue();
  cell.setNull();
  const ResultCode result = getColumn(index, type, cell);
  if (result != kSuccess) LogServiceImpl::log(keys::kRowSkipped);
  return result;
}

ResultCode OdbcResultSet::getData(const RowDescriptor& descriptor, Row*& row) {
  row = nullptr;
  return guarded(kFailure, [&] {
    auto built = std::make_unique<Row>();
    const int columns = descriptor.getNumColumns();
    const int planned = countPlanned(columns);
    const ODBC::CellContent* const* column = planned > 0 ? contents_->data() : nullptr;
    ColumnPlan* plan = plans_.data();
    int i = 0;
    for (; i < planned; ++i, ++plan) {
      DataValue cell;
      const unsigned int type = descriptor.getColumnType(i);
      if (!readPlanned(*plan, **++column, type, cell)) break;
      addColumn(*built, type, cell, plan->carriesBuffer);
    }
    for (; i < columns; ++i) {
      DataValue cell;
      const unsigned int type = descriptor.getColumnType(i);
      const ResultCode result = readUnplanned(i + 1, type, cell);
      if (result != kSuccess) return result;
      addColumn(*built, type, cell, carriesBuffer(type));
    }
    row = built.release();
    return kSuccess;
  });
}

ResultCode OdbcResultSet::getColumn(int index, unsigned int type, DataValue& value) {
  if (DataTypes::familyOf(type) == DataTypes::TypeFamily::kNone) return kFailure;
  return readColumn(index, type, value);
}

ResultCode OdbcResultSet::readColumn(int index, unsigned int type, DataValue& value) {
  return guarded(kFailure, [&] {
    const ColumnReader reader = findColumnReader(type, odbcStatement().transfersSafely());
    const ODBC::CellContent* column = findColumn(index);
    if (reader == nullptr || column == nullptr) return failMissing(index, reader != nullptr);
    const ReadResult result = reader(*column, type, value);
    if (result.outcome > ReadResult::kNull) return failRead(index, result);
    value.null = result.outcome == ReadResult::kNull ? 1 : 0;
    return kSuccess;
  });
}

ResultCode OdbcResultSet::getColumnInt16(int index, DataValue& value) {
  return readColumn(index, DataTypes::kInt16, value);
}

ResultCode OdbcResultSet::getColumnInt32(int index, DataValue& value) {
  return readColumn(index, DataTypes::kInteger, value);
}

ResultCode OdbcResultSet::getColumnInt64(int index, DataValue& value) {
  return readColumn(index, DataTypes::kLong, value);
}

ResultCode OdbcResultSet::getColumnDouble(int index, DataValue& value) {
  return readColumn(index, DataTypes::kFloat, value);
}

ResultCode OdbcResultSet::getColumnDate(int index, DataValue& value) {
  return readColumn(index, DataTypes::kDate, value);
}

ResultCode OdbcResultSet::getColumnString(int index, DataValue& value) {
  return readColumn(index, DataTypes::kString, value);
}

ResultCode OdbcResultSet::getColumnMoney(int index, unsigned int type, DataValue& value) {
  return readColumn(index, type, value);
}

ResultCode OdbcResultSet::getColumnTimestamp(int index, DataValue& value) {
  return readColumn(index, DataTypes::kTimestamp, value);
}

ResultCode OdbcResultSet::getColumnBoolean(int index, DataValue& value) {
  return readColumn(index, DataTypes::kBoolean, value);
}

ResultCode OdbcResultSet::getColumnInterval(int index, DataValue& value) {
  return readColumn(index, DataTypes::kInterval, value);
}

ResultCode OdbcResultSet::getColumnBigDateTime(int index, DataValue& value) {
  return readColumn(index, DataTypes::kBigDateTime, value);
}

ResultCode OdbcResultSet::getColumnTime(int index, DataValue& value) {
  return readColumn(index, DataTypes::kTime, value);
}

ResultCode OdbcResultSet::getColumnFixedDecimal(int index, unsigned int type, DataValue& value) {
  return readColumn(index, type, value);
}

ResultCode OdbcResultSet::getColumnBinary(int index, DataValue& value) {
  return readColumn(index, DataTypes::kBinary, value);
}

}  // namespace KORVEX::Zel::DB
