#include "odbc/odbc_stmt_impl.h"

#include "odbc/narrowed.h"
#include "odbc/odbc_dbc_impl.h"
#include "odbc/odbc_param_array_impl.h"
#include "odbc/odbc_param_impl.h"
#include "odbc/sql_argument.h"

namespace KORVEX::Zel::DB::ODBC {

OdbcStmtImpl::~OdbcStmtImpl() {
  // Here, while the arrays that the driver knows by address are still there.
  DeleteChildren();
  Finalize();
}

Odbc::e_Status OdbcStmtImpl::SetSql(const std::string& sql, bool batch) {
  Unprepare();  // how closing went does not matter: preparing says whether the handle is usable
  sql_ = sql;
  return Prepare(batch);
}

Odbc::e_Status OdbcStmtImpl::Parse() {
  Unprepare();
  return Prepare(false);
}

Odbc::e_Status OdbcStmtImpl::Prepare(bool batch) {
  if (prepared_) return e_Ok;
  e_Status status = prepareText();
  if (status == e_Ok) status = CreateParams(batch);
  if (status == e_Ok && batch && params_.size() > 1 && dbc().preparesArraysTwice()) {
    status = prepareText();
    if (status != e_Ok) DeleteParams();
  }
  if (status != e_Ok) return status;
  prepared_ = true;
  batchMode_ = batch;
  batchSize_ = 0;
  return e_Ok;
}

Odbc::e_Status OdbcStmtImpl::prepareText() {
  return GetStatus(this, SQLPrepare(GetHandle(), inputText(sql_.c_str()), SQL_NTS));
}

Odbc::e_Status OdbcStmtImpl::Unprepare() {
  prepared_ = false;
  batchMode_ = false;
  batchSize_ = 0;
  unbindArrayLayout();
  const e_Status status = Close();
  DeleteColumns();
  DeleteParams();
  return status;
}

Odbc::e_Status OdbcStmtImpl::CreateParams(bool batch) {
  SQLSMALLINT count = 0;
  if (const e_Status status = GetStatus(this, SQLNumParams(GetHandle(), &count)); status != e_Ok) {
    return status;
  }
  params_.assign(static_cast<std::size_t>(count > 0 ? count : 0) + 1, nullptr);
  for (std::size_t n = 1; n < params_.size(); ++n) {
    const auto number = static_cast<short>(n);
    params_[n] = batch ? new OdbcParamArrayImpl(this, number) : new OdbcParamImpl(this, number);
    if (const e_Status status = params_[n]->Initialize(); status != e_Ok) {
      DeleteParams();
      return status;
    }
  }
  return e_Ok;
}

Odbc::e_Status OdbcStmtImpl::DeleteParams() {
  freeStmt(SQL_RESET_PARAMS);
  for (OdbcParamImpl* param : params_) delete param;
  params_.clear();
  return e_Ok;
}

Odbc::e_Status OdbcStmtImpl::setAttribute(SQLINTEGER attribute, SQLPOINTER value,
                                          SQLINTEGER length) {
  return GetStatus(this, SQLSetStmtAttr(GetHandle(), attribute, value, length));
}

Odbc::e_Status OdbcStmtImpl::bindArrayLayout(bool& bindParameters) {
  const auto rows = static_cast<std::size_t>(batchSize_);
  bindParameters = false;
  // Kept: a driver that refuses the layout or the number of rows is not reported here; nothing is
  // bound, and the execution fails.
  if (setAttribute(SQL_ATTR_PARAM_BIND_TYPE, attributeValue(SQL_PARAM_BIND_BY_COLUMN), 0) != e_Ok) {
    return GetStatus(SQL_SUCCESS);
  }
  if (setAttribute(SQL_ATTR_PARAMSET_SIZE, attributeValue(rows), 0) != e_Ok) {
    return GetStatus(SQL_SUCCESS);
  }
  arrayLayoutSet_ = true;
  // Zeroed: some drivers never write it.
  if (rows > 0) paramStatus_.assign(rows, SQL_PARAM_SUCCESS);
  const e_Status status =
      setAttribute(SQL_ATTR_PARAM_STATUS_PTR, paramStatus_.empty() ? nullptr : paramStatus_.data(),
                   SQL_IS_POINTER);
  if (status != e_Ok) paramStatus_.clear();
  bindParameters = status == e_Ok;
  return status;
}

// Results are ignored: the handle is about to be prepared anew, and a driver that keeps an array
// layout would read the next statement's single values as arrays.
void OdbcStmtImpl::unbindArrayLayout() {
  if (arrayLayoutSet_) {
    SQLSetStmtAttr(GetHandle(), SQL_ATTR_PARAMSET_SIZE, attributeValue(1), 0);
    SQLSetStmtAttr(GetHandle(), SQL_ATTR_PARAM_STATUS_PTR, nullptr, SQL_IS_POINTER);
    arrayLayoutSet_ = false;
  }
  paramStatus_.clear();
}

Odbc::e_Status OdbcStmtImpl::Bind() {
  if (params_.size() < 2) return e_Ok;
  e_Status status = e_Ok;
  if (batchMode_) {
    bool bindParameters = false;
    status = bindArrayLayout(bindParameters);
    if (!bindParameters) return status;
  }
  for (OdbcParamImpl* param : params_) {
    if (param != nullptr) status = param->Bind();
    if (status != e_Ok) break;
  }
  return status;
}

void OdbcStmtImpl::Unbind() {
  for (OdbcParamImpl* param : params_) {
    if (param != nullptr) param->Unbind();
  }
}

Odbc::e_Status OdbcStmtImpl::Execute() {
  if (const e_Status status = Prepare(false); status != e_Ok) return status;
  if (const e_Status status = Bind(); status != e_Ok) {
    // A binding's "no data" is not that of an execution that hits no row: nothing was executed.
    return status == e_NoData ? e_Other : status;
  }
  return GetStatus(this, SQLExecute(GetHandle()));
}

Odbc::e_Status OdbcStmtImpl::Close() {
  return GetStatus(this, SQLFreeStmt(GetHandle(), SQL_CLOSE));
}

Odbc::e_Status OdbcStmtImpl::RowCount(int& count) {
  SQLLEN rows = 0;
  const e_Status status = GetStatus(this, SQLRowCount(GetHandle(), &rows));
  if (status == e_Ok) count = narrowed<int>(rows);
  return status;
}

OdbcParam* OdbcStmtImpl::GetParam(int parameter) {
  if (parameter < 1 || static_cast<std::size_t>(parameter) >= params_.size()) return nullptr;
  return params_[static_cast<std::size_t>(parameter)];
}

Odbc::e_Status OdbcStmtImpl::IncrementBatchSize() {
  if (batchMode_) {
    ++batchSize_;
    for (OdbcParamImpl* param : params_) {
      // In this mode all parameters are arrays.
      if (param != nullptr) static_cast<OdbcParamArrayImpl*>(param)->PadRows(batchSize_);
    }
  }
  return GetStatus(SQL_SUCCESS);
}

Odbc::e_Status OdbcStmtImpl::GetBatchSize(int& rows) {
  if (batchMode_) rows = batchSize_;
  return GetStatus(SQL_SUCCESS);
}

Odbc::e_Status OdbcStmtImpl::GetBatchParamStatus(int row, int& status) {
  // Rows added after the execution have no entry yet.
  const bool known = batchMode_ && row >= 0 && row < batchSize_ &&
                     static_cast<std::size_t>(row) < paramStatus_.size();
  if (known) {
    const SQLUSMALLINT entry = paramStatus_[static_cast<std::size_t>(row)];
    status = entry == SQL_PARAM_SUCCESS || entry == SQL_PARAM_SUCCESS_WITH_INFO ? 0 : -1;
  }
  return e_Ok;
}

Odbc::e_Status OdbcStmtImpl::DiscardPendingRow() {
  if (batchMode_) {
    for (OdbcParamImpl* param : params_) {
      if (param != nullptr) param->CutRows(batchSize_);
    }
  }
  return GetStatus(SQL_SUCCESS);
}

}  // namespace KORVEX::Zel::DB::ODBC
