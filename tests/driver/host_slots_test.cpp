// The slots that the connection does not use itself: the typed readers and binders, a statement
// without its handle, and a result set whose columns somebody else reads.

#include <algorithm>
#include <cstdlib>

#include "driver/binding_table.h"
#include "driver/date_time_column.h"
#include "driver/odbc_connection.h"
#include "driver/odbc_result_set.h"
#include "tests/driver/driver_fixture.h"
#include "tests/support/cell_text.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

constexpr unsigned kMoney2 = kMoney1 + 1;

class HostSlotsTest : public DriverFixture {
 protected:
  void TearDown() override {
    statement.reset();
    DriverFixture::TearDown();
  }

  // A statement of its own beside the connection's.
  void makeStatement(const char* sql, bool batch = false) {
    auto& own = static_cast<OdbcConnection&>(*connection);
    stmt = own.getDbc()->CreateStmt();
    ASSERT_EQ(stmt->SetSql(sql, batch), ODBC::Odbc::e_Ok);
    statement = std::make_unique<OdbcStatement>(own, stmt, sql);
    odbc.takeLog();
  }

  ODBC::OdbcStmt* stmt = nullptr;
  std::unique_ptr<OdbcStatement> statement;
};

TEST_F(HostSlotsTest, EachReaderReadsItsType) {
  using R = ResultSet;
  struct Case {
    SQLSMALLINT sqlType;
    fake::Cell cell;
    unsigned type;
    ResultCode (R::*read)(int, DataValue&);
    ResultCode (R::*readTyped)(int, unsigned, DataValue&);
    const char* expected;
  };
  const fake::Cell kStamp = fake::Cell::of(TIMESTAMP_STRUCT{2000, 2, 29, 12, 34, 56, 999999999});
  const Case kCases[] = {
      {SQL_SMALLINT, fake::Cell::of(short{-5}), kInt16, &R::getColumnInt16, nullptr, "-5"},
      {SQL_INTEGER, fake::Cell::of(-70000), kInteger, &R::getColumnInt32, nullptr, "-70000"},
      {SQL_BIGINT, "1099511627776", kLong, &R::getColumnInt64, nullptr, "1099511627776"},
      {SQL_DOUBLE, fake::Cell::of(0.5), kFloat, &R::getColumnDouble, nullptr, "0.500000"},
      {SQL_TYPE_TIMESTAMP, kStamp, kDate, &R::getColumnDate, nullptr, "951827696"},
      {SQL_VARCHAR, "abc", kString, &R::getColumnString, nullptr, "abc"},
      {SQL_DECIMAL, "1.5", kMoney2, nullptr, &R::getColumnMoney, "150"},
      {SQL_TYPE_TIMESTAMP, kStamp, kTimestamp, &R::getColumnTimestamp, nullptr, "951827696999"},
      {SQL_BIT, "\x01", kBoolean, &R::getColumnBoolean, nullptr, "1"},
      {SQL_BIGINT, "-1", kInterval, &R::getColumnInterval, nullptr, "-1"},
      {SQL_TYPE_TIMESTAMP, kStamp, kBigDateTime, &R::getColumnBigDateTime, nullptr,
       "951827696999999"},
      {SQL_TYPE_TIMESTAMP, kStamp, kTime, &R::getColumnTime, nullptr, "45296"},
      {SQL_DECIMAL, "1.5", createFixedDecimal(5, 1), nullptr, &R::getColumnFixedDecimal,
       "15 scale 1"},
      {SQL_VARBINARY, "xyz", kBinary, &R::getColumnBinary, nullptr, "xyz"},
  };
  open();
  fake::Result result = {{}, {{}}};
  for (const Case& c : kCases) {
    result.columns.push_back(column(c.sqlType, 30, 2));
    result.rows[0].push_back(c.cell);
  }
  odbc.results["q"] = {result};
  ResultSet* rows = nullptr;
  bool more = false;
  ASSERT_EQ(connection->executeQuery("q", {}, 0, rows), kSuccess);
  ASSERT_EQ(rows->next(more), kSuccess);
  int index = 0;
  for (const Case& c : kCases) {
    DataValue cell;
    cell.setNull();
    ++index;
    EXPECT_EQ(c.read != nullptr ? (rows->*c.read)(index, cell)
                                : (rows->*c.readTyped)(index, c.type, cell),
              kSuccess);
    EXPECT_EQ(cellText(cell, c.type), c.expected) << index;
    if (c.type == kString) std::free(const_cast<char*>(cell.string));
    if (c.type == kBinary) std::free(const_cast<unsigned char*>(cell.binary.data));
  }
}

TEST_F(HostSlotsTest, EachBinderBindsItsType) {
  using S = Statement;
  struct Case {
    ResultCode (S::*bind)(void*, const DataValue&);
    ResultCode (S::*bindTyped)(void*, unsigned, const DataValue&);
    unsigned type;
    const char* binding;  // C type, SQL type, column size, digits, the buffer and its length
  };
  const Case kCases[] = {
      {&S::bindParameterInt16, nullptr, 0, "-15,5,5,0,ptr,24,ptr"},
      {&S::bindParameterInt32, nullptr, 0, "-16,4,10,0,ptr,24,ptr"},
      {&S::bindParameterInt64, nullptr, 0, "-25,-5,19,0,ptr,0,ptr"},
      {&S::bindParameterDouble, nullptr, 0, "8,8,15,0,ptr,24,ptr"},
      {&S::bindParameterDate, nullptr, 0, "93,93,19,0,ptr,16,ptr"},
      {&S::bindParameterString, nullptr, 0, "1,12,0,0,ptr,0,ptr"},
      {nullptr, &S::bindParameterMoney, kMoney2, "1,3,19,2,ptr,21,ptr"},
      {&S::bindParameterTimestamp, nullptr, 0, "93,93,23,3,ptr,16,ptr"},
      {&S::bindParameterBoolean, nullptr, 0, "-7,-6,3,0,ptr,24,ptr"},
      {&S::bindParameterInterval, nullptr, 0, "-25,-5,19,0,ptr,0,ptr"},
      {&S::bindParameterBigDateTime, nullptr, 0, "93,93,26,6,ptr,16,ptr"},
      {&S::bindParameterTime, nullptr, 0, "92,92,6,0,ptr,6,ptr"},
      {nullptr, &S::bindParameterFixedDecimal, createFixedDecimal(9, 3), "1,3,9,3,ptr,11,ptr"},
      {&S::bindParameterBinary, nullptr, 0, "-2,-3,0,0,ptr,0,ptr"},
  };
  open();
  for (const Case& c : kCases) {
    makeStatement("u ?");
    const DataValue zero;
    int rows = 0;
    S& slots = *statement;
    EXPECT_EQ(c.bind != nullptr ? (slots.*c.bind)(stmt->GetParam(1), zero)
                                : (slots.*c.bindTyped)(stmt->GetParam(1), c.type, zero),
              kSuccess);
    EXPECT_EQ(slots.executeUpdate({}, rows), kSuccess);
    EXPECT_EQ(odbc.takeLog().front(), std::string("SQLBindParameter(1,1,") + c.binding + ")");
  }
  EXPECT_EQ(statement->bindParameterMoney(stmt->GetParam(1), kUnknown, {}), kFailure);
  EXPECT_EQ(log.take(), (Strings{"801017-3_ERROR_BINDING_PARAMETERS|u ?|"}));
}

TEST_F(HostSlotsTest, TheTextOfAStatementIsFixedWhenItIsMade) {
  open();
  makeStatement("u");
  int rows = 0;
  ResultSet* result = nullptr;
  EXPECT_EQ(statement->executeUpdate("other", {}, rows), kSuccess);
  EXPECT_EQ(statement->executeQuery("other", {}, 0, result), kSuccess);
  EXPECT_EQ(statement->createBatch("other"), kSuccess);
  for (const auto& execution : odbc.executions) EXPECT_EQ(execution.sql, "u");
  EXPECT_EQ(odbc.executions.size(), 2u);
  odbc.answer("SQLExecute", failing());
  EXPECT_EQ(statement->executeUpdate({}, rows), kFailure);
  EXPECT_EQ(lastErrors(), "");  // statements tell their failures to the log alone
}

TEST_F(HostSlotsTest, ClearingABatchPreparesItsOwnTextAsASingleOne) {
  open();
  makeStatement("i ?", true);
  ASSERT_EQ(statement->addToBatch({int32Parameter(1)}), kSuccess);
  EXPECT_EQ(statement->clearBatch(), kSuccess);
  const Strings calls = odbc.takeLog();
  EXPECT_EQ(std::ranges::count(calls, "SQLPrepare(\"i ?\")"), 1);
  EXPECT_EQ(std::ranges::count(calls, "SQLDescribeParam(1)"), 0);
  std::vector<int> status = {5};
  EXPECT_EQ(statement->executeBatch(status), kSuccess);
  EXPECT_EQ(status, std::vector<int>());
  odbc.answer("SQLPrepare", failing());
  EXPECT_EQ(statement->clearBatch(), kFailure);
  EXPECT_EQ(log.take(),
            (Strings{std::string("801019-3_ERROR_CLEARING_BATCH|") + kDiagnostic + '|'}));
}

TEST_F(HostSlotsTest, AClosedStatementSaysSo) {
  open();
  makeStatement("u ?");
  int rows = 0;
  bool more = false;
  ResultSet* result = nullptr;
  std::vector<int> status;
  EXPECT_EQ(statement->close(), kSuccess);
  EXPECT_EQ(statement->close(), kSuccess);
  EXPECT_EQ(statement->bindParameters({}), kSuccess);
  EXPECT_EQ(log.take(), Strings());
  EXPECT_EQ(statement->executeQuery({}, 0, result), kFailure);
  EXPECT_EQ(statement->executeUpdate({}, rows), kFailure);
  EXPECT_EQ(statement->getResultSet(result), kFailure);
  EXPECT_EQ(statement->nextResultSet(more), kFailure);
  EXPECT_EQ(statement->clearBatch(), kFailure);
  EXPECT_EQ(statement->addToBatch({}), kFailure);
  EXPECT_EQ(statement->executeBatch(status), kFailure);
  EXPECT_EQ(
      log.take(),
      (Strings{"801016-3_ERROR_EXECUTING_STATEMENT|u ?|", "801016-3_ERROR_EXECUTING_STATEMENT|u ?|",
               "801018-3_ERROR_GETTING_RESULT_SET|u ?|", "801018-3_ERROR_GETTING_RESULT_SET|u ?|",
               "801019-3_ERROR_CLEARING_BATCH||", "801020-3_ERROR_ADDING_TO_BATCH|u ?|",
               "801021-3_ERROR_EXECUTING_BATCH|u ?|"}));
}

// Gives every column the number of its place.
class NumberingResultSet final : public OdbcResultSet {
 public:
  using OdbcResultSet::OdbcResultSet;
  ResultCode getColumn(int index, unsigned int, DataValue& value) override {
    EXPECT_TRUE(value.isNull());
    value.int32 = index;
    value.null = 0;
    return kSuccess;
  }
};

TEST_F(HostSlotsTest, RowsAreReadWithAReplacedGetColumn) {
  open();
  odbc.results["q"] = {
      {{column(SQL_INTEGER), column(SQL_INTEGER)}, {{fake::Cell::of(70), fake::Cell::of(80)}}}};
  makeStatement("q");
  ResultSet* plain = nullptr;
  bool more = false;
  ASSERT_EQ(statement->executeQuery({}, 0, plain), kSuccess);
  ASSERT_EQ(plain->next(more), kSuccess);
  NumberingResultSet rows(*statement);
  Row* row = nullptr;
  ASSERT_EQ(rows.getData(RowDescriptor({kInteger, kInteger, kInteger}), row), kSuccess);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(row->getColumnValue(static_cast<std::size_t>(i)).int32, i + 1);
  delete row;
}

TEST(SafeTimeAtoiTest, TellsZeroFromWhatIsNoNumber) {
  struct Case {
    const char* text;
    int value;
  };
  const Case kCases[] = {{"00", 0},  {"0", 0},   {"07", 7},  {"59", 59}, {"5x", 5},
                         {"0x", -1}, {"xx", -1}, {":0", -1}, {"", -1}};
  for (const Case& c : kCases) EXPECT_EQ(safeTimeAtoi(c.text), c.value) << c.text;
}

TEST(ConvertTimeTest, SaysWhatItCannotConvert) {
  struct Case {
    unsigned type;
    long count;
    const char* said;
  };
  const Case kCases[] = {{kInteger, 0, "Invalid data for converting as time\n"},
                         {kDate, 9223372036854775807L, "Error converting value as date\n"},
                         {kDate, 971890963200L, "Error converting value as date\n"},  // year 32768
                         {kDate, 971890963199L, ""}};
  for (const Case& c : kCases) {
    DataValue value;
    value.int64 = c.count;
    TIMESTAMP_STRUCT timestamp{};
    testing::internal::CaptureStdout();
    const bool converted = convertTime(c.type, value, timestamp);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.said);
    EXPECT_EQ(converted, *c.said == '\0');
  }
}

}  // namespace
}  // namespace KORVEX::Zel::DB
