#include "odbc/odbc_env_impl.h"

#include "odbc/odbc_dbc_impl.h"
#include "odbc/sql_argument.h"

namespace KORVEX::Zel::DB::ODBC {

OdbcEnvImpl::~OdbcEnvImpl() {
  DeleteChildren();
  OdbcEnvImpl::Finalize();
}

Odbc::e_Status OdbcEnvImpl::Initialize() {
  // There is no handle yet that the diagnostics of the allocation could be read from.
  if (const e_Status status = GetStatus(envHandle_.allocate(SQL_NULL_HANDLE)); status != e_Ok) {
    return status;
  }
  return GetStatus(this, SQLSetEnvAttr(envHandle_.get(), SQL_ATTR_ODBC_VERSION,
                                       attributeValue(SQL_OV_ODBC3), SQL_IS_UINTEGER));
}

Odbc::e_Status OdbcEnvImpl::Finalize() {
  envHandle_.reset();
  return e_Ok;
}

SQLHANDLE OdbcEnvImpl::GetHandle(e_Handle kind) {
  return kind == e_Env ? envHandle_.get() : SQL_NULL_HANDLE;
}

OdbcDbc* OdbcEnvImpl::CreateDbc() {
  auto* dbc = new OdbcDbcImpl(this);
  const bool made =
      initializeOrDelete(dbc, "OdbcEnvImpl::CreateDbc()  Failed to initialize dbc.", true);
  return made ? dbc : nullptr;
}

Odbc::e_Status OdbcEnvImpl::endTransactions(SQLSMALLINT completion) {
  return GetStatus(this, SQLEndTran(SQL_HANDLE_ENV, envHandle_.get(), completion));
}

}  // namespace KORVEX::Zel::DB::ODBC
