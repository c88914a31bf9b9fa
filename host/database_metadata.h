#pragma once

#include <string>
#include <vector>

#include "host/export.h"
#include "host/result_code.h"

namespace KORVEX::Zel::DB {

class Column;
class Connection;

// What a database holds: schemas, tables and columns. Column indexes count from 0.
class ZEL_EXPORT DatabaseMetadata {
 public:
  explicit DatabaseMetadata(Connection& connection);
  virtual ~DatabaseMetadata();
  DatabaseMetadata(const DatabaseMetadata&) = delete;
  DatabaseMetadata& operator=(const DatabaseMetadata&) = delete;

  // In slot order.
  virtual ResultCode getSchemaNames(std::vector<std::string>& names) = 0;
  virtual ResultCode getTableNames(std::vector<std::string>& names) = 0;
  virtual ResultCode getTableNumColumns(const std::string& table, int& count) = 0;
  virtual ResultCode getTableColumnName(const std::string& table, int index, std::string& name) = 0;
  virtual ResultCode getTableColumnType(const std::string& table, int index,
                                        unsigned int& type) = 0;
  virtual ResultCode getTableColumnPrimaryKey(const std::string& table, int index,
                                              bool& primaryKey) = 0;
  virtual ResultCode getTableColumnInfo(const std::string& table, int index, std::string& name,
                                        unsigned int& type) = 0;
  virtual ResultCode getTableColumnInfo(const std::string& table, int index,
                                        const Column*& column) = 0;
  // Appends the texts of the failures since the last call to `errors`, and forgets them.
  virtual void getLastErrors(std::string& errors) = 0;
  // Reads the columns of a table; with `refresh` also when they are already known.
  virtual ResultCode getTableAllColumnInfo(const std::string& table, bool refresh) = 0;

 protected:
  Connection& getConnection() const { return connection_; }

 private:
  Connection& connection_;
};

}  // namespace KORVEX::Zel::DB
