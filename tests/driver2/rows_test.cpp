#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "datatypes/data_types.h"
#include "driver2/prepared_statement2_odbc.h"
#include "tests/driver2/driver2_fixture.h"
#include "tests/support/cell_text.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

fake::ColumnDescription column(SQLSMALLINT sqlType, SQLULEN size = 10, SQLSMALLINT digits = 0) {
  return {"c", sqlType, size, digits, static_cast<SQLLEN>(size), false, SQL_NULLABLE};
}

class RowsTest : public Driver2Fixture {
 protected:
  static void release(const DataValue& cell, unsigned type) {
    if (cell.isNull()) return;
    if (typeNumber(type) == kString) std::free(const_cast<char*>(cell.string));
    if (typeNumber(type) == kBinary) std::free(const_cast<unsigned char*>(cell.binary.data));
  }

  // One column through both forms of nextRow, which must agree; or what the failure says.
  std::string read(const fake::ColumnDescription& described, const fake::Cell& cell,
                   unsigned type) {
    PreparedStatement* statement = firstRow({described}, {cell}, {type});
    Cells cells(1);
    std::string text;
    if (statement->nextRow(cells, error) != 0) {
      text = said();
    } else {
      text = cellText(cells[0], type);
      release(cells[0], type);
    }
    connection->releaseStatement(statement, error);
    EXPECT_EQ(readPacked(described, cell, type), text);
    return text;
  }

  std::string readPacked(const fake::ColumnDescription& described, const fake::Cell& cell,
                         unsigned type) {
    PreparedStatement* statement = firstRow({described}, {cell}, {type});
    const RowInternal2* row = statement->nextRow(error);
    std::string text = said();
    if (row != nullptr) {
      DataValue value;
      unpackValue(type, const_cast<unsigned char*>(row->value(0)), value);
      text = cellText(value, type);
      EXPECT_EQ(row->columnCount(), 1u);
      EXPECT_EQ(row->totalBytes, static_cast<unsigned>(row->offset(1)));
    }
    std::free(const_cast<RowInternal2*>(row));
    connection->releaseStatement(statement, error);
    return text;
  }
};

TEST_F(RowsTest, ReadsEveryTypeInBothFormsAndModes) {
  struct Case {
    const char* name;
    fake::ColumnDescription column;
    fake::Cell cell;
    unsigned type;
    std::string plain;
    std::string safe;
  };
  const fake::Cell kStamp = fake::Cell::of(TIMESTAMP_STRUCT{2000, 2, 29, 12, 34, 56, 999999999});
  const fake::ColumnDescription kText = column(SQL_VARCHAR, 300);
  const fake::ColumnDescription kBytes = column(SQL_VARBINARY, 300);
  const std::string kDigits(34, '9');
  const std::string kPastFirst = "odbc|[1][01004]";
  const Case kCases[] = {
      {"integer", column(SQL_INTEGER), fake::Cell::of(-5), kInteger, "-5", "-5"},
      {"long", column(SQL_BIGINT), fake::Cell::of(1L << 40), kLong, "1099511627776",
       "1099511627776"},
      {"interval", column(SQL_BIGINT), fake::Cell::of(-1L), kInterval, "-1", "-1"},
      {"float", column(SQL_DOUBLE), fake::Cell::of(0.5), kFloat, "0.500000", "0.500000"},
      {"boolean", column(SQL_BIT), "\x01", kBoolean, "1", "1"},
      {"date", column(SQL_TYPE_DATE), kStamp, kDate, "951827696", "951827696"},
      {"timestamp", column(SQL_TYPE_TIMESTAMP), kStamp, kTimestamp, "951827696999", "951827696999"},
      {"bigdatetime", column(SQL_TYPE_TIMESTAMP), kStamp, kBigDateTime, "951827696999999",
       "951827696999999"},
      {"time", column(SQL_TYPE_TIME), kStamp, kTime, "45296", "45296"},
      {"money", column(SQL_DECIMAL), "1.5", kMoney, "15000", "15000"},
      {"decimal", column(SQL_DECIMAL), "-1.5", createFixedDecimal(5, 2), "-150 scale 2",
       "-150 scale 2"},
      {"letters", column(SQL_DECIMAL), "x", createFixedDecimal(5, 2),
       "dbaccess|input exceeds specified precision", "dbaccess|input exceeds specified precision"},
      {"34 digits", column(SQL_DECIMAL), kDigits, createFixedDecimal(34, 0), kPastFirst,
       std::to_string(static_cast<long>(0x378D8E63FFFFFFFFUL)) + " scale 0"},
      {"many decimals", column(SQL_DECIMAL), "0.5" + std::string(200, '0'),
       createFixedDecimal(34, 2), kPastFirst, "50 scale 2"},
      {"too many digits", column(SQL_DECIMAL), std::string(200, '9'), createFixedDecimal(34, 2),
       kPastFirst, "dbaccess|input exceeds specified precision"},
      {"empty text", kText, "", kString, "", ""},
      {"a NUL within", kText, std::string("a\0b", 3), kString, "a", "a"},
      {"127 bytes", kText, std::string(127, 'x'), kString, std::string(127, 'x'),
       std::string(127, 'x')},
      {"128 bytes", kText, std::string(128, 'x'), kString, kPastFirst, std::string(128, 'x')},
      {"129 bytes", kText, std::string(129, 'x'), kString, std::string(129, 'x'),
       std::string(129, 'x')},
      {"200 bytes", kText, std::string(200, 'x'), kString, std::string(200, 'x'),
       std::string(200, 'x')},
      {"unknown total", kText, fake::Cell(std::string(1000, 'x'), fake::Total::kUnknown), kString,
       kPastFirst, std::string(1000, 'x')},
      {"never a total", kText, fake::Cell(std::string(500, 'x'), fake::Total::kNever), kString,
       kPastFirst, std::string(500, 'x')},
      {"no bytes", kBytes, "", kBinary, "", ""},
      {"60 bytes", kBytes, std::string(60, '\0'), kBinary, std::string(60, '\0'),
       std::string(60, '\0')},
      {"61 bytes", kBytes, std::string(61, 'b'), kBinary, std::string(61, 'b'),
       std::string(61, 'b')},
      {"5000 bytes", kBytes, std::string(5000, 'b'), kBinary, std::string(5000, 'b'),
       std::string(5000, 'b')},
  };
  for (const bool safe : {false, true}) {
    open(safe);
    for (const Case& c : kCases) {
      const std::string text = read(c.column, c.cell, c.type);
      const std::string& expected = safe ? c.safe : c.plain;
      if (expected == kPastFirst) {
        EXPECT_EQ(text.substr(0, expected.size()), expected) << c.name;
      } else {
        EXPECT_EQ(text, expected) << c.name << (safe ? " safe" : " plain");
      }
    }
    for (const Case& c : kCases) EXPECT_EQ(read(c.column, {}, c.type), "NULL") << c.name;
    close();
  }
}

TEST_F(RowsTest, AsksForWhatIsLeftOfALongValue) {
  struct Case {
    SQLSMALLINT sqlType;
    std::size_t bytes;
    unsigned type;
    Strings calls;
  };
  const Case kCases[] = {
      {SQL_VARCHAR, 127, kString, {"SQLGetData(1,1,128)"}},
      {SQL_VARCHAR, 200, kString, {"SQLGetData(1,1,128)", "SQLGetData(1,1,74)"}},
      {SQL_VARBINARY, 60, kBinary, {"SQLGetData(1,-2,60)"}},
      {SQL_VARBINARY, 100, kBinary, {"SQLGetData(1,-2,60)", "SQLGetData(1,-2,40)"}},
      {SQL_DECIMAL, 3, kMoney, {"SQLGetData(1,1,32)"}},
  };
  open(false);
  for (const Case& c : kCases) {
    PreparedStatement* statement =
        firstRow({column(c.sqlType, 300)}, {std::string(c.bytes, '7')}, {c.type});
    Cells cells(1);
    EXPECT_EQ(statement->nextRow(cells, error), 0) << c.bytes;
    EXPECT_EQ(odbc.takeLog(), c.calls) << c.bytes;
    release(cells[0], c.type);
    connection->releaseStatement(statement, error);
  }
}

TEST_F(RowsTest, NullFlagsAndSixteenBitIntegersByMode) {
  for (const bool safe : {false, true}) {
    open(safe);
    PreparedStatement* statement =
        firstRow({column(SQL_INTEGER), column(SQL_SMALLINT)},
                 {fake::Cell::of(1), fake::Cell::of(short{-7})}, {kInteger, kInt16});
    Cells cells(2);
    cells[0].setNull();
    cells[1].int16 = 99;
    EXPECT_EQ(statement->nextRow(cells, error), 0);
    EXPECT_EQ(cells[0].isNull(), !safe);
    EXPECT_EQ(cells[0].int32, 1);
    EXPECT_EQ(cells[1].int16, safe ? -7 : 99);
    close();
  }
}

TEST_F(RowsTest, LaysOutThePackedRow) {
  open(false);
  PreparedStatement* statement =
      firstRow({column(SQL_INTEGER), column(SQL_VARCHAR), column(SQL_VARBINARY)},
               {{}, "abc", "xyz"}, {kInteger, kString, kBinary});
  const RowInternal2* row = statement->nextRow(error);
  ASSERT_NE(row, nullptr);
  const int kOffsets[] = {0, 68, 72, 79};
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(row->offset(i), kOffsets[i]);
  EXPECT_EQ(row->totalBytes, 79u);
  EXPECT_EQ(row->word4, 1u);
  EXPECT_EQ(row->word8, 0u);
  EXPECT_EQ(row->columns, 3u);
  for (const unsigned zero : row->zero) EXPECT_EQ(zero, 0u);
  EXPECT_EQ(std::memcmp(row->value(1), "abc\0\0\0\0\3xyz", 11), 0);
  std::free(const_cast<RowInternal2*>(row));
}

TEST_F(RowsTest, DescribesColumnsAsTheDriverDoes) {
  struct Case {
    fake::ColumnDescription column;
    unsigned type;
  };
  const Case kCases[] = {
      {column(SQL_NUMERIC, 38, 36), kFloat},
      {column(SQL_DECIMAL, 20, 4), createFixedDecimal(20, 4)},
      {column(SQL_NUMERIC, 38, 2), createFixedDecimal(38, 2)},
      {column(SQL_NUMERIC, 40, 34), createFixedDecimal(40, 34)},
      {column(SQL_FLOAT), kFloat},
      {column(SQL_REAL), kFloat},
      {column(SQL_DOUBLE), kFloat},
      {column(9), kTimestamp},
      {column(10), kTime},
      {column(11), kBigDateTime},
      {column(SQL_TYPE_TIMESTAMP), kBigDateTime},
      {column(SQL_TYPE_DATE), kDate},
      {column(SQL_TYPE_TIME), kTime},
      {column(SQL_CHAR), kString},
      {column(SQL_VARCHAR), kString},
      {column(SQL_LONGVARCHAR), kString},
      {column(SQL_WCHAR), kString},
      {column(SQL_WVARCHAR), kString},
      {column(SQL_WLONGVARCHAR), kString},
      {column(SQL_BIT), kBoolean},
      {column(SQL_TINYINT), kInteger},
      {column(SQL_INTEGER), kInteger},
      {column(SQL_SMALLINT), kInteger},
      {column(SQL_BIGINT), kLong},
      {column(SQL_BINARY), kBinary},
      {column(SQL_VARBINARY), kBinary},
      {column(SQL_LONGVARBINARY), kBinary},
      {column(-154), kUnknown},
  };
  open(false);
  std::vector<fake::ColumnDescription> columns;
  for (const Case& c : kCases) columns.push_back(c.column);
  columns[0].name = "first";
  odbc.results["q"] = {{columns, {}}};
  PreparedStatement* statement = prepare("q");
  ASSERT_NE(statement, nullptr);
  int count = 0;
  unsigned type = 77;
  EXPECT_EQ(statement->getEffectiveNumberColumns(count, error), 0);
  EXPECT_EQ(count, static_cast<int>(std::size(kCases)));
  for (int i = 0; i < count; ++i) {
    EXPECT_EQ(statement->getEffectiveDataType(i, type, error), 0);
    EXPECT_EQ(type, kCases[i].type) << i;
  }
  EXPECT_EQ(statement->getEffectiveDataType(count, type, error), 0);
  EXPECT_EQ(type, 0u);
  for (const int bad : {-1, count + 1}) {
    EXPECT_EQ(statement->getEffectiveDataType(bad, type, error), -1);
    EXPECT_EQ(said(), "dbaccess|invalid column");
  }
  EXPECT_STREQ(statement->getColumnName(0, error), "first");
}

// Of a longer name the length is told; the second call does not say that there is more room now.
TEST_F(RowsTest, LongColumnNamesFailUnlessSafe) {
  const std::string kName(300, 'n');
  for (const bool safe : {false, true}) {
    open(safe);
    for (const std::size_t length : {255u, 256u, 257u, 300u}) {
      fake::ColumnDescription described = column(SQL_INTEGER);
      described.name = kName.substr(0, length);
      odbc.results["q"] = {{{described}, {}}};
      odbc.takeLog();
      const PreparedStatement* statement = prepare("q");
      const Strings calls = odbc.takeLog();
      EXPECT_EQ(std::ranges::count(calls, "SQLDescribeCol(1,256)"), length > 256 ? 2 : 1) << length;
      if (safe || length == 255) {
        ASSERT_NE(statement, nullptr) << length;
        EXPECT_EQ(statement->getColumnName(0, error), kName.substr(0, 255)) << length;
      } else {
        EXPECT_EQ(statement, nullptr) << length;
        EXPECT_EQ(said(), "odbc|[1][01004]name cut");
      }
    }
    close();
  }
}

// No column is read so by itself.
TEST_F(RowsTest, ReadsADateStructureAsItsFirstSecond) {
  open(false);
  PreparedStatement* statement =
      firstRow({column(SQL_TYPE_DATE), column(SQL_TYPE_DATE)},
               {fake::Cell::of(DATE_STRUCT{2000, 2, 29}), {}}, {kDate, kDate});
  auto* own = static_cast<ODBC::PreparedStatement2Odbc*>(statement);
  long seconds = 0;
  int length = 8;
  EXPECT_EQ(own->getDataColumn<SQL_C_TYPE_DATE>(0, &seconds, length, error), 0);
  EXPECT_EQ(seconds, 951782400);
  EXPECT_EQ(length, 8);
  EXPECT_EQ(own->getDataColumn<SQL_C_TYPE_DATE>(1, &seconds, length, error), 0);
  EXPECT_EQ(length, -1);
  EXPECT_EQ(odbc.takeLog(), (Strings{"SQLGetData(1,91,6)", "SQLGetData(2,91,6)"}));
}

TEST_F(RowsTest, ARowThatFailsKeepsTheCellsBefore) {
  open(false);
  PreparedStatement* statement = firstRow({column(SQL_INTEGER), column(SQL_DECIMAL)},
                                          {fake::Cell::of(5), "x"}, {kInteger, kMoney});
  Cells cells(2);
  EXPECT_EQ(statement->nextRow(cells, error), -1);
  EXPECT_EQ(cells[0].int32, 5);
}

TEST_F(RowsTest, GoesThroughResultSetsInOrder) {
  open(false);
  const fake::Result one = {{column(SQL_INTEGER)}, {{fake::Cell::of(1)}}};
  odbc.results["q"] = {one, one};
  PreparedStatement* statement = prepare("q");
  Cells cells(1);
  Cells two(2);
  bool more = false;
  ASSERT_EQ(statement->execute(error), 0);
  EXPECT_EQ(statement->nextRow(cells, error), -1);
  EXPECT_EQ(said(), "dbaccess|no data");
  EXPECT_EQ(statement->nextRow(error), nullptr);
  for (const bool expected : {true, true, false}) {
    EXPECT_EQ(statement->nextResultSet(more, error), 0);
    EXPECT_EQ(more, expected);
    if (!more) break;
    EXPECT_EQ(statement->hasMoreData(more, error), 0);
    EXPECT_TRUE(more);
    EXPECT_EQ(statement->nextRow(two, error), -1);
    EXPECT_EQ(said(), "dbaccess|invalid column count");
    EXPECT_EQ(statement->nextRow(cells, error), 0);
    EXPECT_EQ(statement->hasMoreData(more, error), 0);
    EXPECT_FALSE(more);
  }
  EXPECT_EQ(statement->nextCount(*std::make_unique<int>(), error), -1);
  EXPECT_EQ(said(), "dbaccess|not implemented");
  odbc.answer("SQLFetch", failing());
  EXPECT_EQ(statement->hasMoreData(more, error), -1);
  odbc.answer("SQLMoreResults", failing());
  EXPECT_EQ(statement->nextResultSet(more, error), -1);
  EXPECT_EQ(said(), "odbc|[-1][42000]no");
}

}  // namespace
}  // namespace KORVEX::Zel::DB
