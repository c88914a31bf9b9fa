#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/statement.h"
#include "odbc/odbc_param.h"
#include "odbc/odbc_stmt.h"

namespace KORVEX::Zel::DB {

class OdbcConnection;
class OdbcResultSet;
struct BindingRule;

// A first-generation statement: binds the server's parameters, executes, runs batches with a status
// a row, and hands out result sets. Every operation returns 1 or 3; failures are logged with the
// SQL text. Nothing throws.
class OdbcStatement final : public Statement {
 public:
  // Takes over `stmt`, whose SQL is already set.
  OdbcStatement(OdbcConnection& connection, ODBC::OdbcStmt* stmt);
  OdbcStatement(OdbcConnection& connection, ODBC::OdbcStmt* stmt, const std::string& sql);
  ~OdbcStatement() override;

  // In slot order.
  // Frees the result set and the handle. Always 1.
  ResultCode close() override;
  // `maxRows` is not applied. The result set belongs to the statement.
  ResultCode executeQuery(const std::vector<Parameter>& params, int maxRows,
                          ResultSet*& resultSet) override;
  // `sql` is ignored: the text was fixed when the statement was made.
  ResultCode executeQuery(const std::string& sql, const std::vector<Parameter>& params, int maxRows,
                          ResultSet*& resultSet) override;
  ResultCode executeUpdate(const std::vector<Parameter>& params, int& rows) override;
  ResultCode executeUpdate(const std::string& sql, const std::vector<Parameter>& params,
                           int& rows) override;
  ResultCode nextResultSet(bool& more) override;
  ResultCode getResultSet(ResultSet*& resultSet) override;
  ResultCode createBatch(const std::string& sql) override;
  ResultCode addToBatch(const std::vector<Parameter>& params) override;
  ResultCode clearBatch() override;
  ResultCode executeBatch(std::vector<int>& status) override;
  // Binds parameter i + 1 from params[i]. Kept: a failing binder is logged but does not stop the
  // loop, and the result is that of the last parameter.
  ResultCode bindParameters(const std::vector<Parameter>& params) override;
  // The binders; `parameter` is an ODBC::OdbcParam. Kept: a value that the parameter cannot take
  // (in a batch: of another kind than the first row's) is logged and the binder succeeds; the row
  // or execution it belongs to fails.
  ResultCode bindParameterInt16(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterInt32(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterInt64(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterDouble(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterDate(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterString(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterMoney(void* parameter, unsigned int type,
                                const DataTypes::DataValue& value) override;
  ResultCode bindParameterTimestamp(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterBoolean(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterInterval(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterBigDateTime(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterTime(void* parameter, const DataTypes::DataValue& value) override;
  ResultCode bindParameterFixedDecimal(void* parameter, unsigned int type,
                                       const DataTypes::DataValue& value) override;
  ResultCode bindParameterBinary(void* parameter, const DataTypes::DataValue& value) override;

  // The handle, or null after close().
  ODBC::OdbcStmt* getStmt() const { return stmt_.get(); }
  // Whether values are read and executions judged safely (see OdbcConnection).
  bool transfersSafely() const { return safeTransfer_; }
  // The normalised type of the connection's database, as OdbcDbc::GetDatabaseType gives it.
  std::string databaseType() const;
  // Forgets the handle without freeing it: its connection has already done so.
  void detach();

 private:
  ResultCode bindValue(void* parameter, unsigned int type, const DataTypes::DataValue& value);
  void bindWith(const BindingRule& rule, ODBC::OdbcParam& parameter, unsigned int type,
                const DataTypes::DataValue& value);
  // `noRows`: a statement that changes rows has hit none, and that counts as success.
  ResultCode bindAndExecute(const std::vector<Parameter>& params, bool& noRows);
  ResultCode newResultSet(ResultSet*& resultSet);
  // Log the key with the SQL text and a text, or with the handle's diagnostic; return 3.
  ResultCode fail(const char* key, const char* text) const;
  ResultCode failWithDiagnostic(const char* key) const;

  bool writeBigIntAsChar_;
  bool safeTransfer_;
  bool valueRefused_ = false;  // a parameter could not take its value in the last bindParameters
  bool rowPending_ = false;    // values may have been bound that no row of the batch took
  std::unique_ptr<ODBC::OdbcStmt> stmt_;
  std::unique_ptr<OdbcResultSet> resultSet_;
};

}  // namespace KORVEX::Zel::DB
