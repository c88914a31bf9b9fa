#include "tests/driver/driver_fixture.h"

namespace KORVEX::Zel::DB {
namespace {

class OdbcConnectionTest : public DriverFixture {};

TEST_F(OdbcConnectionTest, NeedsDataSourceAndUser) {
  const Properties kIncomplete[] = {
      {}, {{"DSN", "d"}}, {{"User", "u"}}, {{"DSN", ""}, {"User", "u"}}};
  for (const Properties& properties : kIncomplete) {
    EXPECT_EQ(driver->createConnection(PropertyDataService("s", properties)), nullptr);
  }
  EXPECT_EQ(log.take(), Strings());
  EXPECT_EQ(driver->initialize(), kSuccess);
  EXPECT_EQ(driver->getName(), "odbc");
  driver->releaseError(nullptr);
}

TEST_F(OdbcConnectionTest, OpensInManualCommitAndClosesWithRollback) {
  make();
  EXPECT_EQ(connection->getDriver(), driver.get());
  EXPECT_EQ(connection->getHandle(), nullptr);
  EXPECT_EQ(connection->open(), kSuccess);
  EXPECT_NE(connection->getHandle(), nullptr);
  odbc.takeLog();
  EXPECT_EQ(connection->close(), kSuccess);
  EXPECT_EQ(odbc.takeLog(), (Strings{"SQLEndTran(2,1)", "SQLDisconnect()"}));
  EXPECT_EQ(connection->open(), kSuccess);  // again, over what the first one has left
  EXPECT_EQ(log.take(), Strings());
}

TEST_F(OdbcConnectionTest, TellsTheDatabaseTypeAndItsCapabilities) {
  struct Case {
    const char* dbmsName;
    const char* type;
    int flags;
  };
  const Case kCases[] = {{"Microsoft SQL Server", "MSSQL", 0},
                         {"SQL Server", "OPX", 1},
                         {"Korvex WH", "WH", 1},
                         {"vltodbc", "VELTA", 7},
                         {"postgresql", "POSTGRESQL", 0},
                         {"", "OTHERS", 0}};
  for (const Case& c : kCases) {
    odbc.dbmsName = c.dbmsName;
    open();
    const Connection::Capabilities& flags = connection->getCapabilities();
    EXPECT_EQ(flags.first + 2 * flags.second + 4 * flags.third, c.flags) << c.dbmsName;
    EXPECT_EQ(connection->getDriverProperty(Driver::PROPERTY_KEY_DATABASE_TYPE), c.type);
    EXPECT_EQ(connection->getDriverProperty("other"), "");
    close();
  }
  make({{"DatabaseType", "ORACLE"}});
  EXPECT_EQ(connection->getDriverProperty(Driver::PROPERTY_KEY_DATABASE_TYPE), "ORACLE");
}

TEST_F(OdbcConnectionTest, FailuresAreCollected) {
  make();
  EXPECT_EQ(connection->commit(), kFailure);
  EXPECT_EQ(connection->rollback(), kFailure);
  EXPECT_EQ(log.take(), (Strings{"801002-3_ERROR_COMMITTING_TRANSACTION||",
                                 "801003-3_ERROR_ROLLING_BACK_TRANSACTION||"}));
  odbc.answer("SQLConnect", failing());
  EXPECT_EQ(connection->open(), kFailure);
  EXPECT_EQ(connection->open(), kSuccess);
  odbc.fail("SQLEndTran", 1, failing(), true);
  EXPECT_EQ(connection->commit(), kFailure);
  EXPECT_EQ(connection->rollback(), kFailure);
  std::string all;
  for (int i = 0; i < 3; ++i) all += '\n' + std::string(kDiagnostic) + '\0';
  EXPECT_EQ(lastErrors(), all);
  EXPECT_EQ(lastErrors(), "");
}

TEST_F(OdbcConnectionTest, AnEnvironmentThatFailedIsToldWhenOpening) {
  odbc.answer("SQLSetEnvAttr", failing());
  make();
  EXPECT_EQ(log.take(), Strings());
  EXPECT_EQ(connection->open(), kFailure);
  EXPECT_EQ(log.take(), (Strings{"801000-3_ERROR_OPENING_DB_CONNECTION||"}));
  EXPECT_EQ(lastErrors(), "");
}

TEST_F(OdbcConnectionTest, CommitsOverALostLinkFailSafely) {
  for (const bool safe : {false, true}) {
    open({{"SafeTransfer", safe ? "true" : "false"}});
    odbc.linksLost = true;
    EXPECT_EQ(connection->commit(), safe ? kFailure : kSuccess);
    EXPECT_EQ(odbc.takeLog(), (Strings{safe ? "SQLGetConnectAttr(1209,0)" : "SQLEndTran(2,0)"}));
    EXPECT_EQ(lastErrors(), safe ? "\n[08003][0][the connection was lost before the commit]" : "");
    odbc.linksLost = false;
    close();
  }
}

TEST_F(OdbcConnectionTest, CreatingAStatementFails) {
  open();
  ResultSet* rows = nullptr;
  odbc.answer("SQLAllocHandle", failing());
  EXPECT_EQ(connection->executeQuery("q", {}, 0, rows), kFailure);
  EXPECT_EQ(lastErrors(), "");
  odbc.answer("SQLPrepare", failing());
  EXPECT_EQ(connection->executeQuery("q", {}, 0, rows), kFailure);
  EXPECT_EQ(lastErrors(), std::string("\n") + kDiagnostic + '\0');
  const std::string line = std::string("801004-3_ERROR_CREATING_STATEMENT|q|") + kDiagnostic;
  EXPECT_EQ(log.take(), (Strings{line, line}));
  EXPECT_EQ(connection->nextResultSet(*std::make_unique<bool>()), kFailure);
  EXPECT_EQ(connection->getResultSet(rows), kFailure);
  EXPECT_EQ(log.take(), Strings());
}

TEST_F(OdbcConnectionTest, OneStatementAtATime) {
  open();
  odbc.results["q"] = {{{{"c"}}, {{"1"}}}};
  ResultSet* first = nullptr;
  ResultSet* second = nullptr;
  ASSERT_EQ(connection->executeQuery("q", {}, 0, first), kSuccess);
  odbc.takeLog();
  ASSERT_EQ(connection->executeQuery("q", {}, 0, second), kSuccess);
  const Strings calls = odbc.takeLog();
  ASSERT_GE(calls.size(), 2u);
  EXPECT_EQ(calls.front(), "SQLFreeStmt(0)");
  int freed = -1;
  int allocated = -1;
  for (int i = 0; i < static_cast<int>(calls.size()); ++i) {
    if (calls[static_cast<std::size_t>(i)].starts_with("SQLFreeHandle")) freed = i;
    if (calls[static_cast<std::size_t>(i)].starts_with("SQLAllocHandle")) allocated = i;
  }
  EXPECT_LT(freed, allocated);
  EXPECT_GE(freed, 0);
}

TEST_F(OdbcConnectionTest, AClosedConnectionDetachesItsStatement) {
  open();
  ResultSet* rows = nullptr;
  bool more = false;
  ASSERT_EQ(connection->executeQuery("q", {}, 0, rows), kSuccess);
  EXPECT_EQ(connection->close(), kSuccess);
  odbc.takeLog();
  EXPECT_EQ(rows->next(more), kFailure);
  EXPECT_EQ(connection->nextResultSet(more), kFailure);
  EXPECT_EQ(odbc.takeLog(), Strings());
  EXPECT_EQ(log.take(), (Strings{"801012-3_ERROR_ITERATING_THROUGH_RESULT_SET||",
                                 "801018-3_ERROR_GETTING_RESULT_SET|q|"}));
}

TEST_F(OdbcConnectionTest, BatchProtocol) {
  open();
  std::vector<int> status = {5};
  const std::vector<Parameter> one = {int32Parameter(1)};
  const std::vector<Parameter> two = {int32Parameter(1), int32Parameter(2)};
  EXPECT_EQ(connection->addToBatch(two), kFailure);
  EXPECT_EQ(connection->executeBatch(status), kFailure);
  int rows = 0;
  EXPECT_EQ(connection->executeUpdate("update", {}, rows), kSuccess);
  odbc.takeLog();
  EXPECT_EQ(connection->clearBatch(), kSuccess);
  EXPECT_EQ(odbc.takeLog(), Strings());  // there is no batch: the statement is left alone
  ASSERT_EQ(connection->createBatch("insert ?,?,?"), kSuccess);
  EXPECT_EQ(connection->createBatch("insert ?,?,?"), kFailure);
  EXPECT_EQ(connection->addToBatch(two), kSuccess);
  EXPECT_EQ(connection->addToBatch(one), kFailure);
  EXPECT_EQ(connection->addToBatch({two[0], two[1], one[0]}), kSuccess);
  odbc.answer("SQLExecute", failing());
  EXPECT_EQ(connection->executeBatch(status), kFailure);
  EXPECT_EQ(connection->addToBatch(two), kFailure);  // the batch has ended all the same
  ASSERT_EQ(connection->createBatch("insert ?,?,?"), kSuccess);
  odbc.takeLog();
  odbc.answer("SQLPrepare", failing());
  EXPECT_EQ(connection->clearBatch(), kSuccess);  // whatever the statement makes of it
  EXPECT_EQ(odbc.takeLog().back(), "SQLPrepare(\"insert ?,?,?\")");
  EXPECT_EQ(connection->addToBatch(two), kFailure);
  EXPECT_EQ(log.take(),
            (Strings{std::string("801021-3_ERROR_EXECUTING_BATCH|insert ?,?,?|") + kDiagnostic,
                     std::string("801019-3_ERROR_CLEARING_BATCH|") + kDiagnostic + '|'}));
  odbc.executions.clear();
  ASSERT_EQ(connection->createBatch("insert ?,?"), kSuccess);
  EXPECT_EQ(connection->executeBatch(status), kSuccess);  // without a row: runs nothing
  EXPECT_EQ(status, std::vector<int>());
  EXPECT_TRUE(odbc.executions.empty());
}

}  // namespace
}  // namespace KORVEX::Zel::DB
