#include "tests/driver/driver_fixture.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

class OdbcStatementTest : public DriverFixture {
 protected:
  // The SQLBindParameter lines of the calls so far.
  Strings bindings() {
    Strings lines;
    for (std::string& line : odbc.takeLog()) {
      if (line.starts_with("SQLBindParameter")) lines.push_back(std::move(line));
    }
    return lines;
  }
};

template <typename Struct>
std::string raw(const Struct& value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

std::string timestamp(short year, unsigned short month, unsigned short day, unsigned short hour,
                      unsigned short minute, unsigned short second, unsigned fraction) {
  return raw(TIMESTAMP_STRUCT{year, month, day, hour, minute, second, fraction});
}

std::string timeOfDay(unsigned short hour, unsigned short minute, unsigned short second) {
  return raw(TIME_STRUCT{hour, minute, second});
}

// Of a negative or small decimal.
FixedDecimalValue decimal(int precision, int scale, long coefficient) {
  return {coefficient < 0 ? ~0UL : 0UL, static_cast<unsigned long>(coefficient),
          static_cast<unsigned char>(scale), static_cast<unsigned char>(precision)};
}

const unsigned char kBytes[] = {'a', 0, 'b'};

struct BindingCase {
  const char* name;
  Parameter parameter;
  const char* binding;  // C type, SQL type, column size, digits as SQLBindParameter is told them
  std::string bytes;
};

const std::vector<BindingCase>& bindingCases() {
  static const std::vector<BindingCase> cases = {
      {"int16", parameter(kInt16, &DataValue::int16, -7), "-15,5,5,0", raw(short{-7})},
      {"integer", int32Parameter(-70000), "-16,4,10,0", raw(-70000)},
      {"long", int64Parameter(kLong, 9223372036854775807L), "-25,-5,19,0",
       raw(9223372036854775807L)},
      {"float", parameter(kFloat, &DataValue::float64, 0.1), "8,8,15,0", raw(0.1)},
      {"date", int64Parameter(kDate, 951782400), "93,93,19,0", timestamp(2000, 2, 29, 0, 0, 0, 0)},
      {"string", stringParameter("h\xC3\xA9"), "1,12,3,0", "h\xC3\xA9"},
      {"empty string", stringParameter(""), "1,12,0,0", ""},
      {"string without text", stringParameter(nullptr), "1,12,0,0", ""},
      {"money", int64Parameter(kMoney, -12345), "1,3,19,4", "-1.2345"},
      {"money(4)", int64Parameter(14, 5), "1,3,19,4", "0.0005"},
      {"money(15)", int64Parameter(25, -9223372036854775807L - 1), "1,3,19,15",
       "-9223.372036854775808"},
      {"timestamp", int64Parameter(kTimestamp, -1), "93,93,23,3",
       timestamp(1969, 12, 31, 23, 59, 59, 999000000)},
      {"timestamp, floor", int64Parameter(kTimestamp, -1500), "93,93,23,3",
       timestamp(1969, 12, 31, 23, 59, 58, 500000000)},
      {"boolean", parameter(kBoolean, &DataValue::boolean, true), "-7,-6,3,0", "\x01"},
      {"interval", int64Parameter(kInterval, -2), "-25,-5,19,0", raw(-2L)},
      {"bigdatetime", int64Parameter(kBigDateTime, -1), "93,93,26,6",
       timestamp(1969, 12, 31, 23, 59, 59, 999999000)},
      {"binary", parameter(kBinary, &DataValue::binary, BinaryValue{kBytes, 3}), "-2,-3,3,0",
       std::string("a\0b", 3)},
      {"time", int64Parameter(kTime, 86399), "92,92,6,0", timeOfDay(23, 59, 59)},
      {"time past midnight", int64Parameter(kTime, 90000), "92,92,6,0", timeOfDay(1, 0, 0)},
      {"decimal(10,3)",
       parameter(createFixedDecimal(10, 3), &DataValue::decimal, decimal(10, 3, -5)), "1,3,10,3",
       "-0.005"},
      {"null integer", nullParameter(kInteger), "-16,4,10,0", ""},
      {"null string", nullParameter(kString), "1,12,0,0", ""},
      {"null money(2)", nullParameter(12), "1,3,19,2", ""},
      {"null bigdatetime", nullParameter(kBigDateTime), "93,93,26,6", ""},
  };
  return cases;
}

TEST_F(OdbcStatementTest, BindsEveryTypeAsASingleValue) {
  open();
  for (const BindingCase& c : bindingCases()) {
    int rows = 0;
    odbc.executions.clear();
    ASSERT_EQ(connection->executeUpdate("update ?", {c.parameter}, rows), kSuccess) << c.name;
    const Strings lines = bindings();
    ASSERT_EQ(lines.size(), 1u) << c.name;
    const std::string start = std::string("SQLBindParameter(1,1,") + c.binding + ",";
    EXPECT_EQ(lines[0].substr(0, start.size()), start) << c.name;
    const fake::BoundValue& bound = odbc.executions.at(0).rows.at(0).at(0);
    EXPECT_EQ(bound.bytes, c.bytes) << c.name;
    EXPECT_EQ(bound.isNull(), c.parameter.value.isNull()) << c.name;
  }
}

TEST_F(OdbcStatementTest, BindsEveryTypeInABatchBetweenNulls) {
  open();
  for (const BindingCase& c : bindingCases()) {
    odbc.executions.clear();
    ASSERT_EQ(connection->createBatch("insert ?"), kSuccess);
    for (const Parameter& row : {nullParameter(c.parameter.type), c.parameter,
                                 nullParameter(c.parameter.type), c.parameter}) {
      ASSERT_EQ(connection->addToBatch({row}), kSuccess) << c.name;
    }
    std::vector<int> status(9, 7);
    ASSERT_EQ(connection->executeBatch(status), kSuccess) << c.name;
    EXPECT_EQ(status, std::vector<int>(4, 0)) << c.name;
    const auto& rows = odbc.executions.at(0).rows;
    ASSERT_EQ(rows.size(), 4u) << c.name;
    for (const std::size_t row : {0u, 2u}) EXPECT_TRUE(rows[row][0].isNull()) << c.name;
    for (const std::size_t row : {1u, 3u}) {
      EXPECT_EQ(rows[row][0].bytes, c.bytes) << c.name;
      EXPECT_EQ(rows[row][0].isNull(), c.parameter.value.isNull()) << c.name;
    }
  }
}

TEST_F(OdbcStatementTest, BindsBigIntegersAsTextOnDemand) {
  open({{"WriteBigIntAsChar", "true"}});
  for (const unsigned type : {unsigned{kLong}, unsigned{kInterval}}) {
    int rows = 0;
    odbc.executions.clear();
    odbc.takeLog();
    ASSERT_EQ(
        connection->executeUpdate(
            "update ?,?", {int64Parameter(type, 9223372036854775807L), nullParameter(type)}, rows),
        kSuccess);
    for (const std::string& line : bindings()) {
      EXPECT_EQ(line.substr(line.find(',') + 1, 9), "1,1,-5,19") << line;
    }
    EXPECT_EQ(odbc.executions.at(0).rows.at(0).at(0).bytes, "9223372036854775807");
    EXPECT_TRUE(odbc.executions.at(0).rows.at(0).at(1).isNull());
  }
}

TEST_F(OdbcStatementTest, AnUnknownTypeFailsOnlyAtTheEnd) {
  open();
  int rows = 0;
  EXPECT_EQ(connection->executeUpdate("u ?,?", {parameter(kUnknown), int32Parameter(1)}, rows),
            kSuccess);
  EXPECT_EQ(connection->executeUpdate("u ?,?", {int32Parameter(1), parameter(kUnknown)}, rows),
            kFailure);
  EXPECT_EQ(connection->executeUpdate("u ?", {parameter(31)}, rows), kFailure);
  EXPECT_EQ(log.take(), Strings());
  EXPECT_EQ(connection->executeUpdate("u ?", {int32Parameter(1), int32Parameter(2)}, rows),
            kFailure);
  EXPECT_EQ(log.take(), (Strings{"801017-3_ERROR_BINDING_PARAMETERS|u ?|"}));
}

// Sent as NULL or shifted bytes a value of another kind would be lost without a word.
TEST_F(OdbcStatementTest, ARowThatFailsDoesNotShiftTheOthers) {
  struct Case {
    std::vector<Parameter> bad;
    Strings logged;
  };
  const Case kCases[] = {
      {{int32Parameter(2), parameter(kUnknown)}, {}},
      {{int64Parameter(kLong, 2), stringParameter("b")},
       {"801017-3_ERROR_BINDING_PARAMETERS|insert ?,?|a value differs in kind from the column's "
        "first row"}},
  };
  open();
  for (const Case& c : kCases) {
    ASSERT_EQ(connection->createBatch("insert ?,?"), kSuccess);
    EXPECT_EQ(connection->addToBatch({int32Parameter(1), stringParameter("a")}), kSuccess);
    EXPECT_EQ(connection->addToBatch(c.bad), kFailure);
    EXPECT_EQ(log.take(), c.logged);
    EXPECT_EQ(connection->addToBatch({int32Parameter(3), stringParameter("c")}), kSuccess);
    std::vector<int> status;
    odbc.paramStatus = {SQL_PARAM_SUCCESS, SQL_PARAM_ERROR};
    ASSERT_EQ(connection->executeBatch(status), kSuccess);
    EXPECT_EQ(status, (std::vector<int>{0, -1}));
    const auto& rows = odbc.executions.back().rows;
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1][0].as<int>(), 3);
    EXPECT_EQ(rows[1][1].bytes, "c");
  }
}

TEST_F(OdbcStatementTest, UpdateCountsAndUpdatesThatHitNoRow) {
  for (const bool safe : {false, true}) {
    open({{"SafeTransfer", safe ? "true" : "false"}});
    int rows = -5;
    odbc.results["update"] = {{{}, {}, 3}};
    EXPECT_EQ(connection->executeUpdate("update", {}, rows), kSuccess);
    EXPECT_EQ(rows, 3);
    odbc.answer("SQLExecute", {SQL_NO_DATA, {}});
    EXPECT_EQ(connection->executeUpdate("update", {}, rows), safe ? kSuccess : kFailure);
    EXPECT_EQ(rows, safe ? 0 : 3);
    const Strings failed = {"801016-3_ERROR_EXECUTING_STATEMENT|update|"};
    EXPECT_EQ(log.take(), safe ? Strings() : failed);
    close();
  }
}

TEST_F(OdbcStatementTest, AStatementThatCannotBeClosedIsLogged) {
  open();
  int rows = 0;
  ASSERT_EQ(connection->executeUpdate("u", {}, rows), kSuccess);
  odbc.answer("SQLFreeStmt", failing());
  EXPECT_EQ(connection->executeUpdate("v", {}, rows), kSuccess);
  EXPECT_EQ(log.take(),
            (Strings{std::string("801015-4_ERROR_CLOSING_STATEMENT|u|") + kDiagnostic}));
}

}  // namespace
}  // namespace KORVEX::Zel::DB
