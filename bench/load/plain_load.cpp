// The floor: an ODBC program without a layer, making the calls that the plug-in makes.

#include <sql.h>
#include <sqlext.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <vector>

#include "load.h"

namespace bench {

namespace {

constexpr std::size_t kTextBytes = 21;
constexpr std::size_t kDecimalBytes = 24;

void check(SQLRETURN rc, const char* call) {
  if (!SQL_SUCCEEDED(rc)) throw std::runtime_error(std::string("plain load: ") + call + " failed");
}

SQLPOINTER number(SQLULEN value) {
  return reinterpret_cast<SQLPOINTER>(value);
}

SQLCHAR* text(const char* chars) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(chars));
}

// One column-wise array a parameter.
struct Arrays {
  std::vector<int> numbers;
  std::vector<long> bigs;
  std::vector<double> reals;
  std::vector<char> texts;
  std::vector<TIMESTAMP_STRUCT> times;
  std::vector<char> decimals;
  std::vector<unsigned char> flags;
  std::vector<SQLLEN> indicators[kColumns];

  explicit Arrays(std::size_t rows)
      : numbers(rows),
        bigs(rows),
        reals(rows),
        texts(rows * kTextBytes),
        times(rows),
        decimals(rows * kDecimalBytes),
        flags(rows) {
    for (auto& column : indicators) column.assign(rows, 0);
    indicators[3].assign(rows, SQL_NTS);
    indicators[5].assign(rows, SQL_NTS);
  }

  void set(std::size_t at, const LoadRow& row) {
    numbers[at] = row.number;
    bigs[at] = row.big;
    reals[at] = row.real;
    std::memcpy(&texts[at * kTextBytes], row.text.data(), std::strlen(row.text.data()) + 1);
    const time_t seconds = row.micros / 1000000;
    tm broken{};
    gmtime_r(&seconds, &broken);
    times[at] = {static_cast<SQLSMALLINT>(broken.tm_year + 1900),
                 static_cast<SQLUSMALLINT>(broken.tm_mon + 1),
                 static_cast<SQLUSMALLINT>(broken.tm_mday),
                 static_cast<SQLUSMALLINT>(broken.tm_hour),
                 static_cast<SQLUSMALLINT>(broken.tm_min),
                 static_cast<SQLUSMALLINT>(broken.tm_sec),
                 static_cast<SQLUINTEGER>(row.micros % 1000000 * 1000)};
    std::snprintf(&decimals[at * kDecimalBytes], kDecimalBytes, "%lu.%04lu",
                  static_cast<unsigned long>(row.coefficient) / 10000,
                  static_cast<unsigned long>(row.coefficient) % 10000);
    flags[at] = row.flag ? 1 : 0;
  }
};

void bind(SQLHSTMT stmt, Arrays& a) {
  struct Column {
    SQLSMALLINT cType;
    SQLSMALLINT sqlType;
    SQLULEN size;
    SQLSMALLINT digits;
    void* data;
    SQLLEN bytes;
  };
  const Column columns[kColumns] = {
      {SQL_C_SLONG, SQL_INTEGER, 10, 0, a.numbers.data(), 0},
      {SQL_C_SBIGINT, SQL_BIGINT, 19, 0, a.bigs.data(), 0},
      {SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, a.reals.data(), 0},
      {SQL_C_CHAR, SQL_VARCHAR, 20, 0, a.texts.data(), kTextBytes},
      {SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 26, 6, a.times.data(), 0},
      {SQL_C_CHAR, SQL_DECIMAL, 18, 4, a.decimals.data(), kDecimalBytes},
      {SQL_C_BIT, SQL_TINYINT, 3, 0, a.flags.data(), 0},
  };
  for (int i = 0; i < kColumns; ++i) {
    const Column& c = columns[i];
    check(SQLBindParameter(stmt, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT, c.cType,
                           c.sqlType, c.size, c.digits, c.data, c.bytes, a.indicators[i].data()),
          "SQLBindParameter");
  }
}

void sendBatch(SQLHDBC dbc, int firstRow, int rows) {
  SQLHSTMT stmt = SQL_NULL_HSTMT;
  check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &stmt), "SQLAllocHandle");
  check(SQLPrepare(stmt, text(kInsert), SQL_NTS), "SQLPrepare");
  SQLSMALLINT count = 0;
  check(SQLNumParams(stmt, &count), "SQLNumParams");
  for (SQLUSMALLINT i = 1; i <= kColumns; ++i) {
    SQLSMALLINT type = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = 0;
    SQLULEN size = 0;
    check(SQLDescribeParam(stmt, i, &type, &size, &digits, &nullable), "SQLDescribeParam");
  }
  Arrays arrays(static_cast<std::size_t>(rows));
  for (int i = 0; i < rows; ++i) arrays.set(static_cast<std::size_t>(i), makeRow(firstRow + i));
  std::vector<SQLUSMALLINT> status(static_cast<std::size_t>(rows));
  SQLSetStmtAttr(stmt, SQL_ATTR_PARAM_BIND_TYPE, number(SQL_PARAM_BIND_BY_COLUMN), 0);
  SQLSetStmtAttr(stmt, SQL_ATTR_PARAMSET_SIZE, number(static_cast<SQLULEN>(rows)), 0);
  SQLSetStmtAttr(stmt, SQL_ATTR_PARAM_STATUS_PTR, status.data(), SQL_IS_POINTER);
  bind(stmt, arrays);
  check(SQLExecute(stmt), "SQLExecute");
  SQLFreeHandle(SQL_HANDLE_STMT, stmt);
  check(SQLEndTran(SQL_HANDLE_DBC, dbc, SQL_COMMIT), "SQLEndTran");
}

}  // namespace

void loadPlainly(const std::string& dsn, int rows, int batchRows) {
  SQLHENV env = SQL_NULL_HENV;
  SQLHDBC dbc = SQL_NULL_HDBC;
  check(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env), "SQLAllocHandle");
  check(SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), SQL_IS_UINTEGER),
        "SQLSetEnvAttr");
  check(SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc), "SQLAllocHandle");
  check(SQLSetConnectAttr(dbc, SQL_ATTR_AUTOCOMMIT, number(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER),
        "SQLSetConnectAttr");
  check(SQLConnect(dbc, text(dsn.c_str()), SQL_NTS, text("u"), SQL_NTS, text(""), SQL_NTS),
        "SQLConnect");
  for (int row = 0; row < rows; row += batchRows) {
    sendBatch(dbc, row, rows - row < batchRows ? rows - row : batchRows);
  }
  SQLDisconnect(dbc);
  SQLFreeHandle(SQL_HANDLE_DBC, dbc);
  SQLFreeHandle(SQL_HANDLE_ENV, env);
}

}  // namespace bench
