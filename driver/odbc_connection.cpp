#include "driver/odbc_connection.h"

#include "driver/message_keys.h"
#include "driver/odbc_database_metadata.h"
#include "driver/odbc_statement.h"
#include "driver2/boundary.h"
#include "driver2/lost_link.h"
#include "host/driver.h"
#include "host/log_service_impl.h"
#include "odbc/odbc_dbc_impl.h"
#include "odbc/odbc_error.h"
#include "odbc/odbc_stmt.h"

namespace KORVEX::Zel::DB {

using ODBC::Odbc;

namespace {

constexpr char kLostBeforeCommit[] = "[08003][0][the connection was lost before the commit]";

struct CapabilityRow {
  const char* databaseType;
  Connection::Capabilities capabilities;
};

// Any other database has none.
constexpr CapabilityRow kCapabilities[] = {
    {"VELTA", {true, true, true}},
    {"WH", {true, false, false}},
    {"OPX", {true, false, false}},
};

Connection::Capabilities capabilitiesOf(const std::string& databaseType) {
  for (const CapabilityRow& row : kCapabilities) {
    if (databaseType == row.databaseType) return row.capabilities;
  }
  return {};
}

}  // namespace

OdbcConnection::OdbcConnection(const std::string& dsn, const std::string& databaseType,
                               const std::string& user, const std::string& password,
                               bool writeBigIntAsChar, bool safeTransfer)
    : Connection("", "", user, password, ""),
      dsn_(dsn),
      databaseType_(databaseType),
      writeBigIntAsChar_(writeBigIntAsChar),
      safeTransfer_(safeTransfer),
      environment_(Odbc::CreateEnv()) {}

// The environment frees the handle tree; the statement must not free its part of it again.
OdbcConnection::~OdbcConnection() {
  environment_.reset();
  detachStatement();
}

void OdbcConnection::detachStatement() {
  if (statement_ != nullptr) statement_->detach();
}

void OdbcConnection::collectError(const std::string& text) {
  lastErrors_ += '\n';
  lastErrors_ += text;
}

ResultCode OdbcConnection::fail(const char* key, Odbc* source) {
  if (source == nullptr) {
    LogServiceImpl::log(key, "");
    return kFailure;
  }
  const std::string text = getOdbcError(source);
  LogServiceImpl::log(key, text.c_str());
  collectError(text);
  return kFailure;
}

ResultCode OdbcConnection::openHandle() {
  if (environment_ == nullptr) return fail(keys::kOpeningConnection, nullptr);
  if (dbc_ != nullptr) {
    delete dbc_;  // disconnects, and frees the statements' handles
    dbc_ = nullptr;
    detachStatement();
  }
  dbc_ = environment_->CreateDbc();
  if (dbc_ == nullptr) return fail(keys::kOpeningConnection, environment_.get());
  if (dbc_->Connect(dsn_, getUser(), getPassword()) != Odbc::e_Ok) {
    return fail(keys::kOpeningConnection, dbc_);
  }
  capabilities_ = capabilitiesOf(dbc_->GetDatabaseType());
  return kSuccess;
}

ResultCode OdbcConnection::open() {
  return guarded(kFailure, [&] { return openHandle(); });
}

ResultCode OdbcConnection::close() {
  return guarded(kSuccess, [&] {
    if (dbc_ == nullptr) return kSuccess;
    const bool failed = dbc_->Disconnect() != Odbc::e_Ok;
    if (!dbc_->IsConnected()) detachStatement();
    if (failed) fail(keys::kClosingConnection, dbc_);
    return kSuccess;
  });
}

ResultCode OdbcConnection::endTransaction(const char* key, Odbc::e_Status (ODBC::OdbcDbc::*end)()) {
  return guarded(kFailure, [&] {
    const bool ended = dbc_ != nullptr && (dbc_->*end)() == Odbc::e_Ok;
    return ended ? kSuccess : fail(key, dbc_);
  });
}

ResultCode OdbcConnection::commit() {
  if (safeTransfer_ && dbc_ != nullptr && linkIsLost(getHandle())) {
    return guarded(kFailure, [&] {
      LogServiceImpl::log(keys::kCommitting, kLostBeforeCommit);
      collectError(kLostBeforeCommit);
      return kFailure;
    });
  }
  return endTransaction(keys::kCommitting, &ODBC::OdbcDbc::Commit);
}

ResultCode OdbcConnection::rollback() {
  return endTransaction(keys::kRollingBack, &ODBC::OdbcDbc::Rollback);
}

ResultCode OdbcConnection::createStatement(const std::string& sql, bool batch) {
  if (dbc_ == nullptr) {
    LogServiceImpl::log(keys::kCreatingStatement, sql.c_str(), "");
    return kFailure;
  }
  std::unique_ptr<ODBC::OdbcStmt> stmt(dbc_->CreateStmt());
  if (stmt == nullptr) {
    LogServiceImpl::log(keys::kCreatingStatement, sql.c_str(), getOdbcError(dbc_).c_str());
    return kFailure;
  }
  if (stmt->SetSql(sql, batch) != Odbc::e_Ok) {
    const std::string text = getOdbcError(stmt.get());
    LogServiceImpl::log(keys::kCreatingStatement, sql.c_str(), text.c_str());
    stmt.reset();
    collectError(text);
    return kFailure;
  }
  statement_ = std::make_unique<OdbcStatement>(*this, stmt.get(), sql);
  [[maybe_unused]] const ODBC::OdbcStmt* handedOver = stmt.release();
  return kSuccess;
}

ResultCode OdbcConnection::closeStatement() {
  if (statement_ != nullptr) {
    statement_->close();
    statement_.reset();
  }
  return kSuccess;
}

ResultCode OdbcConnection::newStatement(const std::string& sql, bool batch) {
  const ResultCode closed = closeStatement();
  return closed == kSuccess ? createStatement(sql, batch) : closed;
}

ResultCode OdbcConnection::executeQuery(const std::string& sql,
                                        const std::vector<Parameter>& params, int maxRows,
                                        ResultSet*& resultSet) {
  return guarded(kFailure, [&] {
    const ResultCode made = newStatement(sql, false);
    return made == kSuccess ? statement_->executeQuery(params, maxRows, resultSet) : made;
  });
}

ResultCode OdbcConnection::executeUpdate(const std::string& sql,
                                         const std::vector<Parameter>& params, int& rows) {
  return guarded(kFailure, [&] {
    const ResultCode made = newStatement(sql, false);
    return made == kSuccess ? statement_->executeUpdate(params, rows) : made;
  });
}

ResultCode OdbcConnection::nextResultSet(bool& more) {
  return statement_ == nullptr ? kFailure : statement_->nextResultSet(more);
}

ResultCode OdbcConnection::getResultSet(ResultSet*& resultSet) {
  return statement_ == nullptr ? kFailure : statement_->getResultSet(resultSet);
}

ResultCode OdbcConnection::createBatch(const std::string& sql) {
  return guarded(kFailure, [&] {
    if (batchMode_ || newStatement(sql, true) != kSuccess) return kFailure;
    batchMode_ = true;
    batchParameterCount_ = kBatchParameterCountUnset;
    return kSuccess;
  });
}

// Kept: a later row may have more parameters than the first, only fewer are refused.
ResultCode OdbcConnection::addToBatch(const std::vector<Parameter>& params) {
  if (!batchMode_ || statement_ == nullptr) return kFailure;
  const int count = static_cast<int>(params.size());
  if (batchParameterCount_ == kBatchParameterCountUnset) batchParameterCount_ = count;
  return batchParameterCount_ > count ? kFailure : statement_->addToBatch(params);
}

ResultCode OdbcConnection::clearBatch() {
  if (batchMode_) {
    if (statement_ != nullptr) statement_->clearBatch();
    batchMode_ = false;
    batchParameterCount_ = kBatchParameterCountUnset;
  }
  return kSuccess;
}

ResultCode OdbcConnection::executeBatch(std::vector<int>& status) {
  if (statement_ == nullptr) return kFailure;
  const ResultCode result = statement_->executeBatch(status);
  batchMode_ = false;
  batchParameterCount_ = kBatchParameterCountUnset;
  return result;
}

std::string OdbcConnection::getDriverProperty(const std::string& key) {
  return guarded(std::string(), [&] {
    if (key != Driver::PROPERTY_KEY_DATABASE_TYPE) return Connection::getDriverProperty(key);
    if (!databaseType_.empty()) return databaseType_;
    return dbc_ == nullptr ? std::string() : dbc_->GetDatabaseType();
  });
}

void* OdbcConnection::getHandle() {
  auto* impl = dynamic_cast<ODBC::OdbcDbcImpl*>(dbc_);
  return impl == nullptr ? nullptr : impl->GetHandle();
}

}  // namespace KORVEX::Zel::DB
