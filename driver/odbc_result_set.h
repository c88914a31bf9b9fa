#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "driver/odbc_statement.h"
#include "driver/reader_table.h"
#include "host/result_set.h"
#include "odbc/cell_content.h"
#include "odbc/odbc_col.h"

namespace KORVEX::Zel::DB {

// The rows of an executed first-generation statement. Every operation returns 1 or 3; failures are
// logged. Column indexes count from 1. Nothing throws, next() on a foreign statement apart.
class OdbcResultSet : public ResultSet {
 public:
  explicit OdbcResultSet(Statement& statement);
  ~OdbcResultSet() override;

  // In slot order.
  // Does nothing: the cursor is closed with the statement.
  ResultCode close() override;
  // Throws std::bad_cast when the statement is not an OdbcStatement.
  ResultCode next(bool& more) override;
  // The current row in the descriptor's types. One column that cannot be converted discards the
  // whole row: `row` is then null and the next row can still be read.
  ResultCode getData(const RowDescriptor& descriptor, Row*& row) override;
  ResultCode getNumColumns(int& count) override;
  ResultCode getColumnInfo(int index, std::string& name, unsigned int& type) override;
  ResultCode getColumnName(int index, std::string& name) override;
  ResultCode getColumnType(int index, unsigned int& type) override;
  ResultCode getColumn(int index, unsigned int type, DataTypes::DataValue& value) override;
  ResultCode getColumnInt16(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnInt32(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnInt64(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnDouble(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnDate(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnString(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnMoney(int index, unsigned int type, DataTypes::DataValue& value) override;
  ResultCode getColumnTimestamp(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnBoolean(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnInterval(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnBigDateTime(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnTime(int index, DataTypes::DataValue& value) override;
  ResultCode getColumnFixedDecimal(int index, unsigned int type,
                                   DataTypes::DataValue& value) override;
  ResultCode getColumnBinary(int index, DataTypes::DataValue& value) override;

 private:
  // The statement the rows come from; throws std::bad_cast when it is a foreign one.
  OdbcStatement& odbcStatement() const {
    return checked_ != nullptr ? *checked_ : checkStatement();
  }
  OdbcStatement& checkStatement() const;
  // Reads a column with the reader of its type's family.
  ResultCode readColumn(int index, unsigned int type, DataTypes::DataValue& value);
  ResultCode failWithDiagnostic(const char* key) const;

  // Null before the first row, behind the last column and without a statement.
  const ODBC::CellContent* findColumn(int index) {
    const auto at = static_cast<std::size_t>(index);  // a negative one lies behind every column
    return hasContents() && at < contents_->size() ? (*contents_)[at] : nullptr;
  }
  bool hasContents() {
    ODBC::OdbcStmt* stmt = odbcStatement().getStmt();
    if (stmt != nullptr && contents_ == nullptr) contents_ = &stmt->Contents();
    return stmt != nullptr;
  }
  bool makePlans(std::size_t columns);
  int countPlanned(int columns);
  bool settle(ColumnPlan& plan, const ODBC::CellContent& column, unsigned int type);
  bool readPlanned(ColumnPlan& plan, const ODBC::CellContent& column, unsigned int type,
                   DataTypes::DataValue& cell);
  ResultCode readUnplanned(int index, unsigned int type, DataTypes::DataValue& cell);
  ResultCode failMissing(int index, bool isReadable);
  ResultCode failRead(int index, ReadResult result);

  // The list of columns that the ODBC statement keeps; asked for once.
  const std::vector<const ODBC::CellContent*>* contents_ = nullptr;
  std::vector<ColumnPlan> plans_;             // of the descriptor's columns, from 0
  mutable OdbcStatement* checked_ = nullptr;  // the statement, once its type has been looked at
};

}  // namespace KORVEX::Zel::DB
