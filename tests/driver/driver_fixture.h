#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "host/host.h"
#include "standin/property_data_service.h"
#include "tests/support/fake_odbc_client.h"
#include "tests/support/log_recorder.h"

namespace KORVEX::Zel::DB {

using Strings = std::vector<std::string>;
using Properties = PropertyDataService::Properties;

// The diagnostic that the scripted ODBC gives where a test makes a call fail.
inline fake::Answer failing() {
  return fake::failure("42000", 7, "no");
}
inline constexpr char kDiagnostic[] = "[42000][7][no]";

inline Parameter parameter(unsigned int type) {
  Parameter result;
  result.type = type;
  return result;
}

template <typename Field>
Parameter parameter(unsigned int type, Field DataTypes::DataValue::* field,
                    std::type_identity_t<Field> value) {
  Parameter result = parameter(type);
  result.value.*field = value;
  return result;
}

inline Parameter nullParameter(unsigned int type) {
  Parameter result = parameter(type);
  result.value.setNull();
  return result;
}

inline Parameter int64Parameter(unsigned int type, long value) {
  return parameter(type, &DataTypes::DataValue::int64, value);
}

inline Parameter int32Parameter(int value) {
  return parameter(DataTypes::kInteger, &DataTypes::DataValue::int32, value);
}

inline Parameter stringParameter(const char* text) {
  return parameter(DataTypes::kString, &DataTypes::DataValue::string, text);
}

// A result column, shown with a sign and a point.
inline fake::ColumnDescription column(SQLSMALLINT sqlType, SQLULEN size = 0, SQLSMALLINT digits = 0,
                                      bool isUnsigned = false) {
  return {"c", sqlType, size, digits, static_cast<SQLLEN>(size + 2), isUnsigned, SQL_NULLABLE};
}

// A driver, a log, and the scripted ODBC below; whatever a test leaves open is a fault.
class DriverFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    odbc.reset();
    driver.reset(FactoryDriver("odbc"));
  }

  void TearDown() override {
    close();
    driver.reset();
    EXPECT_EQ(odbc.liveHandles(), Strings());
    EXPECT_EQ(odbc.misuses, Strings());
  }

  void make(Properties more = {}) {
    Properties properties = {{"DSN", fake::kDataSource}, {"User", "u"}, {"Password", "p"}};
    properties.merge(more);
    connection = driver->createConnection(PropertyDataService("service", properties));
  }

  void open(Properties more = {}) {
    make(std::move(more));
    ASSERT_EQ(connection->open(), kSuccess);
    odbc.takeLog();
    log.take();
  }

  void close() {
    if (connection != nullptr) driver->releaseConnection(connection);
    connection = nullptr;
  }

  std::string lastErrors() {
    std::string errors;
    connection->getLastErrors(errors);
    return errors;
  }

  fake::FakeOdbc& odbc = fake::fakeOdbc();
  LogRecorder log;
  std::unique_ptr<Driver> driver;
  Connection* connection = nullptr;
};

}  // namespace KORVEX::Zel::DB
