#pragma once

#include <sql.h>
#include <sqlext.h>

#include <string>

namespace bench {

struct DataSource {
  std::string dsn;
  std::string user;
  std::string password;
};

// Throws std::runtime_error with the driver's message when a call failed.
void check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, const char* call);

// ODBC's types for texts and for numbers that travel as pointers.
inline SQLCHAR* text(const std::string& chars) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(chars.c_str()));
}
inline SQLPOINTER number(SQLULEN value) {
  return reinterpret_cast<SQLPOINTER>(value);
}

// A connection without a layer, in a transaction. Rolls back when it goes.
class PlainSession {
 public:
  explicit PlainSession(const DataSource& source);
  ~PlainSession();
  PlainSession(const PlainSession&) = delete;
  PlainSession& operator=(const PlainSession&) = delete;

  SQLHDBC handle() const { return dbc_; }
  // A new statement, prepared, with its markers counted.
  SQLHSTMT prepare(const std::string& sql) const;
  void commit() const;

 private:
  SQLHENV env_ = SQL_NULL_HENV;
  SQLHDBC dbc_ = SQL_NULL_HDBC;
};

}  // namespace bench
