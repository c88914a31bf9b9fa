// Each operation's ODBC calls are counted once, and then made to fail one by one: what it answers,
// and what it logs. That it fails well with every other answer is looked for by zel_verify.

#include <functional>

#include "tests/driver/driver_fixture.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

// An operation on a connection that `prepare` has brought into its state.
struct FaultCase {
  const char* name;
  std::function<void(Connection&)> prepare;
  std::function<ResultCode(Connection&)> run;
  const char* lines;  // that its failures may log
  // What the failure of each of its ODBC calls leads to, in the order of the calls: "function
  // result", and the number of the line that is logged, if any.
  const char* outcomes;
};

const std::vector<Parameter>& row() {
  static const std::vector<Parameter> values = {int32Parameter(1), stringParameter("a")};
  return values;
}

void nothing(Connection&) {}

ResultSet* query(Connection& connection) {
  ResultSet* rows = nullptr;
  connection.executeQuery("q", {}, 0, rows);
  return rows;
}

ResultCode createBatch(Connection& connection) {
  return connection.createBatch("i ?,?");
}

void batch(Connection& connection) {
  createBatch(connection);
  connection.addToBatch(row());
}

ResultCode update(Connection& connection) {
  int count = 0;
  return connection.executeUpdate("u ?,?", row(), count);
}

ResultSet* resultSet(Connection& connection) {
  ResultSet* rows = nullptr;
  connection.getResultSet(rows);
  return rows;
}

ResultCode readRow(Connection& connection) {
  ResultSet* rows = resultSet(connection);
  bool more = false;
  Row* read = nullptr;
  if (rows->next(more) != kSuccess) return kFailure;
  const ResultCode result = rows->getData(RowDescriptor({kInteger, kString}), read);
  delete read;
  return result;
}

ResultCode executeBatch(Connection& connection) {
  std::vector<int> status;
  return connection.executeBatch(status);
}

ResultCode countColumns(Connection& connection) {
  int count = 0;
  return resultSet(connection)->getNumColumns(count);
}

ResultCode nameOfColumn(Connection& connection) {
  std::string name;
  return resultSet(connection)->getColumnName(1, name);
}

ResultCode typeOfColumn(Connection& connection) {
  unsigned type = 0;
  return resultSet(connection)->getColumnType(1, type);
}

ResultCode nextResultSet(Connection& connection) {
  bool more = false;
  return connection.nextResultSet(more);
}

ResultCode tableNames(Connection& connection) {
  Strings names;
  return connection.getTableNames(names);
}

const FaultCase kFaultCases[] = {
    {"open", &Connection::close, &Connection::open,
     "801000-3_ERROR_OPENING_DB_CONNECTION|[42000][7][no]|",
     "SQLFreeHandle 1, SQLAllocHandle 3 801000, SQLSetConnectAttr 3 801000, "
     "SQLSetConnectAttr 3 801000, SQLConnect 3 801000, SQLGetInfo 3 801000"},
    {"commit", nothing, &Connection::commit,
     "801002-3_ERROR_COMMITTING_TRANSACTION|[42000][7][no]|", "SQLEndTran 3 801002"},
    {"rollback", nothing, &Connection::rollback,
     "801003-3_ERROR_ROLLING_BACK_TRANSACTION|[42000][7][no]|", "SQLEndTran 3 801003"},
    {"close", query, &Connection::close, "", "SQLEndTran 1, SQLFreeHandle 1, SQLDisconnect 1"},
    {"executeUpdate", nothing, update,
     "801004-3_ERROR_CREATING_STATEMENT|u ?,?|[42000][7][no]\n"
     "801016-3_ERROR_EXECUTING_STATEMENT|u ?,?|[42000][7][no]",
     "SQLAllocHandle 3 801004, SQLFreeStmt 1, SQLFreeStmt 1, SQLFreeStmt 1, SQLPrepare 3 801004, "
     "SQLNumParams 3 801004, SQLBindParameter 3 801016, SQLBindParameter 3 801016, "
     "SQLExecute 3 801016, SQLRowCount 3 801016"},
    {"createBatch", nothing, createBatch, "801004-3_ERROR_CREATING_STATEMENT|i ?,?|[42000][7][no]",
     "SQLAllocHandle 3 801004, SQLFreeStmt 1, SQLFreeStmt 1, SQLFreeStmt 1, SQLPrepare 3 801004, "
     "SQLNumParams 3 801004, SQLDescribeParam 3 801004, SQLDescribeParam 3 801004"},
    {"executeBatch", batch, executeBatch, "801021-3_ERROR_EXECUTING_BATCH|i ?,?|[42000][7][no]",
     "SQLSetStmtAttr 1, SQLSetStmtAttr 1, SQLSetStmtAttr 3 801021, SQLBindParameter 3 801021, "
     "SQLBindParameter 3 801021, SQLExecute 3 801021"},
    {"read a row", query, readRow, "801012-3_ERROR_ITERATING_THROUGH_RESULT_SET|[42000][7][no]|",
     "SQLNumResultCols 3 801012, SQLDescribeCol 3 801012, SQLColAttribute 3 801012, "
     "SQLColAttribute 3 801012, SQLDescribeCol 3 801012, SQLColAttribute 3 801012, "
     "SQLColAttribute 3 801012, SQLFetch 3 801012, SQLGetData 3 801012, SQLGetData 3 801012"},
    {"getNumColumns", query, countColumns,
     "801007-3_ERROR_GETTING_RESULT_SET_COLUMN_COUNT|[42000][7][no]|", "SQLNumResultCols 3 801007"},
    {"getColumnName", query, nameOfColumn,
     "801008-3_ERROR_GETTING_RESULT_SET_COLUMN_NAME|[42000][7][no]|", "SQLColAttribute 3 801008"},
    {"getColumnType", query, typeOfColumn,
     "801009-3_ERROR_GETTING_RESULT_SET_COLUMN_TYPE|[42000][7][no]|", "SQLColAttribute 3 801009"},
    {"nextResultSet", query, nextResultSet, "801018-3_ERROR_GETTING_RESULT_SET|q|[42000][7][no]",
     "SQLFreeStmt 1, SQLMoreResults 3 801018"},
    {"getTableNames", nothing, tableNames, "801005-3_ERROR_GETTING_TABLE_LIST|[42000][7][no]|",
     "SQLAllocHandle 3 801005, SQLTables 3 801005, SQLNumResultCols 3 801005, "
     "SQLDescribeCol 3 801005, SQLColAttribute 3 801005, SQLColAttribute 3 801005, "
     "SQLFetch 3 801005, SQLFreeHandle 1"},
};

class FaultTest : public DriverFixture {
 protected:
  // Runs the operation with its `call`-th call failing; gives the outcome as the table has it, or
  // nothing when it makes fewer calls.
  std::string outcomeOf(const FaultCase& c, std::size_t call) {
    odbc.reset();
    odbc.results["q"] = {
        {{{"n", SQL_INTEGER, 10}, {"s", SQL_VARCHAR, 9}}, {{fake::Cell::of(1), "text"}}}};
    odbc.results["SQLTables"] = {{{{"TABLE_CAT", SQL_VARCHAR, 9}}, {}}};
    open();
    c.prepare(*connection);
    odbc.takeLog();
    log.take();
    odbc.fail("", static_cast<int>(call), failing());
    const ResultCode result = c.run(*connection);
    const Strings calls = odbc.takeLog();
    const Strings lines = log.take();
    close();
    EXPECT_EQ(odbc.liveHandles(), Strings()) << c.name << call;
    if (calls.size() < call) {
      EXPECT_EQ(result, kSuccess) << c.name;
      return "";
    }
    const std::string& failed = calls[call - 1];
    std::string outcome = failed.substr(0, failed.find('(')) + ' ' + std::to_string(result);
    for (const std::string& line : lines) {
      outcome += ' ' + line.substr(0, line.find('-'));
      EXPECT_NE(std::string(c.lines).find(line), std::string::npos) << line;
    }
    return outcome;
  }
};

TEST_F(FaultTest, EveryCallOfEveryOperationFails) {
  for (const FaultCase& c : kFaultCases) {
    std::string outcomes = outcomeOf(c, 1);
    std::string next;
    for (std::size_t call = 2; !(next = outcomeOf(c, call)).empty(); ++call) {
      outcomes += ", " + next;
    }
    EXPECT_EQ(outcomes, c.outcomes) << c.name;
  }
}

}  // namespace
}  // namespace KORVEX::Zel::DB
