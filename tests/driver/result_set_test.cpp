#include <cstdlib>
#include <typeinfo>

#include "driver/odbc_result_set.h"
#include "tests/driver/driver_fixture.h"
#include "tests/driver/foreign_statement.h"
#include "tests/support/cell_text.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

constexpr char kNull[] = "NULL";
constexpr char kSkipped[] = "801014-4_COLUMN_VALUE_ERROR_RESULT_ROW_SKIPPED||";

class OdbcResultSetTest : public DriverFixture {
 protected:
  // Runs a query with one row and gives its result set on that row.
  ResultSet* firstRow(std::vector<fake::ColumnDescription> columns, std::vector<fake::Cell> cells) {
    odbc.results["q"] = {{std::move(columns), {std::move(cells)}}};
    ResultSet* rows = nullptr;
    bool more = false;
    EXPECT_EQ(connection->executeQuery("q", {}, 0, rows), kSuccess);
    EXPECT_EQ(rows->next(more), kSuccess);
    EXPECT_TRUE(more);
    return rows;
  }

  // The one column of the row as text: its value, NULL, or the log lines of its failure.
  std::string read(const fake::ColumnDescription& column, const fake::Cell& cell, unsigned type) {
    ResultSet* rows = firstRow({column}, {cell});
    Row* row = nullptr;
    std::string text;
    if (rows->getData(RowDescriptor({type}), row) == kSuccess) {
      text = cellText(row->getColumnValue(0), row->getColumnType(0));
    } else {
      EXPECT_EQ(row, nullptr);
      Strings lines = log.take();
      EXPECT_EQ(lines.back(), kSkipped);
      lines.pop_back();
      for (const std::string& line : lines) text += line;
    }
    delete row;
    return text;
  }
};

fake::Cell timestampCell(short year, unsigned short month, unsigned short day, unsigned short hour,
                         unsigned short minute, unsigned short second, unsigned fraction) {
  return fake::Cell::of(TIMESTAMP_STRUCT{year, month, day, hour, minute, second, fraction});
}

std::string failed(const std::string& reason) {
  return "801013-3_ERROR_GETTING_COLUMN_VALUE|1|" + reason;
}

TEST_F(OdbcResultSetTest, ReadsEveryFamilyFromItsColumnsAndTheirRelatives) {
  struct Case {
    const char* name;
    fake::ColumnDescription column;
    fake::Cell cell;
    unsigned type;
    std::string expected;
  };
  const fake::ColumnDescription kSmall = column(SQL_SMALLINT);
  const fake::ColumnDescription kInt = column(SQL_INTEGER);
  const fake::ColumnDescription kUnsigned = column(SQL_INTEGER, 10, 0, true);
  const fake::ColumnDescription kBig = column(SQL_BIGINT, 19);
  const fake::ColumnDescription kReal = column(SQL_DOUBLE);
  const fake::ColumnDescription kText = column(SQL_VARCHAR, 40);
  const fake::ColumnDescription kNumber = column(SQL_DECIMAL, 12, 3);
  const fake::ColumnDescription kStamp = column(SQL_TYPE_TIMESTAMP, 26);
  const fake::ColumnDescription kDay = column(SQL_TYPE_DATE, 10);
  const fake::ColumnDescription kClock = column(SQL_TYPE_TIME, 8);
  const fake::Cell kLeapDay = timestampCell(2000, 2, 29, 12, 34, 56, 999999999);
  const fake::Cell kNoon = fake::Cell::of(TIME_STRUCT{12, 34, 56});
  const Case kCases[] = {
      {"int16", kSmall, fake::Cell::of(short{-5}), kInt16, "-5"},
      {"int16 of an integer column", kInt, fake::Cell::of(5), kInt16, failed("")},
      {"int32", kInt, fake::Cell::of(-70000), kInteger, "-70000"},
      {"int32 of text", kText, "2147483647", kInteger, "2147483647"},
      {"int32 of too large a text", kText, "2147483648", kInteger, failed("")},
      {"int32 of a double", kReal, fake::Cell::of(5.0), kInteger, failed("")},
      {"int64", kBig, "9223372036854775807", kLong, "9223372036854775807"},
      {"int64 of unsigned", kUnsigned, fake::Cell::of(4294967295U), kLong, "4294967295"},
      {"int64 of int16", kSmall, fake::Cell::of(short{-5}), kLong, "-5"},
      {"int64 of a whole double", kReal, fake::Cell::of(-9007199254740992.0), kLong,
       "-9007199254740992"},
      {"int64 of a fraction", kReal, fake::Cell::of(1.5), kLong,
       failed("the number is not a 64-bit integer")},
      {"int64 of 2^63", kReal, fake::Cell::of(9223372036854775808.0), kLong,
       failed("the number is not a 64-bit integer")},
      {"interval of text", kText, "-12", kInterval, "-12"},
      {"int64 of a timestamp", kStamp, kLeapDay, kLong, failed("")},
      {"double", kReal, fake::Cell::of(0.5), kFloat, "0.500000"},
      {"double of int64", kBig, "3", kFloat, "3.000000"},
      {"double of a decimal", kNumber, "-1.25", kFloat, "-1.250000"},
      {"int64 of a decimal(4) as money(4)", kNumber, "1.5", 14, "15000"},
      {"boolean", column(SQL_BIT), "\x01", kBoolean, "1"},
      {"boolean of a NULL text", kText, {}, kBoolean, "0"},
      {"boolean of an integer column", kInt, fake::Cell::of(1), kBoolean, failed("")},
      {"string", kText, "h\xC3\xA9", kString, "h\xC3\xA9"},
      {"empty string", kText, "", kString, ""},
      {"string with a NUL", kText, std::string("a\0b", 3), kString, "a"},
      {"string of int64", kBig, "-9223372036854775808", kString, "-9223372036854775808"},
      {"string of a double", kReal, fake::Cell::of(0.1), kString, "0.1"},
      {"string of a timestamp", kStamp, timestampCell(1999, 12, 31, 1, 2, 3, 500000), kString,
       "1999-12-31T01:02:03.0005"},
      {"string of a date", kDay, timestampCell(1999, 12, 31, 0, 0, 0, 0), kString, "1999-12-31"},
      {"string of a time", kClock, kNoon, kString, "12:34:56"},
      {"binary", column(SQL_VARBINARY, 9), std::string("a\0b", 3), kBinary, std::string("a\0b", 3)},
      {"empty binary", column(SQL_VARBINARY, 9), "", kBinary, ""},
      {"money", kNumber, "1.23456", kMoney, "12345"},
      {"money(2) of int64", kBig, "-7", 12, "-700"},
      {"money of letters", kText, "1.x", kMoney,
       failed("money constant fractional part does not begin with a digit")},
      {"decimal(10,2)", kNumber, "-0.125", createFixedDecimal(10, 2), "-12 scale 2"},
      {"decimal of the column", kNumber, "1.5", kFixedDecimal, "1500 scale 3"},
      {"decimal of a double", kReal, fake::Cell::of(1e-7), kFixedDecimal, "1 scale 7"},
      {"decimal too long", kNumber, "123.4", createFixedDecimal(3, 1),
       failed("input exceeds specified precision")},
      {"date", kStamp, kLeapDay, kDate, "951827696"},
      {"timestamp cuts", kStamp, kLeapDay, kTimestamp, "951827696999"},
      {"bigdatetime cuts", kStamp, kLeapDay, kBigDateTime, "951827696999999"},
      {"timestamp of month 13", kStamp, timestampCell(2000, 13, 1, 0, 0, 0, 0), kTimestamp,
       failed("timestamp constant does not match format")},
      {"date of a time column", kClock, kNoon, kBigDateTime, "45296000000"},
      {"date of the old time type", column(SQL_TIME, 8), kLeapDay, kDate, "951827696"},
      {"timestamp of ISO text", kText, "2000-02-29T12:34:56.5", kTimestamp, "951827696500"},
      {"date of text with a blank", kText, "2000-02-29 12:34:56", kDate, "951827696"},
      {"date of a plain day", kText, "2000-02-29", kDate, "951782400"},
      {"date of text with a zone", kText, "2000-02-29 12:34:56+02", kDate,
       failed("the text is not an ISO date and time")},
      {"date of bytes", column(SQL_VARBINARY, 16), std::string(16, 'x'), kDate,
       failed("the column holds no date or time structure")},
      {"time", kClock, kNoon, kTime, "45296"},
      {"time of a timestamp", kStamp, kLeapDay, kTime, "45296"},
      {"time of SQL Server's type", column(-154, 16), fake::Cell::of(TIME_STRUCT{12, 34, 56}),
       kTime, "45296"},
      {"time of wide text", column(SQL_WVARCHAR, 20), "12:34:56", kTime, "45296"},
      {"time of short wide text", column(SQL_WVARCHAR, 20), "12:34:5", kTime,
       "801032-3_ERROR_PARSING_COLUMN_VALUE|1|"},
      {"time of letters", column(SQL_WVARCHAR, 20), "xx:00:00", kTime, "-3600"},
      {"time of narrow text", kText, "12:34:56", kTime,
       failed("the column holds no date or time structure")},
      {"type 6", kInt, fake::Cell::of(1), kUnknown, ""},
      {"type 31", kInt, fake::Cell::of(1), 31, ""},
  };
  open();
  for (const Case& c : kCases) {
    EXPECT_EQ(read(c.column, c.cell, c.type), c.expected) << c.name;
    const bool readable = !c.expected.empty() && !c.expected.starts_with("801");
    if (readable && !c.cell.null) {
      EXPECT_EQ(read(c.column, {}, c.type), kNull) << c.name;
    }
  }
}

TEST_F(OdbcResultSetTest, DatesBefore1970DependOnTheZoneUnlessReadSafely) {
  const char* before = std::getenv("TZ");
  const std::string saved = before == nullptr ? "" : before;
  setenv("TZ", "UTC-3", 1);
  tzset();
  for (const bool safe : {false, true}) {
    open({{"SafeTransfer", safe ? "true" : "false"}});
    EXPECT_EQ(
        read(column(SQL_TYPE_TIMESTAMP, 26), timestampCell(1969, 12, 31, 23, 59, 59, 0), kDate),
        safe ? "-1" : "-10801");
    EXPECT_EQ(read(column(SQL_VARCHAR, 26), "1969-12-31 23:59:59", kDate), safe ? "-1" : "-10801");
    close();
  }
  saved.empty() ? unsetenv("TZ") : setenv("TZ", saved.c_str(), 1);
  tzset();
}

TEST_F(OdbcResultSetTest, OneBadColumnDiscardsItsRowOnly) {
  open();
  const fake::ColumnDescription text = column(SQL_VARCHAR, 10);
  odbc.results["q"] = {{{text, text, text}, {{"a", "b", "x"}, {"c", "d", "3"}}}};
  ResultSet* rows = nullptr;
  bool more = false;
  ASSERT_EQ(connection->executeQuery("q", {}, 0, rows), kSuccess);
  const RowDescriptor descriptor({kString, kString, kInteger});
  Row* row = nullptr;
  ASSERT_EQ(rows->next(more), kSuccess);
  EXPECT_EQ(rows->getData(descriptor, row), kFailure);
  EXPECT_EQ(row, nullptr);
  EXPECT_EQ(log.take(), (Strings{"801013-3_ERROR_GETTING_COLUMN_VALUE|3|", kSkipped}));
  ASSERT_EQ(rows->next(more), kSuccess);
  ASSERT_EQ(rows->getData(descriptor, row), kSuccess);
  EXPECT_STREQ(row->getColumnValue(1).string, "d");
  delete row;
  EXPECT_EQ(rows->getData(RowDescriptor({}), row), kSuccess);
  EXPECT_EQ(row->getNumColumns(), 0u);
  delete row;
  EXPECT_EQ(rows->getData(RowDescriptor({kString, kString, kInteger, kInteger}), row), kFailure);
  EXPECT_EQ(log.take(), (Strings{"801013-3_ERROR_GETTING_COLUMN_VALUE|4|", kSkipped}));
  EXPECT_EQ(rows->next(more), kSuccess);
  EXPECT_FALSE(more);
  EXPECT_EQ(rows->close(), kSuccess);
}

TEST_F(OdbcResultSetTest, OnlyNextLetsABadCastOut) {
  make();
  ForeignStatement foreign(*connection);
  OdbcResultSet rows(foreign);
  bool more = false;
  Row* row = nullptr;
  int count = 0;
  DataValue cell;
  EXPECT_THROW(rows.next(more), std::bad_cast);
  EXPECT_EQ(rows.getData(RowDescriptor({kInteger}), row), kFailure);
  EXPECT_EQ(row, nullptr);
  EXPECT_EQ(rows.getNumColumns(count), kFailure);
  EXPECT_EQ(rows.getColumnInt32(1, cell), kFailure);
}

TEST_F(OdbcResultSetTest, DescribesItsColumns) {
  open();
  ResultSet* rows = firstRow({{"first", SQL_DECIMAL, 9, 2, 11, false, SQL_NULLABLE},
                              {"second", SQL_TYPE_DATE, 10, 0, 10, false, SQL_NULLABLE}},
                             {"1.00", timestampCell(2000, 1, 1, 0, 0, 0, 0)});
  int count = 0;
  std::string name;
  unsigned type = 0;
  EXPECT_EQ(rows->getNumColumns(count), kSuccess);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(rows->getColumnInfo(1, name, type), kSuccess);
  EXPECT_EQ(name, "first");
  EXPECT_EQ(type, 30u);
  EXPECT_EQ(rows->getColumnInfo(2, name, type), kSuccess);
  EXPECT_EQ(type, 8u);
}

}  // namespace
}  // namespace KORVEX::Zel::DB
