#pragma once

#include <string>
#include <vector>

#include "host/export.h"
#include "host/parameter.h"
#include "host/result_code.h"

namespace KORVEX::Zel::DB {

class Connection;
class ResultSet;

// A statement of a first-generation connection.
class ZEL_EXPORT Statement {
 public:
  explicit Statement(Connection& connection);
  Statement(Connection& connection, const std::string& sql);
  virtual ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  // In slot order.
  virtual ResultCode close() = 0;
  virtual ResultCode executeQuery(const std::vector<Parameter>& params, int maxRows,
                                  ResultSet*& resultSet) = 0;
  virtual ResultCode executeQuery(const std::string& sql, const std::vector<Parameter>& params,
                                  int maxRows, ResultSet*& resultSet) = 0;
  virtual ResultCode executeUpdate(const std::vector<Parameter>& params, int& rows) = 0;
  virtual ResultCode executeUpdate(const std::string& sql, const std::vector<Parameter>& params,
                                   int& rows) = 0;
  virtual ResultCode nextResultSet(bool& more) = 0;
  virtual ResultCode getResultSet(ResultSet*& resultSet) = 0;
  virtual ResultCode createBatch(const std::string& sql) = 0;
  virtual ResultCode addToBatch(const std::vector<Parameter>& params) = 0;
  virtual ResultCode clearBatch() = 0;
  virtual ResultCode executeBatch(std::vector<int>& status) = 0;
  virtual ResultCode bindParameters(const std::vector<Parameter>& params) = 0;
  // The binders; `parameter` is the driver's own parameter object, opaque to the server.
  virtual ResultCode bindParameterInt16(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterInt32(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterInt64(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterDouble(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterDate(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterString(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterMoney(void* parameter, unsigned int type,
                                        const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterTimestamp(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterBoolean(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterInterval(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterBigDateTime(void* parameter,
                                              const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterTime(void* parameter, const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterFixedDecimal(void* parameter, unsigned int type,
                                               const DataTypes::DataValue& value) = 0;
  virtual ResultCode bindParameterBinary(void* parameter, const DataTypes::DataValue& value) = 0;

 protected:
  Connection& getConnection() const { return connection_; }
  const std::string& getSql() const { return sql_; }

 private:
  Connection& connection_;
  std::string sql_;
};

}  // namespace KORVEX::Zel::DB
