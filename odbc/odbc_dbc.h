#pragma once

#include <string>

#include "odbc/odbc.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcCatalog;
class OdbcStmt;

// A connection to a data source. It never commits on its own.
class OdbcDbc : public virtual Odbc {
 public:
  // In slot order.
  // Which product the last connect reached: "MSSQL", "OPX", "WH", "DB2", "ORACLE", "POSTGRESQL",
  // "MYSQL", "VELTA" or "OTHERS"; empty before the first.
  virtual std::string GetDatabaseType() = 0;
  // A new statement. It belongs to the connection; the caller may delete it earlier, and must not
  // touch it after Disconnect. Null when ODBC refuses.
  virtual OdbcStmt* CreateStmt() = 0;
  // Disconnects if need be, connects (SQLConnect) and asks for the product's name (SQLGetInfo).
  // e_Error: not connected, unless IsConnected() says that only the question for the name failed.
  virtual e_Status Connect(const std::string& dsn, const std::string& user,
                           const std::string& password) = 0;
  // SQLEndTran, SQLDisconnect, both answers ignored: rolls back, deletes every statement and
  // catalog query of the connection and disconnects. Always e_Ok; does nothing when not connected.
  virtual e_Status Disconnect() = 0;
  // From a successful SQLConnect until Disconnect; a link that was lost is not noticed.
  virtual bool IsConnected() = 0;
  // Takes one of ODBC's SQL_TXN_ bits, unchecked, for the transactions to come. Most drivers refuse
  // while one is open.
  virtual e_Status SetIsolationLevel(unsigned int level) = 0;
  // End the connection's transaction (SQLEndTran).
  virtual e_Status Commit() = 0;
  virtual e_Status Rollback() = 0;

  // The catalog functions. A null text means "any"; an empty text is passed on as an empty pattern,
  // which many databases take to match nothing. The answer is a query whose rows wait to be
  // fetched, a child of the connection like a statement; null when the driver refuses, with its
  // record in the diagnostics.
  // SQLTables.
  virtual OdbcCatalog* ScanTables(const char* catalog, const char* schema, const char* table,
                                  const char* tableType) = 0;
  // SQLColumns.
  virtual OdbcCatalog* ScanTableColumns(const char* catalog, const char* schema, const char* table,
                                        const char* column) = 0;
  // SQLPrimaryKeys; the fourth text is ignored.
  virtual OdbcCatalog* ScanTablePrimaryKey(const char* catalog, const char* schema,
                                           const char* table, const char* unused) = 0;
  // SQLProcedures.
  virtual OdbcCatalog* ScanProcedures(const char* catalog, const char* schema,
                                      const char* procedure) = 0;
  // SQLProcedureColumns.
  virtual OdbcCatalog* ScanProcedureColumns(const char* catalog, const char* schema,
                                            const char* procedure, const char* column) = 0;
  // Whether statements name a table by its catalog and never by a schema (SQLGetInfo): the name
  // before the dot is then a catalog's. False too when the driver does not tell.
  virtual bool NamesTablesByCatalog() = 0;
};

}  // namespace KORVEX::Zel::DB::ODBC
