// The floor: an ODBC program without a layer, making the calls that the plug-in makes.

#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

#include "rows/writer.h"

namespace bench {

namespace {

constexpr std::size_t kTextBytes = 21;
constexpr std::size_t kDecimalBytes = 24;

TIMESTAMP_STRUCT timestampOf(long micros) {
  const time_t seconds = micros / 1000000;
  tm broken{};
  gmtime_r(&seconds, &broken);
  return {static_cast<SQLSMALLINT>(broken.tm_year + 1900),
          static_cast<SQLUSMALLINT>(broken.tm_mon + 1),
          static_cast<SQLUSMALLINT>(broken.tm_mday),
          static_cast<SQLUSMALLINT>(broken.tm_hour),
          static_cast<SQLUSMALLINT>(broken.tm_min),
          static_cast<SQLUSMALLINT>(broken.tm_sec),
          static_cast<SQLUINTEGER>(micros % 1000000 * 1000)};
}

// Returns the length.
int printDecimal(long coefficient, char* out) {
  return std::snprintf(out, kDecimalBytes, "%lu.%04lu",
                       static_cast<unsigned long>(coefficient) / 10000,
                       static_cast<unsigned long>(coefficient) % 10000);
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

  void set(std::size_t at, const SampleRow& row) {
    numbers[at] = row.number;
    bigs[at] = row.big;
    reals[at] = row.real;
    std::memcpy(&texts[at * kTextBytes], row.text.data(), std::strlen(row.text.data()) + 1);
    times[at] = timestampOf(row.micros);
    printDecimal(row.coefficient, &decimals[at * kDecimalBytes]);
    flags[at] = row.flag ? 1 : 0;
  }
};

struct Column {
  SQLSMALLINT cType;
  SQLSMALLINT sqlType;
  SQLSMALLINT digits;
  SQLULEN size;
  SQLLEN bytes;
};

constexpr Column kColumnsBound[kColumns] = {
    {SQL_C_SLONG, SQL_INTEGER, 0, 10, 0},
    {SQL_C_SBIGINT, SQL_BIGINT, 0, 19, 0},
    {SQL_C_DOUBLE, SQL_DOUBLE, 0, 15, 0},
    {SQL_C_CHAR, SQL_VARCHAR, 0, 20, kTextBytes},
    {SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 6, 26, 0},
    {SQL_C_CHAR, SQL_DECIMAL, 4, 18, kDecimalBytes},
    {SQL_C_BIT, SQL_TINYINT, 0, 3, 0},
};

struct Described {
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
  SQLSMALLINT nullable = 0;
};

std::vector<Described> describe(SQLHSTMT stmt) {
  std::vector<Described> parameters(kColumns);
  for (SQLUSMALLINT i = 0; i < kColumns; ++i) {
    Described& p = parameters[i];
    check(SQLDescribeParam(stmt, static_cast<SQLUSMALLINT>(i + 1), &p.type, &p.size, &p.digits,
                           &p.nullable),
          SQL_HANDLE_STMT, stmt, "SQLDescribeParam");
  }
  return parameters;
}

class PlainBatchWriter : public Writer {
 public:
  PlainBatchWriter(const DataSource& source, bool preparesTwice, int batchRows)
      : session_(source), preparesTwice_(preparesTwice), batchRows_(batchRows) {}

  void write(const std::string& insert, int rows) override {
    for (int row = 0; row < rows; row += batchRows_) {
      sendBatch(insert, row, rows - row < batchRows_ ? rows - row : batchRows_);
    }
  }

 private:
  void sendBatch(const std::string& insert, int firstRow, int rows) {
    SQLHSTMT stmt = session_.prepare(insert);
    describe(stmt);
    if (preparesTwice_) {
      check(SQLPrepare(stmt, text(insert), SQL_NTS), SQL_HANDLE_STMT, stmt, "SQLPrepare");
    }
    Arrays arrays(static_cast<std::size_t>(rows));
    for (int i = 0; i < rows; ++i) arrays.set(static_cast<std::size_t>(i), makeRow(firstRow + i));
    std::vector<SQLUSMALLINT> status(static_cast<std::size_t>(rows));
    SQLSetStmtAttr(stmt, SQL_ATTR_PARAM_BIND_TYPE, number(SQL_PARAM_BIND_BY_COLUMN), 0);
    SQLSetStmtAttr(stmt, SQL_ATTR_PARAMSET_SIZE, number(static_cast<SQLULEN>(rows)), 0);
    SQLSetStmtAttr(stmt, SQL_ATTR_PARAM_STATUS_PTR, status.data(), SQL_IS_POINTER);
    bind(stmt, arrays);
    check(SQLExecute(stmt), SQL_HANDLE_STMT, stmt, "SQLExecute");
    SQLFreeHandle(SQL_HANDLE_STMT, stmt);
    session_.commit();
  }

  static void bind(SQLHSTMT stmt, Arrays& a) {
    void* const data[kColumns] = {a.numbers.data(), a.bigs.data(),  a.reals.data(),
                                  a.texts.data(),   a.times.data(), a.decimals.data(),
                                  a.flags.data()};
    for (int i = 0; i < kColumns; ++i) {
      const Column& c = kColumnsBound[i];
      check(SQLBindParameter(stmt, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT, c.cType,
                             c.sqlType, c.size, c.digits, data[i], c.bytes, a.indicators[i].data()),
            SQL_HANDLE_STMT, stmt, "SQLBindParameter");
    }
  }

  PlainSession session_;
  bool preparesTwice_;
  int batchRows_;
};

class PlainRowWriter : public Writer {
 public:
  explicit PlainRowWriter(const DataSource& source) : session_(source) {}

  void write(const std::string& insert, int rows) override {
    SQLHSTMT stmt = session_.prepare(insert);
    const std::vector<Described> described = describe(stmt);
    SQLSMALLINT columns = 0;
    SQLNumResultCols(stmt, &columns);
    for (int i = 0; i < rows; ++i) {
      SampleRow row = makeRow(i);
      send(stmt, described, row);
    }
    SQLFreeHandle(SQL_HANDLE_STMT, stmt);
    session_.commit();
  }

 private:
  static void send(SQLHSTMT stmt, const std::vector<Described>& described, SampleRow& row) {
    TIMESTAMP_STRUCT time = timestampOf(row.micros);
    char decimal[kDecimalBytes];
    const SQLLEN decimalLength = printDecimal(row.coefficient, decimal);
    const auto textLength = static_cast<SQLLEN>(std::strlen(row.text.data()));
    struct Value {
      void* data;
      SQLLEN length;
    };
    const Value values[kColumns] = {{&row.number, 0},     {&row.big, 0},
                                    {&row.real, 0},       {row.text.data(), textLength},
                                    {&time, sizeof time}, {decimal, decimalLength},
                                    {&row.flag, 0}};
    SQLLEN indicators[kColumns];
    for (int i = 0; i < kColumns; ++i) {
      const Described& d = described[static_cast<std::size_t>(i)];
      indicators[i] = values[i].length;
      check(SQLBindParameter(stmt, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT,
                             kColumnsBound[i].cType, d.type, d.size, d.digits, values[i].data,
                             values[i].length, &indicators[i]),
            SQL_HANDLE_STMT, stmt, "SQLBindParameter");
    }
    check(SQLExecute(stmt), SQL_HANDLE_STMT, stmt, "SQLExecute");
  }

  PlainSession session_;
};

}  // namespace

std::unique_ptr<Writer> makePlainBatchWriter(const DataSource& source, bool preparesTwice,
                                             int batchRows) {
  return std::make_unique<PlainBatchWriter>(source, preparesTwice, batchRows);
}

std::unique_ptr<Writer> makePlainRowWriter(const DataSource& source) {
  return std::make_unique<PlainRowWriter>(source);
}

}  // namespace bench
