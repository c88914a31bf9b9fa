// The floor: an ODBC program without a layer, making the calls that the plug-in makes.

#include <sql.h>
#include <sqlext.h>

#include <array>
#include <stdexcept>

#include "fetch.h"

namespace bench {

namespace {

void check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, const char* call) {
  if (SQL_SUCCEEDED(rc)) return;
  std::array<SQLCHAR, 512> message{};
  SQLGetDiagRec(type, handle, 1, nullptr, nullptr, message.data(), 511, nullptr);
  throw std::runtime_error(std::string(call) + ": " +
                           reinterpret_cast<const char*>(message.data()));
}

SQLCHAR* text(const std::string& chars) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(chars.c_str()));
}

SQLPOINTER number(SQLULEN value) {
  return reinterpret_cast<SQLPOINTER>(value);
}

struct ColumnRead {
  SQLSMALLINT cType;
  SQLLEN bytes;
};

// What each generation asks SQLGetData for.
constexpr ColumnRead kReads[2][kColumns] = {
    {{SQL_C_LONG, 8},
     {SQL_C_CHAR, 21},
     {SQL_C_DOUBLE, 8},
     {SQL_C_CHAR, 21},
     {SQL_C_TYPE_TIMESTAMP, 16},
     {SQL_C_CHAR, 22},
     {SQL_C_BIT, 1}},
    {{SQL_C_SLONG, 4},
     {SQL_C_SBIGINT, 8},
     {SQL_C_DOUBLE, 8},
     {SQL_C_CHAR, 128},
     {SQL_C_TYPE_TIMESTAMP, 16},
     {SQL_C_CHAR, 32},
     {SQL_C_BIT, 1}},
};

class PlainReader : public Reader {
 public:
  PlainReader(const DataSource& source, int generation)
      : generation_(generation), reads_(kReads[generation - 1]) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env_);
    SQLSetEnvAttr(env_, SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), SQL_IS_UINTEGER);
    SQLAllocHandle(SQL_HANDLE_DBC, env_, &dbc_);
    SQLSetConnectAttr(dbc_, SQL_ATTR_AUTOCOMMIT, number(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER);
    check(SQLConnect(dbc_, text(source.dsn), SQL_NTS, text(source.user), SQL_NTS,
                     text(source.password), SQL_NTS),
          SQL_HANDLE_DBC, dbc_, "SQLConnect");
  }

  ~PlainReader() override {
    SQLEndTran(SQL_HANDLE_DBC, dbc_, SQL_ROLLBACK);
    SQLDisconnect(dbc_);
    SQLFreeHandle(SQL_HANDLE_DBC, dbc_);
    SQLFreeHandle(SQL_HANDLE_ENV, env_);
  }

  int read() override {
    SQLHSTMT stmt = SQL_NULL_HSTMT;
    check(SQLAllocHandle(SQL_HANDLE_STMT, dbc_, &stmt), SQL_HANDLE_DBC, dbc_, "SQLAllocHandle");
    check(SQLPrepare(stmt, text(kQuery), SQL_NTS), SQL_HANDLE_STMT, stmt, "SQLPrepare");
    SQLSMALLINT count = 0;
    check(SQLNumParams(stmt, &count), SQL_HANDLE_STMT, stmt, "SQLNumParams");
    if (generation_ == 2) describeColumns(stmt);
    check(SQLExecute(stmt), SQL_HANDLE_STMT, stmt, "SQLExecute");
    if (generation_ == 1) describeColumns(stmt);
    std::array<char, 128> value{};
    int rows = 0;
    for (SQLRETURN rc = SQLFetch(stmt); rc != SQL_NO_DATA; rc = SQLFetch(stmt), ++rows) {
      check(rc, SQL_HANDLE_STMT, stmt, "SQLFetch");
      for (int column = 0; column < kColumns; ++column) {
        SQLLEN indicator = 0;
        rc = SQLGetData(stmt, static_cast<SQLUSMALLINT>(column + 1), reads_[column].cType,
                        value.data(), reads_[column].bytes, &indicator);
        if (rc != SQL_SUCCESS) check(rc, SQL_HANDLE_STMT, stmt, "SQLGetData");
      }
    }
    for (const int what : {SQL_CLOSE, SQL_UNBIND, SQL_RESET_PARAMS}) {
      SQLFreeStmt(stmt, static_cast<SQLUSMALLINT>(what));
    }
    SQLFreeHandle(SQL_HANDLE_STMT, stmt);
    return rows;
  }

 private:
  // The second generation describes the columns when it prepares, the first when it has executed.
  void describeColumns(SQLHSTMT stmt) {
    SQLSMALLINT count = 0;
    check(SQLNumResultCols(stmt, &count), SQL_HANDLE_STMT, stmt, "SQLNumResultCols");
    for (SQLUSMALLINT column = 1; column <= kColumns; ++column) {
      std::array<SQLCHAR, 256> name{};
      SQLSMALLINT nameLength = 0;
      SQLSMALLINT type = 0;
      SQLULEN size = 0;
      SQLSMALLINT digits = 0;
      SQLSMALLINT nullable = 0;
      check(SQLDescribeCol(stmt, column, name.data(), 256, &nameLength, &type, &size, &digits,
                           &nullable),
            SQL_HANDLE_STMT, stmt, "SQLDescribeCol");
      if (generation_ == 2) continue;
      SQLLEN value = 0;
      for (const int field : {SQL_COLUMN_DISPLAY_SIZE, SQL_COLUMN_UNSIGNED}) {
        check(SQLColAttribute(stmt, column, static_cast<SQLUSMALLINT>(field), nullptr, 0, nullptr,
                              &value),
              SQL_HANDLE_STMT, stmt, "SQLColAttribute");
      }
    }
  }

  int generation_;
  const ColumnRead* reads_;
  SQLHENV env_ = SQL_NULL_HENV;
  SQLHDBC dbc_ = SQL_NULL_HDBC;
};

}  // namespace

std::unique_ptr<Reader> makePlainReader(const DataSource& source, int generation) {
  return std::make_unique<PlainReader>(source, generation);
}

}  // namespace bench
