#pragma once

#include <sql.h>

#include <cstddef>
#include <ctime>

namespace KORVEX::Zel::DB {

class DBError;

namespace ODBC {

class PreparedStatement2Odbc;

// Fetches one column of the current row. `column` counts from 0. On entry `length` is the size of
// the destination in bytes; on return the bytes delivered, or -1 for NULL. Returns 0 or -1.
using FetchRoutine = int (PreparedStatement2Odbc::*)(std::size_t column, void* destination,
                                                     int& length, DBError* error);

// How a second-generation statement moves values, in every point where the two modes differ. A
// connection is given one when it is made and hands it to its statements.
struct TransferPolicy {
  bool (*succeeded)(SQLRETURN rc);  // any ODBC call but an execution
  bool (*executed)(SQLRETURN rc);
  SQLSMALLINT (*boundCType)(unsigned int typeCode);
  SQLSMALLINT (*fetchTypeFor)(unsigned int typeCode);  // see transfer_tables.h
  FetchRoutine (*routineFor)(SQLSMALLINT fetchAs);     // null for a column that is not fetched
  long (*secondsOf)(const std::tm* time);              // since 1970-01-01 00:00:00 UTC
  bool ownIndicators;           // each parameter has an indicator and a scratch area of its own
  bool nullFlagsCount;          // null cells are sent as NULL; cells of values lose the flag
  bool closesCursor;            // an open cursor is closed before the next execution
  bool closesBeforeDisconnect;  // statements are closed before the connection, not after it
  bool asksBeforeCommit;        // a commit over a lost link fails, whatever the driver would say
};

// What servers have always met: only the return code 0 is success, and one indicator and one
// scratch area serve all parameters. Cheapest, and right where the last parameter's length suits
// all.
extern const TransferPolicy kPlainTransfer;

// Any mix of types, lengths and NULLs arrives exactly.
extern const TransferPolicy kSafeTransfer;

}  // namespace ODBC
}  // namespace KORVEX::Zel::DB
