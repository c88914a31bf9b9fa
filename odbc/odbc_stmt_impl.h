#pragma once

#include <string>
#include <vector>

#include "odbc/odbc_query_impl.h"
#include "odbc/odbc_stmt.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcParamImpl;

// A statement with SQL text and parameters.
//
// States: without text, or prepared with its parameters, single or as a batch. A failed preparation
// leaves the text but nothing else, and the next Execute tries again, for single execution. SetSql
// and Parse always start over.
class OdbcStmtImpl final : public OdbcQueryImpl, public OdbcStmt {
 public:
  explicit OdbcStmtImpl(OdbcDbcImpl* dbc) : OdbcQueryImpl(dbc) {}
  ~OdbcStmtImpl() override;

  // In slot order.
  e_Status SetSql(const std::string& sql, bool batch) override;
  e_Status Parse() override;
  e_Status Execute() override;
  e_Status Close() override;
  e_Status RowCount(int& count) override;
  OdbcParam* GetParam(int parameter) override;
  e_Status IncrementBatchSize() override;
  e_Status GetBatchSize(int& rows) override;
  e_Status GetBatchParamStatus(int row, int& status) override;
  e_Status DiscardPendingRow() override;

  // Prepares the text and makes the parameters, unless that is done already; `batch` counts only
  // when it is not.
  // SQLPrepare, SQLNumParams, and what each parameter asks about itself.
  e_Status Prepare(bool batch);
  // Forgets everything but the text. The status is that of closing the cursor.
  e_Status Unprepare();
  // Hands every parameter that is not bound to the driver; stops at the first failure.
  e_Status Bind();
  // Makes the next Bind hand over every parameter anew. No ODBC call.
  void Unbind();

 private:
  e_Status prepareText();
  // One object a marker; all of them or none.
  e_Status CreateParams(bool batch);
  e_Status DeleteParams();
  // Says how the arrays lie. `bindParameters` is cleared when the driver will not have arrays.
  e_Status bindArrayLayout(bool& bindParameters);
  // Makes the handle one for single values again.
  void unbindArrayLayout();
  e_Status setAttribute(SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER length);

  bool prepared_ = false;  // text and parameters are with the driver
  std::string sql_;
  bool batchMode_ = false;
  int batchSize_ = 0;  // rows counted by IncrementBatchSize
  // One entry a row of the batch, written by the driver; empty until a batch is bound.
  std::vector<SQLUSMALLINT> paramStatus_;
  bool arrayLayoutSet_ = false;  // the handle says arrays; see unbindArrayLayout
  // By parameter number; entry 0 is null. Children of the statement, like the columns.
  std::vector<OdbcParamImpl*> params_;
};

}  // namespace KORVEX::Zel::DB::ODBC
