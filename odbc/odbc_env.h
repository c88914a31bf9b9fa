#pragma once

#include "odbc/odbc.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcDbc;

// An ODBC environment: makes connections.
class OdbcEnv : public virtual Odbc {
 public:
  // In slot order.
  // A new connection object, not connected, in manual-commit mode and READ COMMITTED. It belongs to
  // the environment; the caller may delete it earlier. Null when ODBC refuses (the reason is
  // printed on standard output).
  virtual OdbcDbc* CreateDbc() = 0;
  // End the transactions of all connections of the environment (SQLEndTran).
  virtual e_Status Commit() = 0;
  virtual e_Status Rollback() = 0;
};

}  // namespace KORVEX::Zel::DB::ODBC
