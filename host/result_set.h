#pragma once

#include <string>

#include "datatypes/data_value.h"
#include "host/export.h"
#include "host/result_code.h"

namespace KORVEX::Zel::DB {

class Row;
class RowDescriptor;
class Statement;

// The rows of an executed statement. Column indexes count from 1.
class ZEL_EXPORT ResultSet {
 public:
  explicit ResultSet(Statement& statement);
  virtual ~ResultSet();
  ResultSet(const ResultSet&) = delete;
  ResultSet& operator=(const ResultSet&) = delete;

  // In slot order.
  virtual ResultCode close() = 0;
  virtual ResultCode next(bool& more) = 0;
  // On success `row` is a new row that the caller deletes; on failure it is null.
  virtual ResultCode getData(const RowDescriptor& descriptor, Row*& row) = 0;
  virtual ResultCode getNumColumns(int& count) = 0;
  virtual ResultCode getColumnInfo(int index, std::string& name, unsigned int& type) = 0;
  virtual ResultCode getColumnName(int index, std::string& name) = 0;
  virtual ResultCode getColumnType(int index, unsigned int& type) = 0;
  // String and binary cells receive malloc'ed buffers that belong to the caller.
  virtual ResultCode getColumn(int index, unsigned int type, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnInt16(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnInt32(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnInt64(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnDouble(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnDate(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnString(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnMoney(int index, unsigned int type, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnTimestamp(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnBoolean(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnInterval(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnBigDateTime(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnTime(int index, DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnFixedDecimal(int index, unsigned int type,
                                           DataTypes::DataValue& value) = 0;
  virtual ResultCode getColumnBinary(int index, DataTypes::DataValue& value) = 0;

 protected:
  Statement& getStatement() const { return statement_; }

 private:
  Statement& statement_;
};

}  // namespace KORVEX::Zel::DB
