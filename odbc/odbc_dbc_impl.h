#pragma once

#include <string>

#include "odbc/odbc_dbc.h"
#include "odbc/odbc_impl.h"
#include "odbc/sql_handle.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcCatalogImpl;
class OdbcEnvImpl;

// A connection handle and what hangs on it: statements and catalog queries.
//
// States: made (handle allocated, attributes set), connected, and made again after Disconnect.
// Destruction disconnects first, and so rolls back.
class OdbcDbcImpl final : public OdbcImpl, public OdbcDbc {
 public:
  // A child of `env`, which must outlive it.
  explicit OdbcDbcImpl(OdbcEnvImpl* env);
  ~OdbcDbcImpl() override;

  // In slot order.
  // Allocates the handle (diagnostics from the environment), then sets manual commit and READ
  // COMMITTED, both before connecting.
  e_Status Initialize() override;
  // Disconnects, then frees the handle.
  e_Status Finalize() override;
  // The connection's handle and the environment's.
  SQLHANDLE GetHandle(e_Handle kind) override;
  SQLHANDLE GetHandle() override { return dbcHandle_.get(); }
  e_Handle GetHandleType() override { return e_Dbc; }
  std::string GetDatabaseType() override { return databaseType_; }
  OdbcStmt* CreateStmt() override;
  e_Status Connect(const std::string& dsn, const std::string& user,
                   const std::string& password) override;
  e_Status Disconnect() override;
  bool IsConnected() override { return connected_; }
  e_Status SetIsolationLevel(unsigned int level) override;
  e_Status Commit() override { return endTransaction(SQL_COMMIT); }
  e_Status Rollback() override { return endTransaction(SQL_ROLLBACK); }
  OdbcCatalog* ScanTables(const char* catalog, const char* schema, const char* table,
                          const char* tableType) override;
  OdbcCatalog* ScanTableColumns(const char* catalog, const char* schema, const char* table,
                                const char* column) override;
  OdbcCatalog* ScanTablePrimaryKey(const char* catalog, const char* schema, const char* table,
                                   const char* unused) override;
  OdbcCatalog* ScanProcedures(const char* catalog, const char* schema,
                              const char* procedure) override;
  OdbcCatalog* ScanProcedureColumns(const char* catalog, const char* schema, const char* procedure,
                                    const char* column) override;
  bool NamesTablesByCatalog() override;

  void IsConnected(bool connected) { connected_ = connected; }
  // Classifies the product by the name that its driver gives, in any mixture of cases: the first
  // keyword of a table that is found anywhere in it decides.
  void SetDatabaseType(const std::string& dbmsName);
  // Whether a batch is prepared once more after its parameters were described, for speed.
  bool preparesArraysTwice() const { return preparesArraysTwice_; }

 private:
  e_Status setIntegerAttribute(SQLINTEGER attribute, unsigned int value);
  e_Status endTransaction(SQLSMALLINT completion);
  // Allocates the handle of a catalog query and runs its function. On failure deletes the query and
  // returns null; only a failed allocation is printed.
  OdbcCatalog* InitCatalog(OdbcCatalogImpl* catalog);

  SqlHandle<SQL_HANDLE_DBC> dbcHandle_;
  SQLHANDLE envHandle_;  // the environment's
  OdbcEnvImpl* env_;
  bool connected_ = false;
  std::string databaseType_;
  bool preparesArraysTwice_ = false;
};

}  // namespace KORVEX::Zel::DB::ODBC
