#include "odbc/odbc_error.h"

#include <iostream>
#include <sstream>

#include "odbc/odbc.h"

namespace KORVEX::Zel::DB {

std::string getOdbcError(ODBC::Odbc* handle) {
  std::ostringstream text;
  // Kept: the NUL that DumpInfo ends with is part of the text.
  if (handle->HasInfo()) handle->DumpInfo(text);
  return text.str();
}

int handleOdbcError(ODBC::Odbc* handle) {
  if (handle->HasInfo()) {
    std::string state;
    long nativeError = 0;
    std::string message;
    handle->GetInfo(state, nativeError, message);
    std::cout << "State: " << state << std::endl;
    std::cout << "Error code: " << nativeError << std::endl;
    std::cout << "Message: " << message << std::endl;
  }
  return 1;
}

}  // namespace KORVEX::Zel::DB
