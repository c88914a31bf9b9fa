#include "zeldb/plain_odbc.h"

#include <fmt/format.h>

#include <cstring>
#include <ctime>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

constexpr SQLLEN kTextBytes = 21;
constexpr SQLLEN kDecimalBytes = 24;
constexpr long kMicrosPerSecond = 1'000'000;
constexpr long kDecimalUnits = 10'000;

SQLCHAR* text(const std::string& chars) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(chars.c_str()));
}

SQLPOINTER number(std::uintptr_t value) {
  return reinterpret_cast<SQLPOINTER>(value);  // NOLINT(performance-no-int-to-ptr): as ODBC wants
}

std::string property(const Service& service, const char* key) {
  const auto found = service.properties.find(key);
  return found == service.properties.end() ? std::string() : found->second;
}

// What SQLBindParameter is told of each column, and SQLGetData by each generation.
struct ColumnRule {
  SQLSMALLINT cType;
  SQLSMALLINT sqlType;
  SQLULEN size;
  SQLSMALLINT digits;
  SQLLEN bytes;
  SQLSMALLINT readAs[2];
  SQLLEN readBytes[2];
};

constexpr ColumnRule kColumns[kSampleColumns] = {
    {SQL_C_SLONG, SQL_INTEGER, 10, 0, 4, {SQL_C_LONG, SQL_C_SLONG}, {8, 4}},
    {SQL_C_SBIGINT, SQL_BIGINT, 19, 0, 8, {SQL_C_CHAR, SQL_C_SBIGINT}, {21, 8}},
    {SQL_C_DOUBLE, SQL_DOUBLE, 15, 0, 8, {SQL_C_DOUBLE, SQL_C_DOUBLE}, {8, 8}},
    {SQL_C_CHAR, SQL_VARCHAR, 20, 0, kTextBytes, {SQL_C_CHAR, SQL_C_CHAR}, {21, 128}},
    {SQL_C_TYPE_TIMESTAMP,
     SQL_TYPE_TIMESTAMP,
     26,
     6,
     sizeof(TIMESTAMP_STRUCT),
     {SQL_C_TYPE_TIMESTAMP, SQL_C_TYPE_TIMESTAMP},
     {16, 16}},
    {SQL_C_CHAR, SQL_DECIMAL, 18, 4, kDecimalBytes, {SQL_C_CHAR, SQL_C_CHAR}, {22, 32}},
};

// A row as it is bound.
struct BoundRow {
  SQLINTEGER number;
  SQLBIGINT big;
  double real;
  char text[kTextBytes];
  TIMESTAMP_STRUCT moment;
  char amount[kDecimalBytes];
  SQLLEN indicators[kSampleColumns];

  void set(const SampleRow& row) {
    number = row.number;
    big = row.big;
    real = row.real;
    std::memcpy(text, row.text.data(), row.text.size());
    const std::time_t seconds = row.micros / kMicrosPerSecond;
    std::tm t{};
    gmtime_r(&seconds, &t);
    moment = {static_cast<SQLSMALLINT>(t.tm_year + 1900),
              static_cast<SQLUSMALLINT>(t.tm_mon + 1),
              static_cast<SQLUSMALLINT>(t.tm_mday),
              static_cast<SQLUSMALLINT>(t.tm_hour),
              static_cast<SQLUSMALLINT>(t.tm_min),
              static_cast<SQLUSMALLINT>(t.tm_sec),
              static_cast<SQLUINTEGER>(row.micros % kMicrosPerSecond * 1000)};
    *fmt::format_to_n(amount, kDecimalBytes - 1, "{}.{:04}", row.coefficient / kDecimalUnits,
                      row.coefficient % kDecimalUnits)
         .out = '\0';
    for (std::size_t i = 0; i < kSampleColumns; ++i) indicators[i] = kColumns[i].bytes;
    indicators[3] = static_cast<SQLLEN>(std::strlen(text));
    indicators[5] = static_cast<SQLLEN>(std::strlen(amount));
  }
  void* value(std::size_t column) {
    void* const values[] = {&number, &big, &real, text, &moment, amount};
    return values[column];
  }
};

struct Described {
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
  SQLSMALLINT nullable = 0;
};

}  // namespace

SampleRow makeSampleRow(int index) {
  SampleRow row{};
  row.number = index;
  row.big = index * 1000000007L;
  row.real = index * 0.25;
  fmt::format_to_n(row.text.data(), row.text.size() - 1, "row number {}", index);
  row.micros = 1700000000000000 + index * 1000003L;
  row.coefficient = index * 12345L;
  return row;
}

PlainOdbc::PlainOdbc(const Service& service) {
  SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env_);
  SQLSetEnvAttr(env_, SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), SQL_IS_UINTEGER);
  SQLAllocHandle(SQL_HANDLE_DBC, env_, &dbc_);
  SQLSetConnectAttr(dbc_, SQL_ATTR_AUTOCOMMIT, number(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER);
  const std::string dsn = property(service, "DSN");
  const std::string user = property(service, "User");
  const std::string password = property(service, "Password");
  check(SQLConnect(dbc_, text(dsn), SQL_NTS, text(user), SQL_NTS, text(password), SQL_NTS),
        SQL_HANDLE_DBC, dbc_, "SQLConnect");
  char name[64] = {};
  SQLGetInfo(dbc_, SQL_DBMS_NAME, name, sizeof name - 1, nullptr);
  preparesTwice_ = std::strcmp(name, "PostgreSQL") == 0;
}

PlainOdbc::~PlainOdbc() {
  SQLEndTran(SQL_HANDLE_DBC, dbc_, SQL_ROLLBACK);
  SQLDisconnect(dbc_);
  SQLFreeHandle(SQL_HANDLE_DBC, dbc_);
  SQLFreeHandle(SQL_HANDLE_ENV, env_);
}

void PlainOdbc::check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, const char* call) {
  if (SQL_SUCCEEDED(rc)) return;
  SQLCHAR state[6] = {};
  SQLCHAR message[512] = {};
  SQLGetDiagRec(type, handle, 1, state, nullptr, message, sizeof message - 1, nullptr);
  const auto* reason = reinterpret_cast<const char*>(message);
  throw Failure(type == SQL_HANDLE_DBC ? ExitCode::kConnect : ExitCode::kSql,
                fmt::format("plain ODBC, {}: {}", call, reason),
                reinterpret_cast<const char*>(state));
}

SQLHSTMT PlainOdbc::prepare(const std::string& sql) {
  SQLHSTMT stmt = SQL_NULL_HSTMT;
  check(SQLAllocHandle(SQL_HANDLE_STMT, dbc_, &stmt), SQL_HANDLE_DBC, dbc_, "SQLAllocHandle");
  check(SQLPrepare(stmt, text(sql), SQL_NTS), SQL_HANDLE_STMT, stmt, "SQLPrepare");
  SQLSMALLINT count = 0;
  check(SQLNumParams(stmt, &count), SQL_HANDLE_STMT, stmt, "SQLNumParams");
  return stmt;
}

void PlainOdbc::commit() {
  check(SQLEndTran(SQL_HANDLE_DBC, dbc_, SQL_COMMIT), SQL_HANDLE_DBC, dbc_, "SQLEndTran");
}

// An array a column, which is what drivers are quickest with.
void PlainOdbc::sendBatch(const std::string& sql, int first, int rows) {
  SQLHSTMT stmt = prepare(sql);
  Described described;
  for (SQLUSMALLINT i = 1; i <= kSampleColumns; ++i) {
    check(SQLDescribeParam(stmt, i, &described.type, &described.size, &described.digits,
                           &described.nullable),
          SQL_HANDLE_STMT, stmt, "SQLDescribeParam");
  }
  if (preparesTwice_) {
    check(SQLPrepare(stmt, text(sql), SQL_NTS), SQL_HANDLE_STMT, stmt, "SQLPrepare");
  }
  const auto count = static_cast<std::size_t>(rows);
  SQLSetStmtAttr(stmt, SQL_ATTR_PARAM_BIND_TYPE, number(SQL_PARAM_BIND_BY_COLUMN), 0);
  SQLSetStmtAttr(stmt, SQL_ATTR_PARAMSET_SIZE, number(count), 0);
  std::array<std::vector<char>, kSampleColumns> values;
  std::array<std::vector<SQLLEN>, kSampleColumns> indicators;
  BoundRow row{};
  for (std::size_t n = 0; n < count; ++n) {
    row.set(makeSampleRow(first + static_cast<int>(n)));
    for (std::size_t i = 0; i < kSampleColumns; ++i) {
      const auto* bytes = static_cast<const char*>(row.value(i));
      values.at(i).insert(values.at(i).end(), bytes, bytes + kColumns[i].bytes);
      indicators.at(i).push_back(row.indicators[i]);
    }
  }
  for (std::size_t i = 0; i < kSampleColumns; ++i) {
    const ColumnRule& c = kColumns[i];
    check(SQLBindParameter(stmt, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT, c.cType,
                           c.sqlType, c.size, c.digits, values.at(i).data(), c.bytes,
                           indicators.at(i).data()),
          SQL_HANDLE_STMT, stmt, "SQLBindParameter");
  }
  check(SQLExecute(stmt), SQL_HANDLE_STMT, stmt, "SQLExecute");
  SQLFreeHandle(SQL_HANDLE_STMT, stmt);
}

void PlainOdbc::insertBatches(const std::string& sql, int rows) {
  for (int first = 0; first < rows; first += kSampleBatchRows) {
    sendBatch(sql, first, std::min(rows - first, kSampleBatchRows));
  }
  commit();
}

void PlainOdbc::insertRows(const std::string& sql, int rows) {
  SQLHSTMT stmt = prepare(sql);
  std::array<Described, kSampleColumns> described;
  for (SQLUSMALLINT i = 0; i < kSampleColumns; ++i) {
    Described& d = described.at(i);
    check(SQLDescribeParam(stmt, static_cast<SQLUSMALLINT>(i + 1), &d.type, &d.size, &d.digits,
                           &d.nullable),
          SQL_HANDLE_STMT, stmt, "SQLDescribeParam");
  }
  BoundRow row{};
  for (int n = 0; n < rows; ++n) {
    row.set(makeSampleRow(n));
    for (std::size_t i = 0; i < kSampleColumns; ++i) {
      const Described& d = described.at(i);
      check(SQLBindParameter(stmt, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT,
                             kColumns[i].cType, d.type, d.size, d.digits, row.value(i),
                             kColumns[i].bytes, &row.indicators[i]),
            SQL_HANDLE_STMT, stmt, "SQLBindParameter");
    }
    check(SQLExecute(stmt), SQL_HANDLE_STMT, stmt, "SQLExecute");
  }
  SQLFreeHandle(SQL_HANDLE_STMT, stmt);
  commit();
}

int PlainOdbc::fetch(const std::string& sql, int generation) {
  const auto way = static_cast<std::size_t>(generation - 1);
  SQLHSTMT stmt = prepare(sql);
  check(SQLExecute(stmt), SQL_HANDLE_STMT, stmt, "SQLExecute");
  std::array<char, 128> value{};
  int rows = 0;
  for (SQLRETURN rc = SQLFetch(stmt); rc != SQL_NO_DATA; rc = SQLFetch(stmt), ++rows) {
    check(rc, SQL_HANDLE_STMT, stmt, "SQLFetch");
    for (std::size_t i = 0; i < kSampleColumns; ++i) {
      SQLLEN indicator = 0;
      rc = SQLGetData(stmt, static_cast<SQLUSMALLINT>(i + 1), kColumns[i].readAs[way], value.data(),
                      kColumns[i].readBytes[way], &indicator);
      if (rc != SQL_SUCCESS) check(rc, SQL_HANDLE_STMT, stmt, "SQLGetData");
    }
  }
  SQLFreeHandle(SQL_HANDLE_STMT, stmt);
  SQLEndTran(SQL_HANDLE_DBC, dbc_, SQL_ROLLBACK);
  return rows;
}

}  // namespace zeldb
