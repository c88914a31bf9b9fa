#pragma once

#include <memory>
#include <string>

#include "host/driver.h"

namespace KORVEX::Zel::DB {

namespace ODBC {
class Env2Odbc;
}

// The driver plug-in: makes connections of both generations from data-service properties. Nothing
// throws. It holds no lock; the server serialises calls to a driver.
class OdbcDriver final : public Driver {
 public:
  explicit OdbcDriver(const std::string& name);
  ~OdbcDriver() override;

  // In slot order.
  // A connection that is not open yet and belongs to the caller until releaseConnection. Null when
  // the service has no "DSN" or no "User".
  Connection* createConnection(const DataService& service) override;
  // Closes and deletes the connection. Always 1.
  ResultCode releaseConnection(Connection* connection) override;
  DBError* createError(const char* text) override;
  // Null is ignored.
  void releaseError(DBError* error) override;
  // A connection that is not connected yet; null, with `error` filled, when the environment or the
  // connection could not be made. `error` must be given.
  Connection2* createConnection2(const DataService& service, DBError* error) override;
  // Disconnects and deletes the connection; null is accepted. Always 0.
  int releaseConnection2(Connection2* connection, DBError* error) override;
  // Does nothing. Always 1.
  ResultCode initialize() override;

 private:
  std::unique_ptr<ODBC::Env2Odbc> env2_;  // from the first second-generation connection on
};

}  // namespace KORVEX::Zel::DB
