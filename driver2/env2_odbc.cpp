#include "driver2/env2_odbc.h"

#include <sqlext.h>

#include "driver2/connection2_odbc.h"
#include "driver2/db_error2_odbc.h"
#include "driver2/transfer_policy.h"

namespace KORVEX::Zel::DB::ODBC {

Env2Odbc::~Env2Odbc() {
  if (env_ != SQL_NULL_HENV) SQLFreeHandle(SQL_HANDLE_ENV, env_);
}

int Env2Odbc::initialize(DBError* error) {
  SQLRETURN rc = SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env_);
  if (rc == SQL_SUCCESS) {
    rc = SQLSetEnvAttr(env_, SQL_ATTR_ODBC_VERSION,
                       reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),  // NOLINT: as ODBC wants it
                       SQL_IS_UINTEGER);
  }
  if (rc == SQL_SUCCESS) return 0;
  static_cast<DBError2Odbc*>(error)->processOdbcError(SQL_HANDLE_ENV, env_, rc);
  return -1;
}

// Kept: a connection whose initialisation failed stays allocated. It happens only when the driver
// manager cannot make a handle, and nobody may hold on to the object.
Connection2Odbc* Env2Odbc::createConnection2(const char* dsn, const char* user,
                                             const TransferPolicy& policy, DBError* error) {
  auto* connection = new Connection2Odbc(this, dsn, user, policy);
  return connection->initialize(error) == 0 ? connection : nullptr;
}

Connection2Odbc* Env2Odbc::createConnection2(const char* dsn, const char* user, DBError* error) {
  return createConnection2(dsn, user, kPlainTransfer, error);
}

int Env2Odbc::releaseConnection2(Connection2Odbc* connection, DBError* /*error*/) {
  delete connection;
  return 0;
}

}  // namespace KORVEX::Zel::DB::ODBC
