// Each operation's ODBC calls are counted once, and then made to fail one by one.

#include <functional>

#include "tests/driver/driver_fixture.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

// An operation on a connection that `prepare` has brought into its state, and what the failure of
// each of its ODBC calls leads to, in the order of the calls: "function result keys...".
struct FaultCase {
  const char* name;
  std::function<void(Connection&)> prepare;
  std::function<ResultCode(Connection&)> run;
  Strings outcomes;
};

const std::vector<Parameter>& row() {
  static const std::vector<Parameter> values = {int32Parameter(1), stringParameter("a")};
  return values;
}

void nothing(Connection&) {}

void query(Connection& connection) {
  ResultSet* rows = nullptr;
  connection.executeQuery("q", {}, 0, rows);
}

void batch(Connection& connection) {
  connection.createBatch("i ?,?");
  connection.addToBatch(row());
}

ResultCode readRow(Connection& connection) {
  ResultSet* rows = nullptr;
  bool more = false;
  Row* read = nullptr;
  if (connection.getResultSet(rows) != kSuccess || rows->next(more) != kSuccess) return kFailure;
  const ResultCode result = rows->getData(RowDescriptor({kInteger, kString}), read);
  delete read;
  return result;
}

// The log keys without their texts.
std::string keysOf(const Strings& lines) {
  std::string keys;
  for (const std::string& line : lines) keys += ' ' + line.substr(0, line.find('-'));
  return keys;
}

const std::vector<FaultCase>& faultCases() {
  static const std::vector<FaultCase> cases = {
      {"commit", nothing, [](Connection& c) { return c.commit(); }, {"SQLEndTran 3 801002"}},
      {"close",
       query,
       [](Connection& c) { return c.close(); },
       {"SQLEndTran 1", "SQLFreeHandle 1", "SQLDisconnect 1"}},
      {"executeUpdate",
       nothing,
       [](Connection& c) {
         int count = 0;
         return c.executeUpdate("u ?,?", row(), count);
       },
       {"SQLAllocHandle 3 801004", "SQLFreeStmt 1", "SQLFreeStmt 1", "SQLFreeStmt 1",
        "SQLPrepare 3 801004", "SQLNumParams 3 801004", "SQLBindParameter 3 801016",
        "SQLBindParameter 3 801016", "SQLExecute 3 801016", "SQLRowCount 3 801016"}},
      {"createBatch",
       nothing,
       [](Connection& c) { return c.createBatch("i ?,?"); },
       {"SQLAllocHandle 3 801004", "SQLFreeStmt 1", "SQLFreeStmt 1", "SQLFreeStmt 1",
        "SQLPrepare 3 801004", "SQLNumParams 3 801004", "SQLDescribeParam 3 801004",
        "SQLDescribeParam 3 801004"}},
      {"executeBatch",
       batch,
       [](Connection& c) {
         std::vector<int> status;
         return c.executeBatch(status);
       },
       {"SQLSetStmtAttr 1", "SQLSetStmtAttr 1", "SQLSetStmtAttr 3 801021",
        "SQLBindParameter 3 801021", "SQLBindParameter 3 801021", "SQLExecute 3 801021"}},
      {"read a row",
       query,
       readRow,
       {"SQLNumResultCols 3 801012", "SQLDescribeCol 3 801012", "SQLColAttribute 3 801012",
        "SQLColAttribute 3 801012", "SQLDescribeCol 3 801012", "SQLColAttribute 3 801012",
        "SQLColAttribute 3 801012", "SQLFetch 3 801012", "SQLGetData 3 801012",
        "SQLGetData 3 801012"}},
      {"getTableNames",
       nothing,
       [](Connection& c) {
         Strings names;
         return c.getTableNames(names);
       },
       {"SQLAllocHandle 3 801005", "SQLTables 3 801005", "SQLNumResultCols 3 801005",
        "SQLDescribeCol 3 801005", "SQLColAttribute 3 801005", "SQLColAttribute 3 801005",
        "SQLFetch 3 801005", "SQLFreeHandle 1"}},
  };
  return cases;
}

class FaultTest : public DriverFixture {
 protected:
  void script() {
    odbc.reset();
    odbc.results["q"] = {
        {{{"n", SQL_INTEGER, 10}, {"s", SQL_VARCHAR, 9}}, {{fake::Cell::of(1), "text"}}}};
    fake::Result noTables;
    noTables.columns = {{"TABLE_CAT", SQL_VARCHAR, 9}};
    odbc.results["SQLTables"] = {noTables};
  }

  // The function of the `call`-th line of a log, without its arguments.
  static std::string functionOf(const std::string& line) { return line.substr(0, line.find('(')); }
};

TEST_F(FaultTest, EveryCallOfEveryOperationFails) {
  for (const FaultCase& c : faultCases()) {
    for (std::size_t call = 1; call <= c.outcomes.size() + 1; ++call) {
      script();
      open();
      c.prepare(*connection);
      odbc.takeLog();
      log.take();
      odbc.fail("", static_cast<int>(call), failing());
      const ResultCode result = c.run(*connection);
      const Strings calls = odbc.takeLog();
      const Strings lines = log.take();
      if (call > c.outcomes.size()) {
        EXPECT_EQ(result, kSuccess) << c.name;
        EXPECT_LT(calls.size(), call) << c.name << " makes more calls than are listed";
      } else {
        ASSERT_GE(calls.size(), call) << c.name << " makes fewer calls than are listed";
        EXPECT_EQ(functionOf(calls[call - 1]) + ' ' + std::to_string(result) + keysOf(lines),
                  c.outcomes[call - 1])
            << c.name << " call " << call;
      }
      close();
      EXPECT_EQ(odbc.liveHandles().empty(), true) << c.name << " call " << call;
    }
  }
}

}  // namespace
}  // namespace KORVEX::Zel::DB
