#include "odbc/odbc_error.h"

#include <sstream>

#include "odbc/odbc.h"
#include "odbc/print_record.h"

namespace KORVEX::Zel::DB {

std::string getOdbcError(ODBC::Odbc* handle) {
  std::ostringstream text;
  // Kept: the NUL that DumpInfo ends with is part of the text.
  if (handle->HasInfo()) handle->DumpInfo(text);
  return text.str();
}

int handleOdbcError(ODBC::Odbc* handle) {
  ODBC::printRecord(*handle, {"State: ", "Error code: ", "Message: "});
  return 1;
}

}  // namespace KORVEX::Zel::DB
