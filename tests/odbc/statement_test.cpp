#include "odbc/odbc_col.h"
#include "odbc/odbc_stmt_impl.h"
#include "tests/odbc/odbc_fixture.h"

namespace {

using odbc_test::getOdbcError;
using odbc_test::Log;
using odbc_test::Odbc;
using odbc_test::OdbcTest;
using odbc_test::recordText;

class Statement : public OdbcTest {};

const fake::Result kTwoRows = {{{"id", SQL_INTEGER, 10}, {"name", SQL_VARCHAR, 20}},
                               {{fake::Cell::of(1), "one"}, {fake::Cell::of(2), {}}}};

TEST_F(Statement, ReadsRowsAndFurtherResults) {
  fake_.results["select"] = {kTwoRows, {{{"n", SQL_SMALLINT, 5}}, {{fake::Cell::of(short{7})}}}};
  prepare("select");
  EXPECT_EQ(stmt_->GetColumn(1), nullptr);
  EXPECT_EQ(stmt_->MaxRows(10), Odbc::e_Ok);
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(), Log({"SQLSetStmtAttr(1,10,-5)", "SQLExecute()"}));
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  EXPECT_EQ(
      fake_.takeLog(),
      Log({"SQLNumResultCols()", "SQLDescribeCol(1,256)", "SQLColAttribute(1,6,0)",
           "SQLColAttribute(1,8,0)", "SQLDescribeCol(2,256)", "SQLColAttribute(2,6,0)",
           "SQLColAttribute(2,8,0)", "SQLFetch()", "SQLGetData(1,4,8)", "SQLGetData(2,1,21)"}));
  auto* first = stmt_->GetColumn(1);
  EXPECT_EQ(stmt_->GetColumn(0), nullptr);
  EXPECT_EQ(stmt_->GetColumn(3), nullptr);
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  EXPECT_EQ(stmt_->GetColumn(1), first);  // made once
  int id = 0;
  EXPECT_EQ(first->GetData(id), Odbc::e_Ok);
  EXPECT_EQ(id, 2);
  std::string name;
  EXPECT_EQ(stmt_->GetColumn(2)->GetName(name), Odbc::e_Ok);
  EXPECT_EQ(name, "name");
  fake_.log.clear();
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_NoData);
  EXPECT_EQ(fake_.takeLog(), Log({"SQLFetch()"}));
  EXPECT_EQ(stmt_->MoreResults(), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(), Log({"SQLFreeStmt(2)", "SQLMoreResults()"}));
  EXPECT_EQ(stmt_->GetColumn(1), nullptr);
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  EXPECT_EQ(stmt_->MoreResults(), Odbc::e_NoData);
  EXPECT_EQ(stmt_->Close(), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog().back(), "SQLFreeStmt(0)");
}

TEST_F(Statement, DescribesTheCurrentResult) {
  fake_.results["select"] = {{{{std::string(300, 'n'), SQL_TYPE_TIMESTAMP, 26}}, {}, 0}};
  prepare("select");
  int count = 0;
  EXPECT_EQ(stmt_->GetColumnCount(count), Odbc::e_Ok);
  EXPECT_EQ(count, 1);
  int type = 0;
  EXPECT_EQ(stmt_->GetColumnType(1, type), Odbc::e_Ok);
  EXPECT_EQ(type, 93);
  std::string name;
  EXPECT_EQ(stmt_->GetColumnName(1, name), Odbc::e_Ok);
  EXPECT_EQ(name, std::string(254, 'n'));
  EXPECT_EQ(fake_.takeLog(),
            Log({"SQLNumResultCols()", "SQLColAttribute(1,2,0)", "SQLColAttribute(1,1011,255)"}));
  for (const int bad : {0, 2, -1, 65537}) {  // 65537 must not become 1
    SCOPED_TRACE(bad);
    EXPECT_EQ(stmt_->GetColumnType(bad, type), Odbc::e_Error);
    EXPECT_EQ(stmt_->GetColumnName(bad, name), Odbc::e_Error);
  }
  EXPECT_EQ(type, 93);
  EXPECT_EQ(name.size(), 254u);
}

TEST_F(Statement, ColumnsAreMadeAllOrNone) {
  fake_.results["select"] = {kTwoRows};
  prepare("select");
  int count = 77;
  fake_.answer("SQLNumResultCols", {SQL_NO_DATA, {}});
  EXPECT_EQ(stmt_->GetColumnCount(count), Odbc::e_NoData);
  EXPECT_EQ(count, 77);
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);
  fake_.fail("SQLDescribeCol", 2, fake::failure("HY000", 4, "no"));
  fake_.log.clear();
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Error);
  EXPECT_EQ(fake_.takeLog().back(), "SQLFreeStmt(2)");
  EXPECT_EQ(getOdbcError(stmt_), recordText("[HY000][4][no]"));
  EXPECT_EQ(stmt_->GetColumn(1), nullptr);
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  EXPECT_NE(stmt_->GetColumn(2), nullptr);
}

TEST_F(Statement, HandlesByKind) {
  using KORVEX::Zel::DB::ODBC::OdbcImpl;
  fetchFirst(kTwoRows);
  ASSERT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  const auto impl = [](Odbc* object) { return dynamic_cast<OdbcImpl*>(object); };
  OdbcImpl* const objects[] = {impl(env_.get()), impl(dbc_), impl(stmt_),
                               impl(stmt_->GetColumn(1))};
  const SQLHANDLE own[] = {objects[0]->GetHandle(), objects[1]->GetHandle(),
                           objects[2]->GetHandle()};
  for (const std::size_t at : {0U, 1U, 2U, 3U}) {
    SCOPED_TRACE(at);
    EXPECT_EQ(objects[at]->GetHandleType(), at < 3 ? at + 1 : 0);
    EXPECT_EQ(objects[at]->GetHandle(OdbcImpl::e_None), nullptr);
    for (const OdbcImpl::e_Handle kind : {OdbcImpl::e_Env, OdbcImpl::e_Dbc, OdbcImpl::e_Stmt}) {
      const auto number = static_cast<std::size_t>(kind);
      EXPECT_EQ(objects[at]->GetHandle(kind), number <= at + 1 ? own[number - 1] : nullptr) << kind;
    }
  }
  EXPECT_EQ(objects[3]->GetHandle(), nullptr);
}

TEST_F(Statement, RowCountsAreNarrowed) {
  struct Case {
    SQLLEN rows;
    int count;
  };
  for (const Case& c :
       {Case{0, 0}, {-1, -1}, {12, 12}, {0x7FFFFFFF, 0x7FFFFFFF}, {0x100000001, 0x7FFFFFFF}}) {
    fake_.results["update"] = {{{}, {}, c.rows}};
    prepare("update");
    EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);
    int count = 77;
    EXPECT_EQ(stmt_->RowCount(count), Odbc::e_Ok);
    EXPECT_EQ(count, c.count);
    fake_.answer("SQLRowCount", fake::failureWithoutRecord());
    EXPECT_EQ(stmt_->RowCount(count), Odbc::e_Error);
    EXPECT_EQ(count, c.count);
  }
}

TEST_F(Statement, PreparesAnew) {
  prepare("insert ?,?");
  auto* param = stmt_->GetParam(2);
  EXPECT_NE(param, nullptr);
  EXPECT_EQ(stmt_->GetParam(0), nullptr);
  EXPECT_EQ(stmt_->GetParam(3), nullptr);
  EXPECT_EQ(stmt_->Parse(), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(), Log({"SQLFreeStmt(0)", "SQLFreeStmt(2)", "SQLFreeStmt(3)",
                                  R"(SQLPrepare("insert ?,?"))", "SQLNumParams()"}));
  fake_.answer("SQLPrepare", fake::failure("42000", 1, "syntax"));
  EXPECT_EQ(stmt_->SetSql("bad", false), Odbc::e_Error);
  EXPECT_EQ(getOdbcError(stmt_), recordText("[42000][1][syntax]"));
  EXPECT_EQ(stmt_->GetParam(1), nullptr);
  fake_.log.clear();
  fake_.answer("SQLPrepare", fake::failureWithoutRecord());
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Error);
  EXPECT_EQ(fake_.takeLog(), Log({R"(SQLPrepare("bad"))"}));
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);  // tries again
  EXPECT_EQ(fake_.takeLog(), Log({R"(SQLPrepare("bad"))", "SQLNumParams()", "SQLExecute()"}));
}

TEST_F(Statement, BindsUpToTheFirstRefusal) {
  prepare("insert ?,?");
  fake_.answer("SQLBindParameter", fake::failure("HY000", 5, "no"));
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Error);
  EXPECT_EQ(getOdbcError(stmt_), recordText("[HY000][5][no]"));
  EXPECT_EQ(fake_.takeLog().size(), 1u);
  prepare("insert", true);  // without parameters there is nothing to lay out
  EXPECT_EQ(stmt_->IncrementBatchSize(), Odbc::e_Ok);
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(), Log({"SQLExecute()"}));
}

TEST_F(Statement, ReportsHowClosingWent) {
  prepare("select");
  auto* impl = dynamic_cast<KORVEX::Zel::DB::ODBC::OdbcStmtImpl*>(stmt_);
  fake_.answer("SQLFreeStmt", fake::failure("HY000", 3, "busy"));
  EXPECT_EQ(impl->Unprepare(), Odbc::e_Error);
  EXPECT_EQ(getOdbcError(stmt_), recordText("[HY000][3][busy]"));  // tidying up keeps it
}

class Batch : public Statement {
 protected:
  void addRow(int value) {
    EXPECT_EQ(stmt_->DiscardPendingRow(), Odbc::e_Ok);
    EXPECT_EQ(stmt_->GetParam(1)->SetData(value, false), Odbc::e_Ok);
    EXPECT_EQ(stmt_->IncrementBatchSize(), Odbc::e_Ok);
  }

  void prepareInts(const std::string& sql) {
    prepare(sql, true);
    for (int n = 1; stmt_->GetParam(n) != nullptr; ++n) {
      stmt_->GetParam(n)->SetSqlType(SQL_INTEGER, 0, 0);
      stmt_->GetParam(n)->SetCType(SQL_C_SLONG, 0);
    }
  }
};

TEST_F(Batch, BindsAndReportsEveryRow) {
  prepareInts("insert ?");
  for (const int value : {10, 20, 30, 40}) addRow(value);
  int size = 0;
  EXPECT_EQ(stmt_->GetBatchSize(size), Odbc::e_Ok);
  EXPECT_EQ(size, 4);
  fake_.paramStatus = {SQL_PARAM_SUCCESS, SQL_PARAM_ERROR, SQL_PARAM_SUCCESS_WITH_INFO, 257};
  fake_.log.clear();
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(),
            Log({"SQLSetStmtAttr(18,0,0)", "SQLSetStmtAttr(22,4,0)", "SQLSetStmtAttr(20,ptr,-4)",
                 "SQLBindParameter(1,1,-16,4,10,0,ptr,24,ptr)", "SQLExecute()"}));
  ASSERT_EQ(fake_.executions.back().rows.size(), 4u);
  EXPECT_EQ(fake_.executions.back().rows[2][0].as<int>(), 30);
  const int expected[] = {0, -1, 0, -1, 55, 55};
  for (int row = 0; row < 6; ++row) {
    int status = 55;
    EXPECT_EQ(stmt_->GetBatchParamStatus(row, status), Odbc::e_Ok);
    EXPECT_EQ(status, expected[row]) << row;
  }
  int status = 55;
  stmt_->GetBatchParamStatus(-1, status);
  addRow(50);  // counted, but not executed yet
  stmt_->GetBatchParamStatus(4, status);
  EXPECT_EQ(status, 55);

  // All rows so far are sent again; a driver that writes no statuses has done them all.
  fake_.paramStatus.emplace();
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);
  EXPECT_EQ(fake_.executions.back().rows.size(), 5u);
  stmt_->GetBatchParamStatus(1, status);
  EXPECT_EQ(status, 0);

  // The driver must not keep the array layout for what comes next.
  fake_.log.clear();
  EXPECT_EQ(stmt_->SetSql("insert ?", false), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(), Log({"SQLSetStmtAttr(22,1,0)", "SQLSetStmtAttr(20,0,-4)",
                                  "SQLFreeStmt(0)", "SQLFreeStmt(2)", "SQLFreeStmt(3)",
                                  R"(SQLPrepare("insert ?"))", "SQLNumParams()"}));
  size = 66;
  stmt_->IncrementBatchSize();
  stmt_->GetBatchSize(size);
  stmt_->GetBatchParamStatus(0, size);
  EXPECT_EQ(size, 66);
}

TEST_F(Batch, PreparesTwiceWhereDescribingSlowsArrays) {
  for (const char* name : {"PostgreSQL", "MySQL"}) {
    SCOPED_TRACE(name);
    fake_.dbmsName = name;
    connect();
    stmt_ = dbc_->CreateStmt();
    const auto prepares = [this](const char* sql, bool batch) {
      const int before = fake_.calls("SQLPrepare");
      EXPECT_EQ(stmt_->SetSql(sql, batch), Odbc::e_Ok);
      return fake_.calls("SQLPrepare") - before;
    };
    EXPECT_EQ(prepares("insert ?", true), name == std::string("PostgreSQL") ? 2 : 1);
    EXPECT_EQ(prepares("insert ?", false), 1);
    EXPECT_EQ(prepares("insert", true), 1);
  }
}

TEST_F(Batch, RefusedLayouts) {
  struct Case {
    int attribute;  // which of the three is refused
    Odbc::e_Status status;
    const char* text;
    bool executed;
  };
  for (const Case& c : {Case{1, Odbc::e_Ok, "", true},
                        {2, Odbc::e_Ok, "", true},
                        {3, Odbc::e_Error, "[HYC00][0][not capable]", false}}) {
    SCOPED_TRACE(c.attribute);
    prepareInts("insert ?");
    addRow(1);
    fake_.log.clear();
    fake_.executions.clear();
    fake_.fail("SQLSetStmtAttr", c.attribute, fake::failure("HYC00", 0, "not capable"));
    EXPECT_EQ(stmt_->Execute(), c.status);
    EXPECT_EQ(getOdbcError(stmt_), c.executed ? "" : recordText(c.text));
    EXPECT_EQ(fake_.executions.size(), c.executed ? 1u : 0u);
    for (const std::string& line : fake_.takeLog()) EXPECT_FALSE(line.starts_with("SQLBind"));
    int status = 55;
    EXPECT_EQ(stmt_->GetBatchParamStatus(0, status), Odbc::e_Ok);
    EXPECT_EQ(status, 55);
  }
}

// Rows must not shift against each other when a row is given up half-way or given in part.
TEST_F(Batch, RowsStayInStep) {
  prepareInts("insert ?,?,?");
  const auto set = [this](int param, int value) { stmt_->GetParam(param)->SetData(value, false); };
  set(1, 11);  // the first row lacks 2 and 3
  stmt_->IncrementBatchSize();
  set(1, 21);
  set(2, 22);  // given up before 3
  stmt_->DiscardPendingRow();
  set(1, 31);
  set(3, 33);
  stmt_->IncrementBatchSize();
  set(2, 99);  // never counted
  stmt_->DiscardPendingRow();
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);
  const int kNull = -1;
  const int expected[2][3] = {{11, kNull, kNull}, {31, kNull, 33}};
  const auto& rows = fake_.executions.back().rows;
  ASSERT_EQ(rows.size(), 2u);
  for (std::size_t row = 0; row < 2; ++row) {
    for (std::size_t param = 0; param < 3; ++param) {
      const fake::BoundValue& value = rows[row][param];
      EXPECT_EQ(value.isNull() ? kNull : value.as<int>(), expected[row][param]) << row << param;
    }
  }
}

TEST_F(Batch, PrepareKeepsTheModeItHas) {
  prepareInts("insert ?");
  auto* impl = dynamic_cast<KORVEX::Zel::DB::ODBC::OdbcStmtImpl*>(stmt_);
  EXPECT_EQ(impl->Prepare(false), Odbc::e_Ok);
  addRow(1);
  int size = 0;
  stmt_->GetBatchSize(size);
  EXPECT_EQ(size, 1);
  EXPECT_EQ(stmt_->SetSql("delete", false), Odbc::e_Ok);
  EXPECT_EQ(impl->Prepare(true), Odbc::e_Ok);
  stmt_->IncrementBatchSize();
  stmt_->GetBatchSize(size);
  EXPECT_EQ(size, 1);
}

}  // namespace
