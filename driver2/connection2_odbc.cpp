#include "driver2/connection2_odbc.h"

#include <sqlext.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#include "driver2/boundary.h"
#include "driver2/db_error2_odbc.h"
#include "driver2/env2_odbc.h"
#include "driver2/lost_link.h"
#include "driver2/prepared_statement2_odbc.h"
#include "driver2/transfer_policy.h"
#include "driver2/wipe.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

constexpr char kPasswordProperty[] = "Password";

// ODBC takes texts as pointers to non-const unsigned characters that it does not write to.
SQLCHAR* odbcText(const std::string& text) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
}

SQLPOINTER odbcNumber(SQLULEN number) {
  return reinterpret_cast<SQLPOINTER>(number);  // NOLINT: attributes carry numbers as pointers
}

// Kept: from the first connection on the whole process converts local time as UTC. The environment
// keeps the pointer it is given, so the text lives on the heap for as long as the process, also
// when this library is unloaded.
void setProcessTimeZone() {
  static char* const setting = strdup("TZ=UTC");
  if (setting == nullptr) return;
  putenv(setting);
  tzset();
}

}  // namespace

Connection2Odbc::Connection2Odbc(Env2Odbc* env, const char* dsn, const char* user,
                                 const TransferPolicy& policy)
    : env_(env),
      dsn_(dsn == nullptr ? "" : dsn),
      user_(user == nullptr ? "" : user),
      policy_(policy) {
  setProcessTimeZone();
}

Connection2Odbc::~Connection2Odbc() {
  clearProperties();
  if (dbc_ == SQL_NULL_HDBC) return;
  disconnect(true, nullptr);
  SQLFreeHandle(SQL_HANDLE_DBC, dbc_);
}

int Connection2Odbc::check(SQLRETURN rc, DBError* error) {
  return policy_.succeeded(rc) ? 0 : failOdbc(error, SQL_HANDLE_DBC, dbc_, rc);
}

int Connection2Odbc::initialize(DBError* error) {
  if (dbc_ != SQL_NULL_HDBC) return 0;
  if (check(SQLAllocHandle(SQL_HANDLE_DBC, env_->getHandle(), &dbc_), error) != 0) return -1;
  if (check(SQLSetConnectAttr(dbc_, SQL_ATTR_AUTOCOMMIT, odbcNumber(SQL_AUTOCOMMIT_OFF),
                              SQL_IS_UINTEGER),
            error) != 0) {
    return -1;
  }
  return check(SQLSetConnectAttr(dbc_, SQL_ATTR_TXN_ISOLATION, odbcNumber(SQL_TXN_READ_COMMITTED),
                                 SQL_IS_UINTEGER),
               error);
}

void Connection2Odbc::setConnectionProperty(const char* key, const char* value) {
  std::string& property = properties_[key];
  wipe(property);
  property = value;
}

void Connection2Odbc::clearProperties() {
  for (auto& [key, value] : properties_) wipe(value);
  properties_.clear();
}

const char* Connection2Odbc::getImplementationName() const {
  return "generic odbc v2.0.0";
}

const char* Connection2Odbc::getService() const {
  return service_.c_str();
}

int Connection2Odbc::connect(DBError* error) {
  return guardedAccess(error, [&] {
    if (connected_) return 0;
    const auto property = properties_.find(kPasswordProperty);
    static const std::string kNone;
    const std::string& password = property == properties_.end() ? kNone : property->second;
    const SQLRETURN rc = SQLConnect(dbc_, odbcText(dsn_), SQL_NTS, odbcText(user_), SQL_NTS,
                                    odbcText(password), SQL_NTS);
    connected_ = policy_.succeeded(rc);
    return check(rc, error);
  });
}

void Connection2Odbc::destroyStatements(DBError* error) {
  for (PreparedStatement2Odbc* statement : statements_) {
    statement->close(error);
    delete statement;
  }
  statements_.clear();
}

// Kept: the driver is disconnected before the statements are closed, so what closing them says
// about handles that are gone may end up in the record of a disconnect that succeeded.
int Connection2Odbc::disconnectFirst(bool force, DBError* error) {
  if (force) {
    rollback(error);
    SQLDisconnect(dbc_);
  } else if (check(SQLDisconnect(dbc_), error) != 0) {
    return -1;
  }
  destroyStatements(error);
  return 0;
}

// A disconnect frees the handles of all statements; theirs must not be used behind it.
int Connection2Odbc::closeStatementsFirst(bool force, DBError* error) {
  if (force) {
    destroyStatements(nullptr);
    rollback(error);
    SQLDisconnect(dbc_);
    return 0;
  }
  for (PreparedStatement2Odbc* statement : statements_) statement->close(nullptr);
  if (check(SQLDisconnect(dbc_), error) != 0) return -1;
  for (PreparedStatement2Odbc* statement : statements_) statement->abandonHandle();
  destroyStatements(nullptr);
  return 0;
}

int Connection2Odbc::disconnect(bool force, DBError* error) {
  return guardedAccess(error, [&] {
    if (!connected_) return 0;
    const int result = policy_.closesBeforeDisconnect ? closeStatementsFirst(force, error)
                                                      : disconnectFirst(force, error);
    if (result == 0) connected_ = false;
    return result;
  });
}

PreparedStatement* Connection2Odbc::createPreparedStatement(const char* /*sql*/,
                                                            const RecordType* /*record*/,
                                                            bool /*unused*/, DBError* error) {
  failAccess(error, "not implemented");
  return nullptr;
}

PreparedStatement* Connection2Odbc::createPreparedStatement(const char* sql, int count,
                                                            const unsigned int* types,
                                                            bool /*unused*/, DBError* error) {
  PreparedStatement* result = nullptr;
  guardedAccess(error, [&] {
    if (!connected_) return failNotConnected(error);
    auto statement = std::make_unique<PreparedStatement2Odbc>(this, sql, policy_);
    if (statement->initialize(count, types, error) != 0) return -1;
    statements_.insert(statement.get());
    result = statement.release();
    return 0;
  });
  return result;
}

PreparedStatement* Connection2Odbc::createPreparedStatement(const char* sql, DBError* error) {
  return createPreparedStatement(sql, 0, nullptr, false, error);
}

// The registry is asked before the pointer is used: it may be anybody's.
int Connection2Odbc::releaseStatement(PreparedStatement* statement, DBError* error) {
  const auto registered = statements_.find(statement);
  if (registered == statements_.end()) return failAccess(error, "statement not found");
  PreparedStatement2Odbc* own = *registered;
  if (own->close(error) != 0) return -1;
  statements_.erase(registered);
  delete own;
  return 0;
}

int Connection2Odbc::endTransaction(SQLSMALLINT completion, DBError* error) {
  if (!connected_) return failNotConnected(error);
  return check(SQLEndTran(SQL_HANDLE_DBC, dbc_, completion), error);
}

int Connection2Odbc::commit(DBError* error) {
  if (connected_ && policy_.asksBeforeCommit && linkIsLost(dbc_)) return failNotConnected(error);
  return endTransaction(SQL_COMMIT, error);
}

int Connection2Odbc::rollback(DBError* error) {
  return endTransaction(SQL_ROLLBACK, error);
}

}  // namespace KORVEX::Zel::DB::ODBC
