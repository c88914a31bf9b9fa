#include <cstdlib>

#include "driver2/connection2_odbc.h"
#include "driver2/db_error2_odbc.h"
#include "tests/driver2/driver2_fixture.h"

namespace KORVEX::Zel::DB {
namespace {

using ODBC::DBError2Odbc;

TEST(DBError2OdbcTest, ForgetsWhatItHeld) {
  DBError2Odbc record("start");
  EXPECT_STREQ(record.toString(), "start");
  record.nativeErrorCode = 5;
  record.processOdbcError(SQL_HANDLE_ENV, nullptr, SQL_SUCCESS);
  EXPECT_STREQ(record.getErrorString(), "[0]");
  EXPECT_EQ(record.getNativeErrorCode(), 0);
  record.nativeErrorCode = 5;
  record.processOdbcError(SQL_HANDLE_ENV, nullptr, SQL_NO_DATA);
  EXPECT_STREQ(record.getErrorString(), "[100]No data");
  EXPECT_EQ(record.getNativeErrorCode(), 5);
}

TEST(DBError2OdbcTest, IsMadeByTheDriverWithItsTextAlone) {
  const std::unique_ptr<Driver> driver(FactoryDriver("odbc"));
  DBError* error = driver->createError("start");
  EXPECT_STREQ(error->getErrorString(), "start");
  EXPECT_STREQ(error->getService(), "");
  EXPECT_STREQ(error->getErrorSource(), "");
  EXPECT_EQ(error->getNativeErrorCode(), 0);
  EXPECT_FALSE(error->isConnectionError());
  driver->releaseError(error);
}

class Connection2Test : public Driver2Fixture {
 protected:
  const DBError2Odbc& record() const { return static_cast<const DBError2Odbc&>(*error); }
};

TEST_F(Connection2Test, ClassifiesSqlStates) {
  struct Case {
    const char* state;
    bool flagBefore;
    bool flagAfter;
  };
  const Case kCases[] = {{"HY000", false, false}, {"HY000", true, true},  {"08003", false, true},
                         {"08007", false, true},  {"08S01", false, true}, {"08001", false, false},
                         {"42000", true, true}};
  open(false);
  for (const Case& c : kCases) {
    auto& writable = static_cast<DBError2Odbc&>(*error);
    writable.connectionError = c.flagBefore;
    writable.service = "kept";
    odbc.answer("SQLEndTran", failing(c.state));
    EXPECT_EQ(connection->commit(error), -1);
    EXPECT_EQ(said(), std::string("odbc|[-1][") + c.state + "]no");
    EXPECT_EQ(record().getNativeErrorCode(), 7);
    EXPECT_STREQ(record().sqlState, c.state);
    EXPECT_EQ(error->isConnectionError(), c.flagAfter) << c.state;
    EXPECT_STREQ(error->getService(), "kept");
    EXPECT_FALSE(error->isSuccessWithInfo());
  }
  odbc.answer("SQLEndTran", fake::failure("42000", 7, std::string(600, 'm')));
  EXPECT_EQ(connection->commit(error), -1);
  EXPECT_EQ(said(), "odbc|[-1][42000]" + std::string(511, 'm'));
  odbc.answer("SQLEndTran", fake::failureWithoutRecord());
  EXPECT_EQ(connection->rollback(error), -1);
  EXPECT_EQ(said(), "odbc|[-1][]");
}

TEST_F(Connection2Test, ConnectsOnceWithItsProperties) {
  make(false);
  EXPECT_EQ(odbc.takeLog(),
            (Strings{"SQLAllocHandle(1)", "SQLSetEnvAttr(200,3,-5)", "SQLAllocHandle(2)",
                     "SQLSetConnectAttr(102,0,-5)", "SQLSetConnectAttr(108,2,-5)"}));
  auto* own = static_cast<ODBC::Connection2Odbc*>(connection);
  EXPECT_EQ(own->initialize(error), 0);
  EXPECT_EQ(odbc.takeLog(), Strings());
  EXPECT_STREQ(connection->getImplementationName(), "generic odbc v2.0.0");
  EXPECT_STREQ(connection->getService(), "service");
  EXPECT_EQ(connection->disconnect(false, error), 0);
  EXPECT_EQ(connection->createPreparedStatement("q", nullptr, false, error), nullptr);
  EXPECT_EQ(said(), "dbaccess|not implemented");
  EXPECT_FALSE(error->isConnectionError());
  EXPECT_EQ(prepare("q"), nullptr);
  EXPECT_EQ(said(), "dbaccess|not connected");
  EXPECT_TRUE(error->isConnectionError());
  EXPECT_EQ(connection->commit(error), -1);
  EXPECT_EQ(connection->rollback(error), -1);
  EXPECT_EQ(connection->connect(error), 0);
  EXPECT_EQ(connection->connect(error), 0);
  EXPECT_EQ(odbc.takeLog(), (Strings{"SQLConnect(\"fake\",\"u\",\"p\")"}));
  EXPECT_EQ(connection->disconnect(true, error), 0);
  own->clearProperties();
  EXPECT_EQ(connection->connect(error), 0);
  EXPECT_EQ(odbc.takeLog().back(), "SQLConnect(\"fake\",\"u\",\"\")");
}

// A driver may say that a commit over a link it knows to be lost has succeeded.
TEST_F(Connection2Test, CommitsOverALostLinkFailSafely) {
  for (const bool safe : {false, true}) {
    open(safe);
    odbc.linksLost = true;
    odbc.takeLog();
    EXPECT_EQ(connection->commit(error), safe ? -1 : 0);
    EXPECT_EQ(error->isConnectionError(), safe);
    EXPECT_EQ(odbc.takeLog(), (Strings{safe ? "SQLGetConnectAttr(1209,0)" : "SQLEndTran(2,0)"}));
    odbc.linksLost = false;
    if (safe) odbc.answer("SQLGetConnectAttr", failing());  // a driver that does not tell
    EXPECT_EQ(connection->commit(error), 0);
    close();
  }
}

TEST_F(Connection2Test, NamesMayBeEmpty) {
  connection = driver->createConnection2(PropertyDataService("service", {}), error);
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(connection->createPreparedStatement("q", 0, nullptr, false, error), nullptr);
  EXPECT_EQ(said(), "dbaccess|not connected");
  odbc.takeLog();
  connection->connect(error);
  EXPECT_EQ(odbc.takeLog(), (Strings{"SQLConnect(\"\",\"\",\"\")"}));
}

TEST_F(Connection2Test, SetsTheProcessZoneToUtc) {
  setenv("TZ", "UTC-5", 1);
  tzset();
  make(false);
  EXPECT_STREQ(getenv("TZ"), "UTC");
  EXPECT_EQ(timezone, 0);
}

TEST_F(Connection2Test, DisconnectsInTheOrderOfItsMode) {
  for (const bool safe : {false, true}) {
    open(safe);
    ASSERT_NE(prepare("u"), nullptr);
    odbc.takeLog();
    odbc.answer("SQLDisconnect", failing("25000"));
    EXPECT_EQ(connection->disconnect(false, error), -1);
    EXPECT_EQ(said(), "odbc|[-1][25000]no");
    EXPECT_EQ(odbc.takeLog().back(), "SQLDisconnect()");
    int count = 0;
    PreparedStatement* statement = prepare("v ?");
    ASSERT_NE(statement, nullptr);  // still connected
    EXPECT_EQ(statement->getNumberParameters(count, error), 0);
    EXPECT_EQ(count, 1);
    odbc.takeLog();
    EXPECT_EQ(connection->disconnect(false, error), 0);
    EXPECT_EQ(odbc.takeLog().front(), safe ? "SQLFreeStmt(0)" : "SQLDisconnect()");
    // Of statements whose handles are gone.
    EXPECT_EQ(said(), safe ? "odbc|[-1][25000]no" : "odbc|[-2]Invalid handle");
    EXPECT_EQ(connection->connect(error), 0);
    ASSERT_NE(prepare("u"), nullptr);
    odbc.takeLog();
    odbc.answer("SQLEndTran", failing());
    odbc.answer("SQLDisconnect", failing());
    EXPECT_EQ(connection->disconnect(true, error), 0);
    const Strings calls = odbc.takeLog();
    EXPECT_EQ(calls.front(), safe ? "SQLFreeStmt(0)" : "SQLEndTran(2,1)");
    close();
    odbc.misuses.clear();
  }
}

TEST_F(Connection2Test, ReleasesOnlyItsOwnStatements) {
  open(false);
  PreparedStatement* statement = prepare("u");
  odbc.takeLog();
  odbc.answer("SQLFreeStmt", failing());
  EXPECT_EQ(connection->releaseStatement(statement, error), -1);
  EXPECT_EQ(said(), "odbc|[-1][42000]no");
  odbc.takeLog();
  EXPECT_EQ(connection->releaseStatement(statement, error), 0);
  EXPECT_EQ(odbc.takeLog(),
            (Strings{"SQLFreeStmt(0)", "SQLFreeStmt(2)", "SQLFreeStmt(3)", "SQLFreeStmt(0)",
                     "SQLFreeStmt(2)", "SQLFreeStmt(3)", "SQLFreeHandle(3)"}));
  EXPECT_EQ(connection->releaseStatement(statement, error), -1);
  EXPECT_EQ(said(), "dbaccess|statement not found");
  EXPECT_EQ(connection->createPreparedStatement("q", nullptr, false, error), nullptr);
  EXPECT_EQ(said(), "dbaccess|not implemented");
}

TEST_F(Connection2Test, AnEnvironmentThatFailedStays) {
  odbc.answer("SQLSetEnvAttr", failing());
  make(false);
  EXPECT_EQ(connection, nullptr);
  EXPECT_STREQ(error->getErrorString(), "[-1][42000]no");
  EXPECT_STREQ(error->getErrorSource(), "");
  odbc.takeLog();
  make(false);
  EXPECT_EQ(odbc.takeLog().front(), "SQLAllocHandle(2)");
}

}  // namespace
}  // namespace KORVEX::Zel::DB
