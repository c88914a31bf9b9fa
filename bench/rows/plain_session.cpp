#include "rows/plain_session.h"

#include <array>
#include <stdexcept>

namespace bench {

void check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, const char* call) {
  if (SQL_SUCCEEDED(rc)) return;
  std::array<SQLCHAR, 512> message{};
  SQLGetDiagRec(type, handle, 1, nullptr, nullptr, message.data(), 511, nullptr);
  throw std::runtime_error(std::string(call) + ": " +
                           reinterpret_cast<const char*>(message.data()));
}

PlainSession::PlainSession(const DataSource& source) {
  SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env_);
  SQLSetEnvAttr(env_, SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), SQL_IS_UINTEGER);
  SQLAllocHandle(SQL_HANDLE_DBC, env_, &dbc_);
  SQLSetConnectAttr(dbc_, SQL_ATTR_AUTOCOMMIT, number(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER);
  check(SQLConnect(dbc_, text(source.dsn), SQL_NTS, text(source.user), SQL_NTS,
                   text(source.password), SQL_NTS),
        SQL_HANDLE_DBC, dbc_, "SQLConnect");
}

PlainSession::~PlainSession() {
  SQLEndTran(SQL_HANDLE_DBC, dbc_, SQL_ROLLBACK);
  SQLDisconnect(dbc_);
  SQLFreeHandle(SQL_HANDLE_DBC, dbc_);
  SQLFreeHandle(SQL_HANDLE_ENV, env_);
}

SQLHSTMT PlainSession::prepare(const std::string& sql) const {
  SQLHSTMT stmt = SQL_NULL_HSTMT;
  check(SQLAllocHandle(SQL_HANDLE_STMT, dbc_, &stmt), SQL_HANDLE_DBC, dbc_, "SQLAllocHandle");
  check(SQLPrepare(stmt, text(sql), SQL_NTS), SQL_HANDLE_STMT, stmt, "SQLPrepare");
  SQLSMALLINT count = 0;
  check(SQLNumParams(stmt, &count), SQL_HANDLE_STMT, stmt, "SQLNumParams");
  return stmt;
}

void PlainSession::commit() const {
  check(SQLEndTran(SQL_HANDLE_DBC, dbc_, SQL_COMMIT), SQL_HANDLE_DBC, dbc_, "SQLEndTran");
}

}  // namespace bench
