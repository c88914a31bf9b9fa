#include "odbc/odbc_catalog.h"
#include "tests/odbc/odbc_fixture.h"

namespace {

using KORVEX::Zel::DB::ODBC::OdbcCatalog;
using odbc_test::getOdbcError;
using odbc_test::Log;
using odbc_test::Odbc;
using odbc_test::OdbcTest;
using odbc_test::recordText;

class Connection : public OdbcTest {};

TEST_F(Connection, CallsOfAWholeLife) {
  env_.reset(Odbc::CreateEnv());
  dbc_ = env_->CreateDbc();
  EXPECT_EQ(dbc_->GetDatabaseType(), "");
  EXPECT_FALSE(dbc_->IsConnected());
  EXPECT_EQ(dbc_->Disconnect(), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(),
            Log({"SQLAllocHandle(1)", "SQLSetEnvAttr(200,3,-5)", "SQLAllocHandle(2)",
                 "SQLSetConnectAttr(102,0,-5)", "SQLSetConnectAttr(108,2,-5)"}));
  EXPECT_EQ(dbc_->Connect("fake", "user", ""), Odbc::e_Ok);
  EXPECT_TRUE(dbc_->IsConnected());
  EXPECT_EQ(fake_.takeLog(), Log({R"(SQLConnect("fake","user",""))", "SQLGetInfo(17,256)"}));
  dbc_->CreateStmt();
  EXPECT_EQ(dbc_->SetIsolationLevel(8), Odbc::e_Ok);
  EXPECT_EQ(dbc_->Commit(), Odbc::e_Ok);
  EXPECT_EQ(dbc_->Rollback(), Odbc::e_Ok);
  EXPECT_EQ(env_->Commit(), Odbc::e_Ok);
  EXPECT_EQ(env_->Rollback(), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(),
            Log({"SQLAllocHandle(3)", "SQLSetConnectAttr(108,8,-5)", "SQLEndTran(2,0)",
                 "SQLEndTran(2,1)", "SQLEndTran(1,0)", "SQLEndTran(1,1)"}));
  // Connecting again disconnects first.
  EXPECT_EQ(dbc_->Connect("fake", "user", ""), Odbc::e_Ok);
  EXPECT_EQ(fake_.takeLog(), Log({"SQLEndTran(2,1)", "SQLFreeHandle(3)", "SQLDisconnect()",
                                  R"(SQLConnect("fake","user",""))", "SQLGetInfo(17,256)"}));
  dbc_->CreateStmt();
  fake_.log.clear();
  env_.reset();  // what was made on it goes first
  EXPECT_EQ(fake_.takeLog(), Log({"SQLFreeHandle(3)", "SQLEndTran(2,1)", "SQLDisconnect()",
                                  "SQLFreeHandle(2)", "SQLFreeHandle(1)"}));
}

TEST_F(Connection, RefusedConnectsAndDisconnects) {
  connect();
  fake_.answer("SQLEndTran", fake::failure("HY000", 1, "busy"));
  fake_.answer("SQLDisconnect", fake::failure("25000", 2, "busy"));
  EXPECT_EQ(dbc_->Disconnect(), Odbc::e_Ok);
  EXPECT_FALSE(dbc_->IsConnected());
  fake_.answer("SQLConnect", fake::failure("28000", 3, "password"));
  EXPECT_EQ(dbc_->Connect("fake", "user", "wrong"), Odbc::e_Error);
  EXPECT_FALSE(dbc_->IsConnected());
  EXPECT_EQ(getOdbcError(dbc_), recordText("[28000][3][password]"));
  EXPECT_EQ(dbc_->Connect("fake", "user", ""), Odbc::e_Ok);  // for the driver's own book
}

TEST_F(Connection, DatabaseTypeByName) {
  struct Case {
    const char* name;
    const char* type;
  };
  const Case cases[] = {
      {"Microsoft SQL Server", "MSSQL"},
      {"SQL Server", "OPX"},
      {"Korvex WH 3", "WH"},
      {"DB2/LINUXX8664", "DB2"},
      {"Oracle", "ORACLE"},
      {"ORACLE and MYSQL", "ORACLE"},
      {"Korvex WH on SQL Server", "OPX"},
      {"DB2 on Korvex WH", "WH"},
      {"Oracle DB2", "DB2"},
      {"MySQL PostgreSQL", "POSTGRESQL"},
      {"postgresql", "POSTGRESQL"},
      {"MySQL", "MYSQL"},
      {"VltOdbc", "VELTA"},
      {"VLT", "VELTA"},
      {"MariaDB", "OTHERS"},
      {"", "OTHERS"},
  };
  connect();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    fake_.dbmsName = c.name;
    EXPECT_EQ(dbc_->Connect("fake", "", ""), Odbc::e_Ok);
    EXPECT_EQ(dbc_->GetDatabaseType(), c.type);
  }
  // Without an answer the connection stays open, with the type of the last one.
  fake_.dbmsName = "Oracle";
  dbc_->Connect("fake", "", "");
  fake_.answer("SQLGetInfo", fake::failure("HY000", 1, "no name"));
  EXPECT_EQ(dbc_->Connect("fake", "", ""), Odbc::e_Error);
  EXPECT_TRUE(dbc_->IsConnected());
  EXPECT_EQ(dbc_->GetDatabaseType(), "ORACLE");
  EXPECT_EQ(getOdbcError(dbc_), recordText("[HY000][1][no name]"));
}

void* createEnv(Connection&) {
  return Odbc::CreateEnv();
}
void* createDbc(Connection& test) {
  return test.env_->CreateDbc();
}
void* createStmt(Connection& test) {
  return test.dbc_->CreateStmt();
}
void* scan(Connection& test) {
  return test.dbc_->ScanTables(nullptr, nullptr, nullptr, nullptr);
}
const std::string kEnvFailed = "OdbcImpl::CreateEnv()  Failed to initialize env.";
const std::string kDbcFailed = "OdbcEnvImpl::CreateDbc()  Failed to initialize dbc.";
const std::string kNoInfo = "  No error info available\n";
const std::string kRecord = "[HY001][7][no memory]\n";
const std::string kNoRecord = "[ZEL][0][No error message returned by driver]\n";
struct FailedCreation {
  const char* name;
  const char* function;
  int call;
  bool connected;
  void* (*create)(Connection&);
  std::string printed;               // the driver has a record
  std::string printedWithoutRecord;  // it has none
  std::string printedInvalid;        // the handle is invalid: no record is read
};
const FailedCreation kFailedCreations[] = {
    {"env", "SQLAllocHandle", 1, false, createEnv, kEnvFailed + kNoInfo, kEnvFailed + kNoInfo,
     kEnvFailed + kNoInfo},
    {"env version", "SQLSetEnvAttr", 1, false, createEnv, kEnvFailed + kRecord,
     kEnvFailed + kNoRecord, kEnvFailed + kNoInfo},
    {"dbc", "SQLAllocHandle", 1, true, createDbc, kDbcFailed + kRecord, kDbcFailed + kNoRecord,
     kDbcFailed + kNoInfo},
    {"autocommit", "SQLSetConnectAttr", 1, true, createDbc, kDbcFailed + kRecord,
     kDbcFailed + kNoRecord, kDbcFailed + kNoInfo},
    {"isolation", "SQLSetConnectAttr", 2, true, createDbc, kDbcFailed + kRecord,
     kDbcFailed + kNoRecord, kDbcFailed + kNoInfo},
    {"stmt", "SQLAllocHandle", 1, true, createStmt,
     "OdbcDbcImpl::CreateStmt()  Failed to initialize stmt." + kRecord,
     "OdbcDbcImpl::CreateStmt()  Failed to initialize stmt." + kNoRecord, ""},
    {"catalog", "SQLAllocHandle", 1, true, scan,
     "OdbcDbcImpl::CreateStmt()  state: HY001\nOdbcDbcImpl::CreateStmt()  error: 7\n"
     "OdbcDbcImpl::CreateStmt()  message: no memory\n",
     "OdbcDbcImpl::CreateStmt()  state: ZEL\nOdbcDbcImpl::CreateStmt()  error: 0\n"
     "OdbcDbcImpl::CreateStmt()  message: No error message returned by driver\n",
     ""},
    {"catalog function", "SQLTables", 1, true, scan, "", "", ""},
};

// What is printed when an object cannot be made, with and without a record.
TEST_F(Connection, FailedCreationsSayWhy) {
  for (const FailedCreation& row : kFailedCreations) {
    const fake::Answer answers[] = {fake::failure("HY001", 7, "no memory"),
                                    fake::failureWithoutRecord(),
                                    {SQL_INVALID_HANDLE, {}}};
    const std::string printed[] = {row.printed, row.printedWithoutRecord, row.printedInvalid};
    for (std::size_t i = 0; i < std::size(answers); ++i) {
      SCOPED_TRACE(row.name + std::to_string(i));
      if (row.connected) connect();
      const std::size_t handles = fake_.liveHandles().size();
      fake_.fail(row.function, row.call, answers[i]);
      testing::internal::CaptureStdout();
      EXPECT_EQ(row.create(*this), nullptr);
      EXPECT_EQ(testing::internal::GetCapturedStdout(), printed[i]);
      EXPECT_EQ(fake_.liveHandles().size(), handles);
      if (row.connected) {
        const char* texts[] = {"[HY001][7][no memory]",
                               "[ZEL][0][No error message returned by driver]"};
        EXPECT_EQ(getOdbcError(dbc_), i < 2 ? recordText(texts[i]) : "");
      }
      env_.reset();
      fake_.reset();
    }
  }
}

TEST_F(Connection, CatalogFunctions) {
  connect();
  struct Case {
    OdbcCatalog* (*scan)(odbc_test::OdbcDbc&);
    const char* call;
  };
  char c[] = "cat";
  const Case cases[] = {
      {[](odbc_test::OdbcDbc& d) { return d.ScanTables(nullptr, nullptr, nullptr, nullptr); },
       "SQLTables(null,0,null,0,null,0,null,0)"},
      {[](odbc_test::OdbcDbc& d) { return d.ScanTables("", "sch", "t%", "TABLE,VIEW"); },
       R"(SQLTables("",0,"sch",3,"t%",2,"TABLE,VIEW",10))"},
      {[](odbc_test::OdbcDbc& d) { return d.ScanTableColumns("cat", nullptr, "tab", ""); },
       R"(SQLColumns("cat",3,null,0,"tab",3,"",0))"},
      {[](odbc_test::OdbcDbc& d) { return d.ScanTablePrimaryKey("cat", "sch", "tab", "x"); },
       R"(SQLPrimaryKeys("cat",3,"sch",3,"tab",3))"},
      {[](odbc_test::OdbcDbc& d) { return d.ScanProcedures("cat", "sch", "proc"); },
       R"(SQLProcedures("cat",3,"sch",3,"proc",4))"},
      {[](odbc_test::OdbcDbc& d) { return d.ScanProcedureColumns("cat", "sch", "proc", "c"); },
       R"(SQLProcedureColumns("cat",3,"sch",3,"proc",4,"c",1))"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.call);
    EXPECT_NE(row.scan(*dbc_), nullptr);
    EXPECT_EQ(fake_.takeLog(), Log({"SQLAllocHandle(3)", row.call}));
  }
  EXPECT_EQ(fake_.liveHandles().size(), 2 + std::size(cases));
  dbc_->Disconnect();
  EXPECT_EQ(fake_.liveHandles(), Log({"env", "dbc"}));

  // A catalog query is read like any other; the texts were copied.
  fake_.results["SQLTables"] = {{{{"TABLE_NAME", SQL_VARCHAR, 20}}, {{"t1"}, {"t2"}}}};
  ASSERT_EQ(dbc_->Connect("fake", "", ""), Odbc::e_Ok);
  std::unique_ptr<OdbcCatalog> catalog(dbc_->ScanTables(c, nullptr, nullptr, nullptr));
  c[0] = 'X';
  int count = 0;
  EXPECT_EQ(catalog->GetColumnCount(count), Odbc::e_Ok);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(catalog->Fetch(), Odbc::e_Ok);
  EXPECT_EQ(catalog->Fetch(), Odbc::e_Ok);
  EXPECT_EQ(catalog->Fetch(), Odbc::e_NoData);
}

}  // namespace
