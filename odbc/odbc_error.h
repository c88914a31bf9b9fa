#pragma once

#include <string>

namespace KORVEX::Zel::DB {

namespace ODBC {
class Odbc;
}

// The diagnostics record of the tree that `handle` belongs to, as "[state][native error][message]"
// and one NUL, which counts in the length; empty when there is no record. `handle` must not be
// null.
std::string getOdbcError(ODBC::Odbc* handle);

// Prints the record on standard output, state, error code and message on a line each; nothing when
// there is none. Always returns 1.
int handleOdbcError(ODBC::Odbc* handle);

}  // namespace KORVEX::Zel::DB
