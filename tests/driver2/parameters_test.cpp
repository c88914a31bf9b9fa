#include <chrono>
#include <future>
#include <mutex>

#include "datatypes/data_types.h"
#include "driver2/prepared_statement2_odbc.h"
#include "tests/driver2/driver2_fixture.h"
#include "tests/support/packed_row.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

DataValue int64Cell(long value) {
  DataValue cell;
  cell.int64 = value;
  return cell;
}

DataValue stringCell(const char* text) {
  DataValue cell;
  cell.string = text;
  return cell;
}

DataValue nullCell() {
  DataValue cell;
  cell.setNull();
  return cell;
}

class ParametersTest : public Driver2Fixture {
 protected:
  const std::vector<fake::BoundValue>& lastRow() { return odbc.executions.back().rows.at(0); }

  // The C type, SQL type, size, digits and buffer length of each SQLBindParameter.
  Strings bindings() {
    Strings result;
    for (const std::string& line : odbc.takeLog()) {
      if (line.starts_with("SQLBindParameter")) result.push_back(line);
    }
    return result;
  }
};

TEST_F(ParametersTest, BindsEveryTypeInBothFormsAndModes) {
  struct Case {
    const char* name;
    unsigned type;
    std::string packed;
    SQLSMALLINT cType;
    std::string bytes;
    SQLLEN length;
  };
  const TIMESTAMP_STRUCT kBefore = {1969, 12, 31, 23, 59, 59, 999000000};
  const TIMESTAMP_STRUCT kBeforeMicros = {1969, 12, 31, 23, 59, 59, 999999000};
  const TIMESTAMP_STRUCT kLeapDay = {2000, 2, 29, 0, 0, 0, 0};
  const TIME_STRUCT kLate = {23, 59, 59};
  const FixedDecimalValue kDecimal = {~0UL, ~0UL - 4, 3, 10};
  // 34 nines, three of them behind the point.
  const FixedDecimalValue kLongest = {0x0001ED09BEAD87C0, 0x378D8E63FFFFFFFF, 3, 34};
  const Case kCases[] = {
      {"integer", kInteger, rawBytes(-70000), SQL_C_SLONG, rawBytes(-70000), 0},
      {"long", kLong, rawBytes(1L << 40), SQL_C_SBIGINT, rawBytes(1L << 40), 0},
      {"float", kFloat, rawBytes(0.1), SQL_C_DOUBLE, rawBytes(0.1), 0},
      {"boolean", kBoolean, "\x01", SQL_C_BIT, "\x01", 0},
      {"interval", kInterval, rawBytes(-2L), SQL_C_SBIGINT, rawBytes(-2L), 0},
      {"date", kDate, rawBytes(951782400L), SQL_C_TYPE_TIMESTAMP, rawBytes(kLeapDay), 16},
      {"timestamp", kTimestamp, rawBytes(-1L), SQL_C_TYPE_TIMESTAMP, rawBytes(kBefore), 16},
      {"bigdatetime", kBigDateTime, rawBytes(-1L), SQL_C_TYPE_TIMESTAMP, rawBytes(kBeforeMicros),
       16},
      {"time", kTime, rawBytes(86399L), SQL_C_TYPE_TIME, rawBytes(kLate), 6},
      {"string", kString, std::string("h\xC3\xA9\0", 4), SQL_C_CHAR, "h\xC3\xA9", 3},
      {"empty string", kString, std::string(1, '\0'), SQL_C_CHAR, "", 0},
      {"money", kMoney, rawBytes(-12345L), SQL_C_CHAR, "-1.2345", 7},
      {"money(2)", 12, rawBytes(5L), SQL_C_CHAR, "0.05", 4},
      {"decimal", createFixedDecimal(10, 3), rawBytes(kDecimal), SQL_C_CHAR, "-0.005", 6},
      {"longest decimal", createFixedDecimal(34, 3), rawBytes(kLongest), SQL_C_CHAR,
       std::string(31, '9') + ".999", 35},
      {"binary", kBinary, std::string("\0\0\0\3a\0b", 7), SQL_C_BINARY, std::string("a\0b", 3), 3},
      {"empty binary", kBinary, std::string(4, '\0'), SQL_C_BINARY, "", 0},
  };
  for (const bool safe : {false, true}) {
    open(safe);
    odbc.params["u ?"] = {{SQL_VARCHAR, 77, 5, SQL_NULLABLE}};
    PreparedStatement* statement = prepare("u ?");
    ASSERT_NE(statement, nullptr);
    for (const Case& c : kCases) {
      odbc.takeLog();
      std::vector<int> columns = {1};
      Types types = {c.type};
      ASSERT_EQ(statement->setBindings(columns, types.data(), error), 0);
      const PackedRow packed({"?", c.packed});
      ASSERT_EQ(statement->execute(packed.get(), error), 0) << c.name << error->getErrorString();
      EXPECT_EQ(lastRow().at(0).cType, c.cType) << c.name;
      EXPECT_EQ(lastRow().at(0).bytes, c.bytes) << c.name;
      EXPECT_EQ(lastRow().at(0).indicator, c.length) << c.name;
      const std::string cType = std::to_string(c.cType);
      EXPECT_EQ(bindings(), (Strings{"SQLBindParameter(1,1," + cType + ",12,77,5,ptr," +
                                     std::to_string(c.length) + ",ptr)"}))
          << c.name;
      EXPECT_EQ(statement->execute(PackedRow({"?", std::nullopt}).get(), error), 0) << c.name;
      EXPECT_EQ(bindings(), (Strings{"SQLBindParameter(1,1," + cType + ",12,1,5,null,0,ptr)"}));
      Cells cells(1);
      std::string copy = c.packed;
      unpackValue(c.type, reinterpret_cast<unsigned char*>(copy.data()), cells[0]);
      ASSERT_EQ(statement->execute(cells, types, error), 0) << c.name << error->getErrorString();
      EXPECT_EQ(lastRow().at(0).bytes, c.bytes) << c.name;
    }
    close();
  }
}

TEST_F(ParametersTest, OneIndicatorServesAllUnlessSafe) {
  for (const bool safe : {false, true}) {
    open(safe);
    PreparedStatement* statement = prepare("u ?,?,?");
    std::vector<int> columns = {0, 1, 2};
    Types types = {kString, kInteger, kString};
    ASSERT_EQ(statement->setBindings(columns, types.data(), error), 0);
    const std::string text("abc\0", 4);
    const std::string number = rawBytes(5);
    EXPECT_EQ(statement->execute(PackedRow({text, number, std::nullopt}).get(), error), 0);
    EXPECT_EQ(lastRow()[0].isNull(), !safe);
    EXPECT_EQ(lastRow()[1].isNull(), !safe);
    EXPECT_TRUE(lastRow()[2].isNull());
    EXPECT_EQ(statement->execute(PackedRow({text, std::nullopt, text}).get(), error), 0);
    EXPECT_EQ(lastRow()[0].bytes, "abc");
    EXPECT_EQ(lastRow()[1].isNull(), safe);
    Cells cells = {stringCell("ab"), nullCell(), stringCell("")};
    EXPECT_EQ(statement->execute(cells, types, error), 0);
    EXPECT_EQ(lastRow()[0].bytes, safe ? "ab" : "");
    EXPECT_EQ(lastRow()[1].isNull(), safe);
    close();
  }
}

TEST_F(ParametersTest, SixteenBitIntegersAreBoundOnlySafely) {
  DataValue value;
  value.int16 = -7;
  for (const bool safe : {false, true}) {
    open(safe);
    PreparedStatement* statement = prepare("u ?");
    Cells cells = {value};
    Types types = {kInt16};
    statement->execute(cells, types, error);
    EXPECT_EQ(bindings().back().substr(0, 24),
              safe ? "SQLBindParameter(1,1,-15" : "SQLBindParameter(1,1,0,1");
    close();
  }
}

TEST_F(ParametersTest, RefusesWhatDoesNotFit) {
  open(false);
  PreparedStatement* none = prepare("u");
  PreparedStatement* two = prepare("u ?,?");
  std::vector<int> columns = {0};
  Types types = {kInteger, kDate};
  EXPECT_EQ(two->setBindings(columns, types.data(), error), -1);
  EXPECT_EQ(said(), "dbaccess|Invalid number of columns");
  EXPECT_EQ(two->execute(PackedRow({}).get(), error), -1);
  EXPECT_EQ(said(), "dbaccess|No param binding in effect");
  EXPECT_EQ(two->execute(error), -1);
  EXPECT_EQ(said(), "dbaccess|unbound parameter(s)");
  EXPECT_EQ(two->execute(static_cast<const RowInternal2**>(nullptr), error), -1);
  EXPECT_EQ(said(), "dbaccess|not implemented");
  Cells one = {int64Cell(1)};
  EXPECT_EQ(two->execute(one, types, error), -1);
  EXPECT_EQ(said(), "dbaccess|param count mismatch");
  EXPECT_EQ(none->execute(error), 0);
  columns = {0, 1};
  ASSERT_EQ(two->setBindings(columns, types.data(), error), 0);
  const std::string number = rawBytes(1L);
  const std::string lastYear = rawBytes(971890963199L);  // of 16 bits: its last second
  const std::string tooFar = rawBytes(971890963200L);
  EXPECT_EQ(two->execute(PackedRow({number, lastYear}).get(), error), 0);
  EXPECT_EQ(two->execute(PackedRow({number, tooFar}).get(), error), -1);
  EXPECT_EQ(said(), "dbaccess|error converting date");
  EXPECT_EQ(two->execute(PackedRow({number, number}).get(), error), -1);
  EXPECT_EQ(said(), "dbaccess|No param binding in effect");  // the failed binding has closed it
  odbc.results["q"] = {{{{"c", SQL_INTEGER, 10}}, {}}};
  EXPECT_EQ(prepare("q", {kInteger, kInteger}), nullptr);
  EXPECT_EQ(said(), "dbaccess|specified column count does not match query");
  EXPECT_NE(prepare("q", {kInteger}), nullptr);
  EXPECT_NE(prepare("u", {kInteger}), nullptr);  // without columns types do not matter
}

TEST_F(ParametersTest, ExecutingFromValuesClosesWhatWasBoundBefore) {
  open(false);
  PreparedStatement* statement = prepare("u ?");
  const Strings kClosing = {"SQLFreeStmt(0)", "SQLFreeStmt(2)", "SQLFreeStmt(3)"};
  Cells cells = {int64Cell(1)};
  Types types = {kLong};
  odbc.takeLog();
  EXPECT_EQ(statement->execute(cells, types, error), 0);
  EXPECT_TRUE(odbc.takeLog().front().starts_with("SQLBindParameter(1,"));
  odbc.answer("SQLExecute", failing());
  EXPECT_EQ(statement->execute(cells, types, error), -1);
  EXPECT_EQ(said(), "odbc|[-1][42000]no");
  Strings calls = odbc.takeLog();
  ASSERT_EQ(calls.size(), 5u);
  EXPECT_EQ(Strings(calls.begin(), calls.begin() + 3), kClosing);
  odbc.answer("SQLFreeStmt", failing());  // bound, although the execution has failed
  EXPECT_EQ(statement->execute(cells, types, error), -1);
  EXPECT_EQ(odbc.takeLog(), (Strings{"SQLFreeStmt(0)"}));
  EXPECT_EQ(statement->execute(cells, types, error), 0);
  odbc.takeLog();
  odbc.answer("SQLBindParameter", failing());
  EXPECT_EQ(statement->execute(cells, types, error), -1);
  calls = odbc.takeLog();
  ASSERT_EQ(calls.size(), 7u);
  EXPECT_EQ(Strings(calls.begin() + 4, calls.end()), kClosing);
  EXPECT_EQ(statement->execute(error), -1);
  EXPECT_EQ(said(), "dbaccess|unbound parameter(s)");
}

TEST_F(ParametersTest, ExecutionsFromValuesWaitForEachOther) {
  using Statement = ODBC::PreparedStatement2Odbc;
  open(false);
  PreparedStatement* statement = prepare("u ?");
  Cells cells = {int64Cell(1)};
  Types types = {kLong};
  std::unique_lock other(Statement::m_mx);
  auto waiting =
      std::async(std::launch::async, [&] { return statement->execute(cells, types, error); });
  EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  other.unlock();
  EXPECT_EQ(waiting.get(), 0);
}

TEST_F(ParametersTest, AnOpenCursorIsClosedOnlySafely) {
  odbc.results["q"] = {{{{"c", SQL_INTEGER, 10}}, {{fake::Cell::of(1)}}}};
  for (const bool safe : {false, true}) {
    open(safe);
    PreparedStatement* statement = prepare("q");
    EXPECT_EQ(statement->execute(error), 0);
    odbc.takeLog();
    statement->execute(error);
    EXPECT_EQ(odbc.takeLog().front(), safe ? "SQLFreeStmt(0)" : "SQLExecute()");
    close();
  }
}

}  // namespace
}  // namespace KORVEX::Zel::DB
