#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "driver/odbc_column.h"
#include "host/database_metadata.h"

namespace KORVEX::Zel::DB {

class OdbcConnection;

// Schemas, tables and columns of a connection's database, read with catalog queries and kept until
// they are refreshed. Every operation returns 1 or 3; failures are logged and their texts collected
// for getLastErrors. Column indexes count from 0. Nothing throws.
//
// A table is named by a schema and its name. Without a schema, "schema.table" is split at its last
// dot unless a table has the whole name; and of several tables of one name the one counts that the
// table list shows. Tables that the list leaves out (system tables, materialised views) are found
// by their name. Where the database has catalogs and no schemas, a catalog's name stands for the
// schema's.
class OdbcDatabaseMetadata final : public DatabaseMetadata {
 public:
  explicit OdbcDatabaseMetadata(OdbcConnection& connection);
  ~OdbcDatabaseMetadata() override;

  // In slot order.
  ResultCode getSchemaNames(std::vector<std::string>& names) override;
  ResultCode getTableNames(std::vector<std::string>& names) override;
  // 0 columns for a table that is not there.
  ResultCode getTableNumColumns(const std::string& table, int& count) override;
  ResultCode getTableColumnName(const std::string& table, int index, std::string& name) override;
  ResultCode getTableColumnType(const std::string& table, int index, unsigned int& type) override;
  ResultCode getTableColumnPrimaryKey(const std::string& table, int index,
                                      bool& primaryKey) override;
  ResultCode getTableColumnInfo(const std::string& table, int index, std::string& name,
                                unsigned int& type) override;
  // A null column for an index outside the table. The column lasts until its table is refreshed.
  ResultCode getTableColumnInfo(const std::string& table, int index,
                                const Column*& column) override;
  void getLastErrors(std::string& errors) override;
  ResultCode getTableAllColumnInfo(const std::string& table, bool refresh) override;

  // The same for a table of a given schema; an empty schema is any.
  ResultCode getTableNames(const std::string& schema, std::vector<std::string>& names);
  ResultCode getTableNumColumns(const std::string& schema, const std::string& table, int& count);
  ResultCode getTableColumnName(const std::string& schema, const std::string& table, int index,
                                std::string& name);
  ResultCode getTableColumnType(const std::string& schema, const std::string& table, int index,
                                unsigned int& type);
  ResultCode getTableColumnPrimaryKey(const std::string& schema, const std::string& table,
                                      int index, bool& primaryKey);
  ResultCode getTableColumnInfo(const std::string& schema, const std::string& table, int index,
                                std::string& name, unsigned int& type);
  ResultCode getTableColumnInfo(const std::string& schema, const std::string& table, int index,
                                const Column*& column);
  ResultCode getTableAllColumnInfo(const std::string& schema, const std::string& table,
                                   bool refresh);

  // Forgets every list, so that the next question reads the database again.
  void invalidate();

 private:
  // A table as the table list shows it; catalog and schema are empty where the database has none.
  struct Table {
    std::string catalog;
    std::string schema;
    std::string name;
  };
  // A column scan's row and the table it belongs to.
  struct ScannedColumn {
    Table table;
    OdbcColumn column;
  };
  using TableKey = std::pair<std::string, std::string>;  // schema, name as asked for
  using Columns = std::vector<OdbcColumn>;

  static bool sameTable(const Table& a, const Table& b);
  static const std::string& qualifierOf(const Table& table);
  ResultCode loadTables(const std::string& schema, const std::vector<Table>*& tables);
  ResultCode scanSchemas(std::vector<std::string>& names);
  ResultCode scanTables(const std::string& schema, std::vector<Table>& tables);
  ResultCode loadColumns(const std::string& schema, const std::string& table, Columns& columns);
  ResultCode scanColumns(const Table& table, std::vector<ScannedColumn>& columns);
  ResultCode keepOneTable(const std::string& schema, std::vector<ScannedColumn>& columns);
  ResultCode markPrimaryKeys(const Table& table, Columns& columns);
  bool isListedElsewhere(Table& table);
  ResultCode splitName(const std::string& name, Table& table);
  // The kept columns of a table, read first if need be; null after a failure.
  const Columns* columnsOf(const std::string& schema, const std::string& table);
  const OdbcColumn* columnAt(const std::string& schema, const std::string& table, int index);
  bool isHidden(const Table& table) const;
  // Which of its arguments a catalog function is to get for a schema asked for; null for any.
  struct Qualifier {
    const char* catalog = nullptr;
    const char* schema = nullptr;
  };
  Qualifier qualifierFor(const std::string& schema) const;
  // Logs and collects the connection's diagnostic; returns 3.
  ResultCode fail(const char* key);

  OdbcConnection& connection_;
  std::optional<std::vector<std::string>> schemas_;
  std::map<std::string, std::vector<Table>> tables_;  // by the schema asked for
  std::map<TableKey, Columns> columns_;
  std::string errors_;
};

}  // namespace KORVEX::Zel::DB
