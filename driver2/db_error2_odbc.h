#pragma once

#include "host/db_error2.h"

namespace KORVEX::Zel::DB::ODBC {

// The error record of this driver: the server's, and how it is filled from ODBC diagnostics.
class DBError2Odbc final : public DBError2 {
 public:
  DBError2Odbc() = default;
  // A record with the given text (null: the empty one).
  explicit DBError2Odbc(const char* text);

  // Fills the record from the return code of an ODBC call on `handle` (`handleType`: 1 environment,
  // 2 connection, 3 statement): the text starts with "[rc]"; for SQL_ERROR and
  // SQL_SUCCESS_WITH_INFO
  // "[SQLSTATE]" and the message of the first diagnostic record follow, and its native code and
  // SQLSTATE are stored. Sets the connection-error flag for a lost link and never clears it. The
  // error source and the service stay as they are. Never throws: without memory the text is cut.
  void processOdbcError(short handleType, void* handle, short rc) noexcept;

 private:
  void appendDiagnostic(short handleType, void* handle);
};

// Writes a failed ODBC call into `error` (may be null) with the error source "odbc"; returns -1.
int failOdbc(DBError* error, short handleType, void* handle, short rc) noexcept;

// Writes a failure that the driver itself has found into `error` (may be null) with the error
// source "dbaccess"; returns -1.
int failAccess(DBError* error, const char* text) noexcept;

// failAccess with "not connected", and the connection-error flag set.
int failNotConnected(DBError* error) noexcept;

}  // namespace KORVEX::Zel::DB::ODBC
