// Reading and sending through the real driver manager: what the driver says comes back whole, and
// no failure leaves a handle.

#include <functional>
#include <set>

#include "odbc/odbc_col.h"
#include "tests/odbc/odbc_fixture.h"

namespace odbc_test {
namespace {

// The first of the steps that fails.
Odbc::e_Status run(std::initializer_list<std::function<Odbc::e_Status()>> steps) {
  Odbc::e_Status status = Odbc::e_Ok;
  for (const auto& step : steps) {
    if (status == Odbc::e_Ok) status = step();
  }
  return status;
}

Odbc::e_Status read(OdbcStmt& stmt) {
  std::string name;
  int number = 0;
  return run({[&] { return stmt.SetSql("select ?", false); },
              [&] { return stmt.GetParam(1)->SetSqlType(SQL_INTEGER, 0, 0); },
              [&] { return stmt.GetParam(1)->SetData(7, false); }, [&] { return stmt.MaxRows(5); },
              [&] { return stmt.Execute(); }, [&] { return stmt.GetColumnCount(number); },
              [&] { return stmt.GetColumnName(1, name); },
              [&] { return stmt.GetColumnType(1, number); }, [&] { return stmt.Fetch(); },
              [&] { return stmt.Fetch(); }, [&] { return stmt.MoreResults(); },
              [&] { return stmt.RowCount(number); }, [&] { return stmt.Close(); }});
}

Odbc::e_Status sendBatch(OdbcStmt& stmt) {
  const Odbc::e_Status prepared = stmt.SetSql("insert ?,?", true);
  if (prepared != Odbc::e_Ok) return prepared;
  for (const char* value : {"one", "two", "three"}) {
    DataTypes::DataValue text;
    text.string = value;
    stmt.DiscardPendingRow();
    stmt.GetParam(1)->SetSqlType(SQL_VARCHAR, 5, 0);
    stmt.GetParam(1)->SetCType(SQL_C_CHAR, 0);
    stmt.GetParam(1)->SetData(5, text, false);
    stmt.GetParam(2)->SetSqlType(SQL_BIGINT, 0, 0);
    stmt.GetParam(2)->SetCType(SQL_C_SBIGINT, 0);
    stmt.GetParam(2)->SetData(5L, false);
    stmt.IncrementBatchSize();
  }
  return run({[&] { return stmt.Execute(); }, [&] { return stmt.SetSql("insert ?,?", false); }});
}

class DriverManager : public OdbcTest {
 protected:
  // Runs the work on a new statement of a new connection, with this function failing, if any.
  Odbc::e_Status work(Odbc::e_Status (*of)(OdbcStmt&), const std::string& failing) {
    fake_.reset();
    const fake::Result row = {
        {{"id", SQL_INTEGER, 10}, {"big", SQL_BIGINT, 19, 0, 20}, {"text", SQL_VARCHAR, 20}},
        {{fake::Cell::of(1), "12", std::string(50, 't')}, {fake::Cell::of(2), {}, {}}}};
    fake_.results["select ?"] = {row, row};
    connect();
    OdbcStmt* const stmt = dbc_->CreateStmt();
    if (!failing.empty()) fake_.fail(failing, 1, fake::failure("HY000", 4711, kMessage));
    const Odbc::e_Status status = of(*stmt);
    record_ = getOdbcError(env_.get());
    env_.reset();
    EXPECT_EQ(fake_.liveHandles(), Log());
    return status;
  }

  const std::string kMessage = std::string(600, 'm');
  std::string record_;
};

TEST_F(DriverManager, PassesCallsAndDiagnosticsOn) {
  for (const auto of : {read, sendBatch}) {
    ASSERT_EQ(work(of, ""), Odbc::e_Ok);
    std::set<std::string> called;
    for (const std::string& line : fake_.takeLog()) called.insert(line.substr(0, line.find('(')));
    for (const std::string name :
         {"SQLPrepare", "SQLNumParams", "SQLDescribeParam", "SQLBindParameter", "SQLExecute",
          "SQLDescribeCol", "SQLFetch", "SQLGetData", "SQLMoreResults", "SQLRowCount"}) {
      if (called.count(name) == 0) continue;
      SCOPED_TRACE(name);
      EXPECT_EQ(work(of, name), Odbc::e_Error);
      EXPECT_EQ(record_.substr(0, 13), "[HY000][4711]");
      EXPECT_NE(record_.find(kMessage + "]"), std::string::npos);
    }
  }
  ASSERT_EQ(work(sendBatch, ""), Odbc::e_Ok);
  ASSERT_EQ(fake_.executions.back().rows.size(), 3U);
  for (const auto& row : fake_.executions.back().rows) EXPECT_EQ(row[1].as<long>(), 5);
}

}  // namespace
}  // namespace odbc_test
