// The catalogue operations of OdbcConnection, and the creation of tables.

#include <algorithm>

#include "driver/odbc_connection.h"
#include "driver/odbc_database_metadata.h"
#include "driver/odbc_statement.h"
#include "driver2/boundary.h"

namespace KORVEX::Zel::DB {

namespace {

std::string quoted(const std::string& name) {
  return '"' + name + '"';
}

// "schema"."table", or "table" alone when there is no schema.
std::string qualifiedName(const std::string& schema, const std::string& table) {
  return schema.empty() ? quoted(table) : quoted(schema) + '.' + quoted(table);
}

}  // namespace

OdbcDatabaseMetadata& OdbcConnection::metadata() {
  if (metadata_ == nullptr) metadata_ = std::make_unique<OdbcDatabaseMetadata>(*this);
  return *metadata_;
}

template <typename Operation>
ResultCode OdbcConnection::askMetadata(Operation operation) {
  return guarded(kFailure, [&] {
    OdbcDatabaseMetadata& catalogue = metadata();
    const ResultCode result = operation(catalogue);
    if (result != kSuccess) catalogue.getLastErrors(lastErrors_);
    return result;
  });
}

ResultCode OdbcConnection::getSchemaNames(std::vector<std::string>& names) {
  return askMetadata([&](auto& catalogue) { return catalogue.getSchemaNames(names); });
}

ResultCode OdbcConnection::getTableNames(std::vector<std::string>& names) {
  return askMetadata([&](auto& catalogue) { return catalogue.getTableNames(names); });
}

ResultCode OdbcConnection::getTableNames(const std::string& schema,
                                         std::vector<std::string>& names) {
  return askMetadata([&](auto& catalogue) { return catalogue.getTableNames(schema, names); });
}

ResultCode OdbcConnection::getTableNumColumns(const std::string& table, int& count) {
  return askMetadata([&](auto& catalogue) { return catalogue.getTableNumColumns(table, count); });
}

ResultCode OdbcConnection::getTableNumColumns(const std::string& schema, const std::string& table,
                                              int& count) {
  return askMetadata(
      [&](auto& catalogue) { return catalogue.getTableNumColumns(schema, table, count); });
}

ResultCode OdbcConnection::getTableColumnPrimaryKey(const std::string& table, int index,
                                                    bool& primaryKey) {
  return askMetadata([&](auto& catalogue) {
    return catalogue.getTableColumnPrimaryKey(table, index, primaryKey);
  });
}

ResultCode OdbcConnection::getTableColumnPrimaryKey(const std::string& schema,
                                                    const std::string& table, int index,
                                                    bool& primaryKey) {
  return askMetadata([&](auto& catalogue) {
    return catalogue.getTableColumnPrimaryKey(schema, table, index, primaryKey);
  });
}

ResultCode OdbcConnection::getTableColumnInfo(const std::string& table, int index,
                                              std::string& name, unsigned int& type) {
  return askMetadata(
      [&](auto& catalogue) { return catalogue.getTableColumnInfo(table, index, name, type); });
}

ResultCode OdbcConnection::getTableColumnInfo(const std::string& table, int index,
                                              const Column*& column) {
  return askMetadata(
      [&](auto& catalogue) { return catalogue.getTableColumnInfo(table, index, column); });
}

ResultCode OdbcConnection::getTableColumnInfo(const std::string& schema, const std::string& table,
                                              int index, std::string& name, unsigned int& type) {
  return askMetadata([&](auto& catalogue) {
    return catalogue.getTableColumnInfo(schema, table, index, name, type);
  });
}

ResultCode OdbcConnection::getTableColumnInfo(const std::string& schema, const std::string& table,
                                              int index, const Column*& column) {
  return askMetadata(
      [&](auto& catalogue) { return catalogue.getTableColumnInfo(schema, table, index, column); });
}

// Kept: names stand between double quotes as they are; quotes within them are not doubled.
ResultCode OdbcConnection::getCreateTableSql(const std::string& schema, const std::string& table,
                                             const std::vector<std::string>& names,
                                             const std::vector<unsigned int>& types,
                                             const std::vector<bool>& keys, bool plainTable,
                                             std::string& sql) const {
  if (types.size() < names.size() || keys.size() < names.size()) return kFailure;
  const OdbcColumn describer;
  std::string columns;
  std::string keyNames;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) columns += ", ";
    columns += quoted(names[i]) + ' ' + describer.getSqlTypeString(types[i], keys[i]);
    if (keys[i]) keyNames += (keyNames.empty() ? "" : ", ") + quoted(names[i]);
  }
  sql = plainTable ? "CREATE TABLE " : "CREATE COLUMN TABLE ";
  sql += qualifiedName(schema, table) + " (" + columns;
  if (!keyNames.empty()) sql += ", PRIMARY KEY (" + keyNames + ')';
  sql += ')';
  return kSuccess;
}

// A failed drop is logged by the statement; the creation then says what is wrong.
ResultCode OdbcConnection::dropIfThere(const std::string& schema, const std::string& table) {
  std::vector<std::string> tables;
  const ResultCode listed = schema.empty() ? getTableNames(tables) : getTableNames(schema, tables);
  if (listed != kSuccess) return listed;
  if (std::ranges::find(tables, table) != tables.end()) {
    int rows = 0;
    executeUpdate("drop table " + qualifiedName(schema, table), {}, rows);
  }
  return kSuccess;
}

ResultCode OdbcConnection::createTable(const std::string& schema, const std::string& table,
                                       const std::vector<std::string>& names,
                                       const std::vector<unsigned int>& types,
                                       const std::vector<bool>& keys, bool plainTable,
                                       bool /*unused*/) {
  return guarded(kFailure, [&] {
    metadata().invalidate();
    if (dropIfThere(schema, table) != kSuccess) return kFailure;
    std::string sql;
    if (getCreateTableSql(schema, table, names, types, keys, plainTable, sql) != kSuccess) {
      return kFailure;
    }
    int rows = 0;
    const ResultCode result = executeUpdate(sql, {}, rows);
    metadata().invalidate();
    return result;
  });
}

ResultCode OdbcConnection::createTable(const std::string& table,
                                       const std::vector<std::string>& names,
                                       const std::vector<unsigned int>& types,
                                       const std::vector<bool>& keys, bool plainTable,
                                       bool unused) {
  return createTable("", table, names, types, keys, plainTable, unused);
}

}  // namespace KORVEX::Zel::DB
