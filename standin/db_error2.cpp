#include "host/db_error2.h"

namespace KORVEX::Zel::DB {

DBError2::DBError2() = default;

const char* DBError2::getService() const {
  return service.c_str();
}

int DBError2::getNativeErrorCode() const {
  return nativeErrorCode;
}

const char* DBError2::getErrorString() const {
  return errorString.c_str();
}

bool DBError2::isConnectionError() const {
  return connectionError;
}

bool DBError2::isSuccessWithInfo() const {
  return false;
}

const char* DBError2::toString() const {
  return getErrorString();
}

const char* DBError2::getErrorSource() const {
  return errorSource.c_str();
}

}  // namespace KORVEX::Zel::DB
