#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/connection.h"
#include "odbc/odbc_dbc.h"
#include "odbc/odbc_env.h"

namespace KORVEX::Zel::DB {

class OdbcDatabaseMetadata;
class OdbcStatement;

// A first-generation connection: one ODBC connection in manual-commit mode, at most one current
// statement, and the catalogue of its database. Every operation returns 1 for success or 3 for
// failure; a failure is logged, and the texts of ODBC failures collect for getLastErrors.
// Nothing throws. One caller at a time.
class OdbcConnection final : public Connection {
 public:
  // Makes the ODBC environment; nothing is connected before open().
  // `databaseType`: forced by configuration, or empty to take what the driver reports.
  // `writeBigIntAsChar`: 64-bit integers and intervals are bound as text.
  // `safeTransfer`: an update that hits no row succeeds with 0 rows, and dates before 1970 are read
  // right in every time zone.
  OdbcConnection(const std::string& dsn, const std::string& databaseType, const std::string& user,
                 const std::string& password, bool writeBigIntAsChar, bool safeTransfer = false);
  // Frees the statement, the metadata and, with the environment, every handle below it; an open
  // connection is rolled back and disconnected.
  ~OdbcConnection() override;

  // In slot order.
  ResultCode open() override;
  // Rolls back, disconnects and frees the statements' handles. Always 1.
  ResultCode close() override;
  ResultCode commit() override;
  ResultCode rollback() override;
  // Makes a new current statement; `maxRows` is not applied. The result set belongs to it.
  ResultCode executeQuery(const std::string& sql, const std::vector<Parameter>& params, int maxRows,
                          ResultSet*& resultSet) override;
  ResultCode executeUpdate(const std::string& sql, const std::vector<Parameter>& params,
                           int& rows) override;
  ResultCode nextResultSet(bool& more) override;
  ResultCode getResultSet(ResultSet*& resultSet) override;
  ResultCode createBatch(const std::string& sql) override;
  // Refuses a row with fewer parameters than the first row of the batch.
  ResultCode addToBatch(const std::vector<Parameter>& params) override;
  ResultCode clearBatch() override;
  // One status a row: 0 done, -1 not. The batch has ended whatever the result.
  ResultCode executeBatch(std::vector<int>& status) override;
  ResultCode getSchemaNames(std::vector<std::string>& names) override;
  ResultCode getTableNames(std::vector<std::string>& names) override;
  ResultCode getTableNumColumns(const std::string& table, int& count) override;
  ResultCode getTableColumnPrimaryKey(const std::string& table, int index,
                                      bool& primaryKey) override;
  ResultCode getTableColumnInfo(const std::string& table, int index, std::string& name,
                                unsigned int& type) override;
  ResultCode getTableColumnInfo(const std::string& table, int index,
                                const Column*& column) override;
  // Creates a table, after dropping one of the same name. `plainTable` false makes a column table.
  ResultCode createTable(const std::string& table, const std::vector<std::string>& names,
                         const std::vector<unsigned int>& types, const std::vector<bool>& keys,
                         bool plainTable, bool unused) override;
  ResultCode getTableNames(const std::string& schema, std::vector<std::string>& names) override;
  ResultCode getTableNumColumns(const std::string& schema, const std::string& table,
                                int& count) override;
  ResultCode getTableColumnPrimaryKey(const std::string& schema, const std::string& table,
                                      int index, bool& primaryKey) override;
  ResultCode getTableColumnInfo(const std::string& schema, const std::string& table, int index,
                                std::string& name, unsigned int& type) override;
  ResultCode getTableColumnInfo(const std::string& schema, const std::string& table, int index,
                                const Column*& column) override;
  ResultCode createTable(const std::string& schema, const std::string& table,
                         const std::vector<std::string>& names,
                         const std::vector<unsigned int>& types, const std::vector<bool>& keys,
                         bool plainTable, bool unused) override;
  // The database type needs an open connection unless one is configured ("" otherwise).
  std::string getDriverProperty(const std::string& key) override;
  // The raw ODBC connection handle, or null.
  void* getHandle() override;

  // Makes the statement current, prepared (as a batch: with parameter arrays). The caller has
  // closed any earlier one.
  ResultCode createStatement(const std::string& sql, bool batch);
  // Closes and deletes the current statement, if any. Always 1.
  ResultCode closeStatement();

  // The text of the statement that creates a table; 3 when a column lacks its type or key flag.
  ResultCode getCreateTableSql(const std::string& schema, const std::string& table,
                               const std::vector<std::string>& names,
                               const std::vector<unsigned int>& types,
                               const std::vector<bool>& keys, bool plainTable,
                               std::string& sql) const;

  bool writesBigIntAsChar() const { return writeBigIntAsChar_; }
  bool transfersSafely() const { return safeTransfer_; }
  // The ODBC connection, or null before open().
  ODBC::OdbcDbc* getDbc() const { return dbc_; }

 private:
  ResultCode openHandle();
  // Forgets what hangs on the connection handle when its children are gone.
  void detachStatement();
  // Logs and collects the diagnostic of a handle (null: the empty text, not collected); returns 3.
  ResultCode fail(const char* key, ODBC::Odbc* source);
  void collectError(const std::string& text);
  ResultCode endTransaction(const char* key, ODBC::Odbc::e_Status (ODBC::OdbcDbc::*end)());
  ResultCode newStatement(const std::string& sql, bool batch);
  OdbcDatabaseMetadata& metadata();
  // Runs a catalogue operation of the metadata object and collects its errors.
  template <typename Operation>
  ResultCode askMetadata(Operation operation);
  ResultCode dropIfThere(const std::string& schema, const std::string& table);

  std::string dsn_;
  std::string databaseType_;
  bool writeBigIntAsChar_;
  bool safeTransfer_;
  std::unique_ptr<ODBC::OdbcEnv> environment_;
  ODBC::OdbcDbc* dbc_ = nullptr;  // a child of the environment, freed with it
  std::unique_ptr<OdbcStatement> statement_;
  std::unique_ptr<OdbcDatabaseMetadata> metadata_;
};

}  // namespace KORVEX::Zel::DB
