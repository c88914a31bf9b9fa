#pragma once

#include "odbc/odbc_env.h"
#include "odbc/odbc_impl.h"
#include "odbc/sql_handle.h"

namespace KORVEX::Zel::DB::ODBC {

// The environment: the root of its tree, declared as an ODBC 3 application.
class OdbcEnvImpl final : public OdbcImpl, public OdbcEnv {
 public:
  OdbcEnvImpl() : OdbcImpl(nullptr) {}
  ~OdbcEnvImpl() override;

  // In slot order.
  // SQLAllocHandle, then SQLSetEnvAttr for ODBC 3. The allocation leaves no record: there is no
  // handle yet to read one from.
  e_Status Initialize() override;
  e_Status Finalize() override;
  SQLHANDLE GetHandle(e_Handle kind) override;
  SQLHANDLE GetHandle() override { return envHandle_.get(); }
  e_Handle GetHandleType() override { return e_Env; }
  OdbcDbc* CreateDbc() override;
  e_Status Commit() override { return endTransactions(SQL_COMMIT); }
  e_Status Rollback() override { return endTransactions(SQL_ROLLBACK); }

 private:
  // SQLEndTran on the environment: all connections at once.
  e_Status endTransactions(SQLSMALLINT completion);

  SqlHandle<SQL_HANDLE_ENV> envHandle_;
};

}  // namespace KORVEX::Zel::DB::ODBC
