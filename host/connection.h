#pragma once

#include <string>
#include <vector>

#include "host/export.h"
#include "host/parameter.h"
#include "host/result_code.h"

namespace KORVEX::Zel::DB {

class Column;
class Driver;
class ResultSet;

// A first-generation connection. One caller at a time.
class ZEL_EXPORT Connection {
 public:
  // Of the five texts only the user and the password (the third and fourth) are kept.
  Connection(const std::string& first, const std::string& second, const std::string& user,
             const std::string& password, const std::string& fifth);
  virtual ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // In slot order.
  virtual ResultCode open() = 0;
  virtual ResultCode close() = 0;
  virtual ResultCode commit() = 0;
  virtual ResultCode rollback() = 0;
  virtual ResultCode executeQuery(const std::string& sql, const std::vector<Parameter>& params,
                                  int maxRows, ResultSet*& resultSet) = 0;
  virtual ResultCode executeUpdate(const std::string& sql, const std::vector<Parameter>& params,
                                   int& rows) = 0;
  virtual ResultCode nextResultSet(bool& more) = 0;
  virtual ResultCode getResultSet(ResultSet*& resultSet) = 0;
  virtual ResultCode createBatch(const std::string& sql) = 0;
  virtual ResultCode addToBatch(const std::vector<Parameter>& params) = 0;
  virtual ResultCode clearBatch() = 0;
  // `status` gets one entry a row: 0 done, -1 not done.
  virtual ResultCode executeBatch(std::vector<int>& status) = 0;
  virtual ResultCode getSchemaNames(std::vector<std::string>& names) = 0;
  virtual ResultCode getTableNames(std::vector<std::string>& names) = 0;
  virtual ResultCode getTableNumColumns(const std::string& table, int& count) = 0;
  virtual ResultCode getTableColumnPrimaryKey(const std::string& table, int index,
                                              bool& primaryKey) = 0;
  virtual ResultCode getTableColumnInfo(const std::string& table, int index, std::string& name,
                                        unsigned int& type) = 0;
  virtual ResultCode getTableColumnInfo(const std::string& table, int index,
                                        const Column*& column) = 0;
  virtual ResultCode createTable(const std::string& table, const std::vector<std::string>& names,
                                 const std::vector<unsigned int>& types,
                                 const std::vector<bool>& keys, bool plainTable, bool unused) = 0;
  virtual ResultCode getTableNames(const std::string& schema, std::vector<std::string>& names) = 0;
  virtual ResultCode getTableNumColumns(const std::string& schema, const std::string& table,
                                        int& count) = 0;
  virtual ResultCode getTableColumnPrimaryKey(const std::string& schema, const std::string& table,
                                              int index, bool& primaryKey) = 0;
  virtual ResultCode getTableColumnInfo(const std::string& schema, const std::string& table,
                                        int index, std::string& name, unsigned int& type) = 0;
  virtual ResultCode getTableColumnInfo(const std::string& schema, const std::string& table,
                                        int index, const Column*& column) = 0;
  virtual ResultCode createTable(const std::string& schema, const std::string& table,
                                 const std::vector<std::string>& names,
                                 const std::vector<unsigned int>& types,
                                 const std::vector<bool>& keys, bool plainTable, bool unused) = 0;
  virtual std::string getDriverProperty(const std::string& key);
  // Hands out the texts of the failures since the last call, and empties them.
  virtual void getLastErrors(std::string& errors);
  virtual void* getHandle() = 0;

  Driver* getDriver() const { return driver_; }
  void setDriver(Driver* driver) { driver_ = driver; }
  const std::string& getServiceName() const { return serviceName_; }
  void setServiceName(const std::string& name) { serviceName_ = name; }

  // What the database can do; the server decides what each flag means.
  struct Capabilities {
    bool first = false;
    bool second = false;
    bool third = false;
  };
  const Capabilities& getCapabilities() const { return capabilities_; }

 protected:
  static constexpr int kBatchParameterCountUnset = -1;

  const std::string& getUser() const { return user_; }
  const std::string& getPassword() const { return password_; }

  std::string lastErrors_;
  bool batchMode_ = false;
  int batchParameterCount_ = kBatchParameterCountUnset;
  Capabilities capabilities_;

 private:
  Driver* driver_ = nullptr;
  std::string serviceName_;
  std::string user_;
  std::string password_;
};

}  // namespace KORVEX::Zel::DB
