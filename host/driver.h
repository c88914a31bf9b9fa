#pragma once

#include <string>

#include "host/export.h"
#include "host/result_code.h"

namespace KORVEX::Zel {
class DataService;
}

namespace KORVEX::Zel::DB {

class Connection;
class Connection2;
class DBError;

// A database driver plug-in: makes connections of both generations.
class ZEL_EXPORT Driver {
 public:
  // The key under which Connection::getDriverProperty gives the database type.
  static const std::string PROPERTY_KEY_DATABASE_TYPE;

  explicit Driver(const std::string& name);
  virtual ~Driver();
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  // In slot order.
  // A connection that is not open yet, or null when the service lacks what is needed.
  virtual Connection* createConnection(const DataService& service) = 0;
  virtual ResultCode releaseConnection(Connection* connection) = 0;
  virtual DBError* createError(const char* text) = 0;
  virtual void releaseError(DBError* error) = 0;
  // A connection that is not connected yet, or null with `error` filled.
  virtual Connection2* createConnection2(const DataService& service, DBError* error) = 0;
  virtual int releaseConnection2(Connection2* connection, DBError* error) = 0;
  virtual ResultCode initialize() = 0;

  const std::string& getName() const { return name_; }

 private:
  std::string name_;
};

}  // namespace KORVEX::Zel::DB

// The plug-in's one C entry point: a new driver that the caller deletes, or null.
extern "C" ZEL_EXPORT KORVEX::Zel::DB::Driver* FactoryDriver(const char* name);
