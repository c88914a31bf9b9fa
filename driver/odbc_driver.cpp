#include "driver/odbc_driver.h"

#include "driver/odbc_connection.h"
#include "driver2/boundary.h"
#include "driver2/connection2_odbc.h"
#include "driver2/db_error2_odbc.h"
#include "driver2/env2_odbc.h"
#include "driver2/transfer_policy.h"
#include "driver2/wipe.h"
#include "host/data_service.h"

namespace KORVEX::Zel::DB {

namespace {

// What a data service says about its connection.
struct ServiceProperties {
  explicit ServiceProperties(const DataService& service)
      : dsn(service.getPropertyValueAsString("DSN", "")),
        user(service.getPropertyValueAsString("User", "")),
        password(service.getPropertyValueAsString("Password", "")),
        databaseType(service.getPropertyValueAsString("DatabaseType", "")),
        writeBigIntAsChar(service.getPropertyValueAsBool("WriteBigIntAsChar", false)),
        safeTransfer(service.getPropertyValueAsBool("SafeTransfer", false)) {}
  ~ServiceProperties() { wipe(password); }
  ServiceProperties(const ServiceProperties&) = delete;
  ServiceProperties& operator=(const ServiceProperties&) = delete;

  std::string dsn;
  std::string user;
  std::string password;
  std::string databaseType;
  bool writeBigIntAsChar;
  bool safeTransfer;
};

}  // namespace

OdbcDriver::OdbcDriver(const std::string& name) : Driver(name) {}

OdbcDriver::~OdbcDriver() = default;

Connection* OdbcDriver::createConnection(const DataService& service) {
  return guarded<Connection*>(nullptr, [&]() -> Connection* {
    const ServiceProperties properties(service);
    if (properties.dsn.empty() || properties.user.empty()) return nullptr;
    auto connection = std::make_unique<OdbcConnection>(
        properties.dsn, properties.databaseType, properties.user, properties.password,
        properties.writeBigIntAsChar, properties.safeTransfer);
    connection->setDriver(this);
    connection->setServiceName(service.getName());
    return connection.release();
  });
}

ResultCode OdbcDriver::releaseConnection(Connection* connection) {
  if (connection != nullptr) connection->close();
  delete connection;
  return kSuccess;
}

DBError* OdbcDriver::createError(const char* text) {
  return guarded<DBError*>(nullptr, [&] { return new ODBC::DBError2Odbc(text); });
}

void OdbcDriver::releaseError(DBError* error) {
  delete static_cast<ODBC::DBError2Odbc*>(error);
}

// Kept: an environment that failed to initialise stays, and is not initialised again.
Connection2* OdbcDriver::createConnection2(const DataService& service, DBError* error) {
  return guarded<Connection2*>(nullptr, [&]() -> Connection2* {
    if (env2_ == nullptr) {
      env2_ = std::make_unique<ODBC::Env2Odbc>();
      if (env2_->initialize(error) != 0) return nullptr;
    }
    const ServiceProperties properties(service);
    const ODBC::TransferPolicy& policy =
        properties.safeTransfer ? ODBC::kSafeTransfer : ODBC::kPlainTransfer;
    const auto release = [this](ODBC::Connection2Odbc* made) {
      env2_->releaseConnection2(made, nullptr);
    };
    std::unique_ptr<ODBC::Connection2Odbc, decltype(release)> connection(
        env2_->createConnection2(properties.dsn.c_str(), properties.user.c_str(), policy, error),
        release);
    if (connection == nullptr) return nullptr;
    connection->setService(service.getName());
    connection->clearProperties();
    connection->setConnectionProperty("Password", properties.password.c_str());
    connection->setConnectionProperty("DatabaseType", properties.databaseType.c_str());
    return connection.release();
  });
}

int OdbcDriver::releaseConnection2(Connection2* connection, DBError* error) {
  if (env2_ == nullptr) return 0;
  return env2_->releaseConnection2(static_cast<ODBC::Connection2Odbc*>(connection), error);
}

ResultCode OdbcDriver::initialize() {
  return kSuccess;
}

}  // namespace KORVEX::Zel::DB
