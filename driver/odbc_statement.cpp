#include "driver/odbc_statement.h"

#include "driver/binding_table.h"
#include "driver/message_keys.h"
#include "driver/odbc_connection.h"
#include "driver/odbc_result_set.h"
#include "driver2/boundary.h"
#include "host/log_service_impl.h"
#include "odbc/odbc_dbc.h"
#include "odbc/odbc_error.h"

namespace KORVEX::Zel::DB {

using DataTypes::DataValue;
using ODBC::Odbc;

namespace {

constexpr char kValueRefused[] = "a value differs in kind from the column's first row";

}  // namespace

OdbcStatement::OdbcStatement(OdbcConnection& connection, ODBC::OdbcStmt* stmt)
    : OdbcStatement(connection, stmt, std::string()) {}

OdbcStatement::OdbcStatement(OdbcConnection& connection, ODBC::OdbcStmt* stmt,
                             const std::string& sql)
    : Statement(connection, sql),
      writeBigIntAsChar_(connection.writesBigIntAsChar()),
      safeTransfer_(connection.transfersSafely()),
      stmt_(stmt) {}

OdbcStatement::~OdbcStatement() = default;

ResultCode OdbcStatement::fail(const char* key, const char* text) const {
  LogServiceImpl::log(key, getSql().c_str(), text);
  return kFailure;
}

ResultCode OdbcStatement::failWithDiagnostic(const char* key) const {
  return fail(key, getOdbcError(stmt_.get()).c_str());
}

std::string OdbcStatement::databaseType() const {
  ODBC::OdbcDbc* dbc = static_cast<OdbcConnection&>(getConnection()).getDbc();
  return dbc == nullptr ? std::string() : dbc->GetDatabaseType();
}

void OdbcStatement::detach() {
  [[maybe_unused]] const ODBC::OdbcStmt* freed = stmt_.release();
}

ResultCode OdbcStatement::close() {
  return guarded(kSuccess, [&] {
    resultSet_.reset();
    if (stmt_ == nullptr) return kSuccess;
    if (stmt_->Close() != Odbc::e_Ok) failWithDiagnostic(keys::kClosingStatement);
    stmt_.reset();
    return kSuccess;
  });
}

// Kept: without safe transfer an UPDATE or DELETE that hits no row is a failure where the driver
// answers it with "no data".
ResultCode OdbcStatement::bindAndExecute(const std::vector<Parameter>& params, bool& noRows) {
  if (stmt_ == nullptr) return fail(keys::kExecutingStatement, "");
  if (bindParameters(params) != kSuccess || valueRefused_) return kFailure;
  const Odbc::e_Status status = stmt_->Execute();
  noRows = safeTransfer_ && status == Odbc::e_NoData;
  if (status == Odbc::e_Ok || noRows) return kSuccess;
  return failWithDiagnostic(keys::kExecutingStatement);
}

ResultCode OdbcStatement::newResultSet(ResultSet*& resultSet) {
  resultSet_ = std::make_unique<OdbcResultSet>(*this);
  resultSet = resultSet_.get();
  return kSuccess;
}

ResultCode OdbcStatement::executeQuery(const std::vector<Parameter>& params, int /*maxRows*/,
                                       ResultSet*& resultSet) {
  return guarded(kFailure, [&] {
    bool noRows = false;
    const ResultCode result = bindAndExecute(params, noRows);
    return result == kSuccess ? newResultSet(resultSet) : result;
  });
}

ResultCode OdbcStatement::executeQuery(const std::string& /*sql*/,
                                       const std::vector<Parameter>& params, int maxRows,
                                       ResultSet*& resultSet) {
  return executeQuery(params, maxRows, resultSet);
}

ResultCode OdbcStatement::executeUpdate(const std::vector<Parameter>& params, int& rows) {
  return guarded(kFailure, [&] {
    bool noRows = false;
    const ResultCode result = bindAndExecute(params, noRows);
    if (result != kSuccess) return result;
    int count = 0;
    if (!noRows && stmt_->RowCount(count) != Odbc::e_Ok)
      return failWithDiagnostic(keys::kExecutingStatement);
    rows = count;
    return kSuccess;
  });
}

ResultCode OdbcStatement::executeUpdate(const std::string& /*sql*/,
                                        const std::vector<Parameter>& params, int& rows) {
  return executeUpdate(params, rows);
}

ResultCode OdbcStatement::nextResultSet(bool& more) {
  return guarded(kFailure, [&] {
    if (stmt_ == nullptr) return fail(keys::kGettingResultSet, "");
    const Odbc::e_Status status = stmt_->MoreResults();
    if (status != Odbc::e_Ok && status != Odbc::e_NoData) {
      return failWithDiagnostic(keys::kGettingResultSet);
    }
    more = status == Odbc::e_Ok;
    return kSuccess;
  });
}

ResultCode OdbcStatement::getResultSet(ResultSet*& resultSet) {
  return guarded(kFailure, [&] {
    if (stmt_ == nullptr) return fail(keys::kGettingResultSet, "");
    return newResultSet(resultSet);
  });
}

ResultCode OdbcStatement::createBatch(const std::string& /*sql*/) {
  return kSuccess;
}

ResultCode OdbcStatement::addToBatch(const std::vector<Parameter>& params) {
  return guarded(kFailure, [&] {
    if (stmt_ == nullptr) return fail(keys::kAddingToBatch, "");
    if (rowPending_) stmt_->DiscardPendingRow();
    if (bindParameters(params) != kSuccess || valueRefused_) return kFailure;
    stmt_->IncrementBatchSize();
    rowPending_ = false;
    return kSuccess;
  });
}

ResultCode OdbcStatement::clearBatch() {
  return guarded(kFailure, [&] {
    if (stmt_ == nullptr) {
      LogServiceImpl::log(keys::kClearingBatch, "");
      return kFailure;
    }
    if (stmt_->SetSql(getSql(), false) == Odbc::e_Ok) return kSuccess;
    LogServiceImpl::log(keys::kClearingBatch, getOdbcError(stmt_.get()).c_str());
    return kFailure;
  });
}

ResultCode OdbcStatement::executeBatch(std::vector<int>& status) {
  constexpr int kRowFailed = -1;
  return guarded(kFailure, [&] {
    if (stmt_ == nullptr) return fail(keys::kExecutingBatch, "");
    int rows = 0;
    if (stmt_->GetBatchSize(rows) != Odbc::e_Ok) return failWithDiagnostic(keys::kExecutingBatch);
    if (rows == 0) {
      status.clear();
      return kSuccess;
    }
    if (stmt_->Execute() != Odbc::e_Ok) return failWithDiagnostic(keys::kExecutingBatch);
    status.resize(static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) {
      int rowStatus = kRowFailed;
      if (stmt_->GetBatchParamStatus(row, rowStatus) != Odbc::e_Ok) rowStatus = kRowFailed;
      status[static_cast<std::size_t>(row)] = rowStatus;
    }
    return kSuccess;
  });
}

ResultCode OdbcStatement::bindParameters(const std::vector<Parameter>& params) {
  return guarded(kFailure, [&] {
    ResultCode result = kSuccess;
    int number = 0;
    valueRefused_ = false;
    for (const Parameter& parameter : params) {
      ODBC::OdbcParam* target = stmt_ == nullptr ? nullptr : stmt_->GetParam(++number);
      if (target == nullptr) return fail(keys::kBindingParameters, "");
      const BindingRule* rule = findBindingRule(parameter.type, writeBigIntAsChar_);
      if (rule != nullptr) bindWith(*rule, *target, parameter.type, parameter.value);
      result = rule != nullptr ? kSuccess : kFailure;
    }
    return result;
  });
}

void OdbcStatement::bindWith(const BindingRule& rule, ODBC::OdbcParam& parameter, unsigned int type,
                             const DataValue& value) {
  // The rows of a batch behind the first would be told what they have to be, to no effect.
  rowPending_ = true;
  if (!parameter.IsDecided()) setParameterCommons(parameter, rule, type, value);
  if (rule.store(parameter, type, value) == Odbc::e_Ok) return;
  valueRefused_ = true;
  fail(keys::kBindingParameters, kValueRefused);
}

ResultCode OdbcStatement::bindValue(void* parameter, unsigned int type, const DataValue& value) {
  return guarded(kFailure, [&] {
    auto* target = static_cast<ODBC::OdbcParam*>(parameter);
    const BindingRule* rule = findBindingRule(type, writeBigIntAsChar_);
    if (target == nullptr || rule == nullptr) return fail(keys::kBindingParameters, "");
    bindWith(*rule, *target, type, value);
    return kSuccess;
  });
}

ResultCode OdbcStatement::bindParameterInt16(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kInt16, value);
}

ResultCode OdbcStatement::bindParameterInt32(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kInteger, value);
}

ResultCode OdbcStatement::bindParameterInt64(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kLong, value);
}

ResultCode OdbcStatement::bindParameterDouble(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kFloat, value);
}

ResultCode OdbcStatement::bindParameterDate(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kDate, value);
}

ResultCode OdbcStatement::bindParameterString(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kString, value);
}

ResultCode OdbcStatement::bindParameterMoney(void* parameter, unsigned int type,
                                             const DataValue& value) {
  return bindValue(parameter, type, value);
}

ResultCode OdbcStatement::bindParameterTimestamp(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kTimestamp, value);
}

ResultCode OdbcStatement::bindParameterBoolean(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kBoolean, value);
}

ResultCode OdbcStatement::bindParameterInterval(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kInterval, value);
}

ResultCode OdbcStatement::bindParameterBigDateTime(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kBigDateTime, value);
}

ResultCode OdbcStatement::bindParameterTime(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kTime, value);
}

ResultCode OdbcStatement::bindParameterFixedDecimal(void* parameter, unsigned int type,
                                                    const DataValue& value) {
  return bindValue(parameter, type, value);
}

ResultCode OdbcStatement::bindParameterBinary(void* parameter, const DataValue& value) {
  return bindValue(parameter, DataTypes::kBinary, value);
}

}  // namespace KORVEX::Zel::DB
