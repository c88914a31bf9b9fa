// The floor: an ODBC program without a layer, making the calls that the plug-in makes.

#include <array>
#include <cstdlib>
#include <new>

#include "rows/kinds.h"
#include "rows/reader.h"

namespace bench {

namespace {

class PlainReader : public Reader {
 public:
  PlainReader(const DataSource& source, int generation)
      : session_(source), generation_(generation) {}

  int read(const Query& query) override {
    std::array<ColumnRead, 128> reads{};
    const auto columns = static_cast<SQLUSMALLINT>(query.kinds.size());
    for (std::size_t i = 0; i < columns; ++i) {
      reads.at(i) = kindOf(query.kinds[i]).reads[generation_ - 1];
    }
    SQLHSTMT stmt = session_.prepare(query.sql);
    if (generation_ == 2) describeColumns(stmt, columns);
    check(SQLExecute(stmt), SQL_HANDLE_STMT, stmt, "SQLExecute");
    if (generation_ == 1) describeColumns(stmt, columns);
    const int rows = fetch(stmt, reads.data(), columns);
    for (const int what : {SQL_CLOSE, SQL_UNBIND, SQL_RESET_PARAMS}) {
      SQLFreeStmt(stmt, static_cast<SQLUSMALLINT>(what));
    }
    SQLFreeHandle(SQL_HANDLE_STMT, stmt);
    return rows;
  }

 private:
  static int fetch(SQLHSTMT stmt, const ColumnRead* reads, SQLUSMALLINT columns) {
    std::array<char, 128> value{};
    int rows = 0;
    for (SQLRETURN rc = SQLFetch(stmt); rc != SQL_NO_DATA; rc = SQLFetch(stmt), ++rows) {
      check(rc, SQL_HANDLE_STMT, stmt, "SQLFetch");
      for (SQLUSMALLINT column = 0; column < columns; ++column) {
        SQLLEN indicator = 0;
        rc = SQLGetData(stmt, static_cast<SQLUSMALLINT>(column + 1), reads[column].cType,
                        value.data(), reads[column].bytes, &indicator);
        if (rc != SQL_SUCCESS) check(rc, SQL_HANDLE_STMT, stmt, "SQLGetData");
      }
    }
    return rows;
  }

  // The second generation describes the columns when it prepares, the first when it has executed.
  void describeColumns(SQLHSTMT stmt, SQLUSMALLINT columns) const {
    SQLSMALLINT count = 0;
    check(SQLNumResultCols(stmt, &count), SQL_HANDLE_STMT, stmt, "SQLNumResultCols");
    for (SQLUSMALLINT column = 1; column <= columns; ++column) {
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

  PlainSession session_;
  int generation_;
};

// One text column, in a first piece and the rest, or in ever larger pieces where the driver does
// not tell the length.
class PlainLongReader : public Reader {
 public:
  explicit PlainLongReader(const DataSource& source) : session_(source) {}

  int read(const Query& query) override {
    SQLHSTMT stmt = session_.prepare(query.sql);
    check(SQLExecute(stmt), SQL_HANDLE_STMT, stmt, "SQLExecute");
    int rows = 0;
    for (SQLRETURN rc = SQLFetch(stmt); rc != SQL_NO_DATA; rc = SQLFetch(stmt), ++rows) {
      check(rc, SQL_HANDLE_STMT, stmt, "SQLFetch");
      readText(stmt);
    }
    SQLFreeHandle(SQL_HANDLE_STMT, stmt);
    return rows;
  }

 private:
  static void readText(SQLHSTMT stmt) {
    constexpr SQLLEN kFirstBytes = 8001;
    SQLLEN used = 0;
    SQLLEN room = kFirstBytes;
    char* text = resized(nullptr, room);
    for (;;) {
      SQLLEN left = 0;
      const SQLRETURN rc = SQLGetData(stmt, 1, SQL_C_CHAR, text + used, room - used, &left);
      if (rc == SQL_SUCCESS || rc == SQL_NO_DATA) break;
      check(rc, SQL_HANDLE_STMT, stmt, "SQLGetData");
      const SQLLEN total = left == SQL_NO_TOTAL ? room * 2 : used + left + 1;
      used = room - 1;
      room = total;
      text = resized(text, room);
    }
    std::free(text);
  }

  static char* resized(char* text, SQLLEN bytes) {
    void* block = std::realloc(text, static_cast<std::size_t>(bytes));
    if (block == nullptr) {
      std::free(text);
      throw std::bad_alloc();
    }
    return static_cast<char*>(block);
  }

  PlainSession session_;
};

}  // namespace

std::unique_ptr<Reader> makePlainLongReader(const DataSource& source) {
  return std::make_unique<PlainLongReader>(source);
}

std::unique_ptr<Reader> makePlainReader(const DataSource& source, int generation) {
  return std::make_unique<PlainReader>(source, generation);
}

}  // namespace bench
