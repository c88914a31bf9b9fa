#pragma once

#include <cstdint>
#include <string>

#include "host/db_error.h"
#include "host/export.h"

namespace KORVEX::Zel::DB {

// The error record of the second generation. A driver writes the fields; the server reads them
// through the operations.
class ZEL_EXPORT DBError2 : public DBError {
 public:
  DBError2();

  // In slot order.
  const char* getService() const override;
  int getNativeErrorCode() const override;
  const char* getErrorString() const override;
  bool isConnectionError() const override;
  bool isSuccessWithInfo() const override;  // always false
  const char* toString() const override;    // the same as getErrorString
  const char* getErrorSource() const override;

  std::string service;
  std::string errorSource;  // "odbc": from an ODBC call; "dbaccess": found by the driver itself
  std::int32_t nativeErrorCode = 0;
  std::string errorString;
  bool connectionError = false;  // the connection is lost or unusable
  char sqlState[6] = {};         // five characters and a NUL

 protected:
  ~DBError2() = default;
};

}  // namespace KORVEX::Zel::DB
