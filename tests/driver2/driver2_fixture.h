#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/host.h"
#include "standin/property_data_service.h"
#include "tests/support/fake_odbc_client.h"

namespace KORVEX::Zel::DB {

using Strings = std::vector<std::string>;
using Cells = std::vector<DataTypes::DataValue>;
using Types = std::vector<unsigned int>;

inline fake::Answer failing(const char* state = "42000") {
  return fake::failure(state, 7, "no");
}

// A driver and a second-generation connection over the scripted ODBC.
class Driver2Fixture : public ::testing::Test {
 protected:
  void SetUp() override {
    odbc.reset();
    driver.reset(FactoryDriver("odbc"));
    error = driver->createError("");
  }

  void TearDown() override {
    close();
    driver->releaseError(error);
    driver.reset();
    EXPECT_EQ(odbc.liveHandles(), Strings());
  }

  void make(bool safe) {
    const PropertyDataService service("service", {{"DSN", fake::kDataSource},
                                                  {"User", "u"},
                                                  {"Password", "p"},
                                                  {"SafeTransfer", safe ? "true" : "false"}});
    connection = driver->createConnection2(service, error);
  }

  void open(bool safe) {
    make(safe);
    ASSERT_NE(connection, nullptr);
    ASSERT_EQ(connection->connect(error), 0);
    odbc.takeLog();
  }

  void close() {
    if (connection != nullptr) driver->releaseConnection2(connection, error);
    connection = nullptr;
  }

  PreparedStatement* prepare(const char* sql) {
    return connection->createPreparedStatement(sql, error);
  }

  PreparedStatement* prepare(const char* sql, const Types& types) {
    return connection->createPreparedStatement(sql, static_cast<int>(types.size()), types.data(),
                                               false, error);
  }

  // A statement on the first row of a result.
  PreparedStatement* firstRow(std::vector<fake::ColumnDescription> columns,
                              std::vector<fake::Cell> cells, const Types& types) {
    odbc.results["q"] = {{std::move(columns), {std::move(cells)}}};
    PreparedStatement* statement = prepare("q", types);
    bool more = false;
    EXPECT_NE(statement, nullptr) << error->getErrorString();
    EXPECT_EQ(statement->execute(error), 0) << error->getErrorString();
    EXPECT_EQ(statement->nextResultSet(more, error), 0);
    EXPECT_EQ(statement->hasMoreData(more, error), 0);
    EXPECT_TRUE(more);
    odbc.takeLog();
    return statement;
  }

  // "source|text" of the record.
  std::string said() const {
    return std::string(error->getErrorSource()) + '|' + error->getErrorString();
  }

  fake::FakeOdbc& odbc = fake::fakeOdbc();
  std::unique_ptr<Driver> driver;
  DBError* error = nullptr;
  Connection2* connection = nullptr;
};

}  // namespace KORVEX::Zel::DB
