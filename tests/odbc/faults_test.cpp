// Every ODBC call of whole scenarios made to fail, one by one. Built over both forms of the
// scripted ODBC.

#include <algorithm>
#include <set>

#include "odbc/odbc_catalog.h"
#include "odbc/odbc_col.h"
#include "tests/odbc/odbc_fixture.h"

namespace {

using KORVEX::Zel::DB::ODBC::OdbcCatalog;
using odbc_test::getOdbcError;
using odbc_test::Log;
using odbc_test::Odbc;
using odbc_test::OdbcDbc;
using odbc_test::OdbcEnv;
using odbc_test::OdbcStmt;
using odbc_test::recordText;

// How a scenario ended: the first status that was not e_Ok, and the record then.
struct Outcome {
  Odbc::e_Status status = Odbc::e_Ok;
  std::string text;
};

class Scenario {
 public:
  virtual ~Scenario() = default;

  // Runs over a new environment, which is gone afterwards.
  Outcome run() {
    outcome_ = {};
    env_.reset(Odbc::CreateEnv());
    if (expect(env_ != nullptr)) {
      dbc_ = env_->CreateDbc();
      if (expect(dbc_ != nullptr) && expect(dbc_->Connect("fake", "user", "secret"))) work();
    }
    env_.reset();
    return outcome_;
  }

 protected:
  virtual void work() = 0;

  bool expect(Odbc::e_Status status) {
    if (status != Odbc::e_Ok && outcome_.status == Odbc::e_Ok) {
      outcome_ = {status, getOdbcError(env_.get())};
    }
    return outcome_.status == Odbc::e_Ok;
  }
  bool expect(bool made) {
    if (made) return true;
    outcome_ = {Odbc::e_Error, env_ == nullptr ? "" : getOdbcError(env_.get())};
    return false;
  }

  OdbcStmt* prepared(const char* sql, bool batch) {
    OdbcStmt* stmt = dbc_->CreateStmt();
    return expect(stmt != nullptr) && expect(stmt->SetSql(sql, batch)) ? stmt : nullptr;
  }

  std::unique_ptr<OdbcEnv> env_;
  OdbcDbc* dbc_ = nullptr;
  Outcome outcome_;
};

class Reading : public Scenario {
  void work() override {
    OdbcStmt* stmt = prepared("select ?", false);
    if (stmt == nullptr) return;
    stmt->GetParam(1)->SetSqlType(SQL_INTEGER, 0, 0);
    stmt->GetParam(1)->SetData(7, false);
    std::string name;
    int number = 0;
    const bool read =
        expect(stmt->MaxRows(5)) && expect(stmt->Execute()) &&
        expect(stmt->GetColumnCount(number)) && expect(stmt->GetColumnName(1, name)) &&
        expect(stmt->GetColumnType(1, number)) && expect(stmt->Fetch()) && expect(stmt->Fetch()) &&
        expect(stmt->MoreResults()) && expect(stmt->RowCount(number)) && expect(stmt->Close()) &&
        expect(dbc_->SetIsolationLevel(SQL_TXN_SERIALIZABLE)) && expect(dbc_->Commit()) &&
        expect(env_->Rollback());
    EXPECT_TRUE(read || outcome_.status != Odbc::e_Ok);
  }
};

class Batching : public Scenario {
  void work() override {
    OdbcStmt* stmt = prepared("insert ?,?", true);
    if (stmt == nullptr) return;
    for (const char* value : {"one", "two", "three"}) {
      DataTypes::DataValue text;
      text.string = value;
      stmt->DiscardPendingRow();
      stmt->GetParam(1)->SetSqlType(SQL_VARCHAR, 5, 0);
      stmt->GetParam(1)->SetCType(SQL_C_CHAR, 0);
      stmt->GetParam(1)->SetData(5, text, false);
      stmt->GetParam(2)->SetSqlType(SQL_BIGINT, 0, 0);
      stmt->GetParam(2)->SetCType(SQL_C_SBIGINT, 0);
      stmt->GetParam(2)->SetData(5L, false);
      stmt->IncrementBatchSize();
    }
    if (expect(stmt->Execute())) expect(stmt->SetSql("insert ?,?", false));
  }
};

class Cataloguing : public Scenario {
  void work() override {
    const std::unique_ptr<OdbcCatalog> tables(dbc_->ScanTables(nullptr, nullptr, "t%", "TABLE"));
    if (!expect(tables != nullptr) || !expect(tables->Fetch())) return;
    expect(dbc_->ScanTablePrimaryKey(nullptr, nullptr, "t1", nullptr) != nullptr);
  }
};

class Faults : public testing::Test {
 protected:
  void SetUp() override {
    fake_.reset();
    script();
  }

  void script() {
    const fake::Result row = {
        {{"id", SQL_INTEGER, 10}, {"big", SQL_BIGINT, 19, 0, 20}, {"text", SQL_VARCHAR, 20}},
        {{fake::Cell::of(1), "12", std::string(50, 't')}, {fake::Cell::of(2), {}, {}}}};
    fake_.results["select ?"] = {row, row};
    fake_.results["SQLTables"] = {row};
  }

  fake::FakeOdbc& fake_ = fake::fakeOdbc();
};

#ifndef ZEL_FAKE_ODBC_DRIVER
// Calls whose failure is not reported, since they only tidy up, or as a rule of this layer. A call
// counts only when the next one is the one named, if any is.
struct Swallowed {
  const char* call;
  const char* next;
};
constexpr Swallowed kSwallowed[] = {
    {"SQLFreeHandle(", ""},       {"SQLDisconnect(", ""},
    {"SQLFreeStmt(2)", ""},       {"SQLFreeStmt(3)", ""},
    {"SQLSetStmtAttr(18,", ""},   {"SQLSetStmtAttr(22,", ""},
    {"SQLSetStmtAttr(20,0,", ""}, {"SQLFreeStmt(0)", "SQLFreeStmt(2)"},
    {"SQLEndTran(2,1)", ""},
};

bool isSwallowed(const std::string& call, const std::string& next) {
  return std::any_of(std::begin(kSwallowed), std::end(kSwallowed), [&](const Swallowed& row) {
    return call.starts_with(row.call) && next.starts_with(row.next);
  });
}

// Calls of operations that answer with an object or null.
bool isCreation(const std::string& call) {
  for (const char* start : {"SQLAllocHandle(", "SQLSetEnvAttr(", "SQLSetConnectAttr(102,",
                            "SQLSetConnectAttr(108,2", "SQLTables(", "SQLPrimaryKeys("}) {
    if (call.starts_with(start)) return true;
  }
  return false;
}

struct Failure {
  fake::Answer answer;
  Outcome outcome;
};

const Failure kFailures[] = {
    {fake::failure("HY000", 4711, "scripted"),
     {Odbc::e_Error, recordText("[HY000][4711][scripted]")}},
    {fake::failureWithoutRecord(),
     {Odbc::e_Error, recordText("[ZEL][0][No error message returned by driver]")}},
    {{SQL_INVALID_HANDLE, {}}, {Odbc::e_Error, ""}},
    {{SQL_STILL_EXECUTING, {}}, {Odbc::e_Other, ""}},
};

class Sweep : public Faults {
 protected:
  Outcome runWithFault(Scenario& scenario, std::size_t call, const fake::Answer& answer,
                       bool fromThenOn) {
    fake_.reset();
    script();
    fake_.fail("", static_cast<int>(call), answer, fromThenOn);
    testing::internal::CaptureStdout();  // creations print
    const Outcome outcome = scenario.run();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(fake_.liveHandles(), Log());
    return outcome;
  }

  // Each call fails with a record, without one, as an invalid handle, and as something unknown;
  // alone, and with all calls behind it.
  void sweep(Scenario& scenario) {
    script();
    ASSERT_EQ(scenario.run().status, Odbc::e_Ok);
    Log calls = fake_.takeLog();
    calls.push_back("");
    for (std::size_t call = 1; call < calls.size(); ++call) {
      const std::string& name = calls[call - 1];
      for (const Failure& failure : kFailures) {
        SCOPED_TRACE(std::to_string(call) + " " + name + " " + std::to_string(failure.answer.rc));
        const Outcome outcome = runWithFault(scenario, call, failure.answer, false);
        Outcome expected = isSwallowed(name, calls[call]) ? Outcome() : failure.outcome;
        if (isCreation(name)) expected.status = Odbc::e_Error;
        // Only an error stops the reading of a row; of the other statuses the last column's counts.
        const bool lastColumn = name.starts_with("SQLGetData(3,");
        if (name.starts_with("SQLGetData(") && !lastColumn && expected.status == Odbc::e_Other) {
          expected = {};
        }
        if (call <= 2) expected.text.clear();  // there is no environment to ask
        EXPECT_EQ(outcome.status, expected.status);
        EXPECT_EQ(outcome.text, expected.text);
        EXPECT_EQ(fake_.misuses,
                  name == "SQLDisconnect()" ? Log({"freed a dbc that is connected"}) : Log());
        runWithFault(scenario, call, failure.answer, true);
      }
    }
  }
};

TEST_F(Sweep, Reading) {
  Reading scenario;
  sweep(scenario);
}

TEST_F(Sweep, Batching) {
  Batching scenario;
  sweep(scenario);
}

TEST_F(Sweep, Cataloguing) {
  Cataloguing scenario;
  sweep(scenario);
}
#endif

// The same calls as the real driver manager passes them on, and no handle left by any failure.
TEST_F(Faults, ThroughWhateverStandsBetween) {
  Reading reading;
  Batching batching;
  for (Scenario* scenario : {static_cast<Scenario*>(&reading), static_cast<Scenario*>(&batching)}) {
    fake_.reset();
    script();
    ASSERT_EQ(scenario->run().status, Odbc::e_Ok);
    EXPECT_EQ(fake_.liveHandles(), Log());
    std::set<std::string> names;
    for (const std::string& line : fake_.takeLog()) names.insert(line.substr(0, line.find('(')));
    for (const std::string name :
         {"SQLPrepare", "SQLNumParams", "SQLDescribeParam", "SQLBindParameter", "SQLExecute",
          "SQLDescribeCol", "SQLFetch", "SQLGetData", "SQLMoreResults", "SQLRowCount"}) {
      if (names.count(name) == 0) continue;
      SCOPED_TRACE(name);
      fake_.reset();
      script();
      fake_.fail(name, 1, fake::failure("HY000", 4711, std::string(600, 'm')));
      const Outcome outcome = scenario->run();
      EXPECT_EQ(outcome.status, Odbc::e_Error);
      EXPECT_NE(outcome.text.find(std::string(600, 'm') + "]"), std::string::npos);
      EXPECT_EQ(outcome.text.substr(0, 13), "[HY000][4711]");
      EXPECT_EQ(fake_.liveHandles(), Log());
    }
  }
  ASSERT_FALSE(fake_.executions.empty());
  for (const auto& row : fake_.executions.back().rows) EXPECT_EQ(row[1].as<long>(), 5);
}

}  // namespace
