#include "odbc/odbc_query_impl.h"

#include <limits>
#include <span>

#include "odbc/odbc_col_impl.h"
#include "odbc/odbc_dbc_impl.h"
#include "odbc/sql_argument.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

constexpr SQLSMALLINT kColumnNameBytes = 256;

// What a 16-bit column number can say; others must not be cut to one that exists.
bool isColumnNumber(int column) {
  return column >= 0 && column <= std::numeric_limits<SQLUSMALLINT>::max();
}

}  // namespace

OdbcQueryImpl::OdbcQueryImpl(OdbcDbcImpl* dbc)
    : OdbcImpl(dbc),
      dbcHandle_(dbc->GetHandle(e_Dbc)),
      envHandle_(dbc->GetHandle(e_Env)),
      dbc_(dbc) {}

OdbcQueryImpl::~OdbcQueryImpl() {
  DeleteChildren();
  OdbcQueryImpl::Finalize();
}

Odbc::e_Status OdbcQueryImpl::Initialize() {
  return GetStatus(dbc_, stmtHandle_.allocate(dbcHandle_));
}

Odbc::e_Status OdbcQueryImpl::Finalize() {
  stmtHandle_.reset();
  return e_Ok;
}

SQLHANDLE OdbcQueryImpl::GetHandle(e_Handle kind) {
  switch (kind) {
    case e_Env:
      return envHandle_;
    case e_Dbc:
      return dbcHandle_;
    case e_Stmt:
      return stmtHandle_.get();
    case e_None:
      break;
  }
  return SQL_NULL_HANDLE;
}

Odbc::e_Status OdbcQueryImpl::MaxRows(int rows) {
  return GetStatus(
      this, SQLSetStmtAttr(stmtHandle_.get(), SQL_ATTR_MAX_ROWS,
                           attributeValue(static_cast<std::uintptr_t>(rows)), SQL_IS_UINTEGER));
}

Odbc::e_Status OdbcQueryImpl::GetColumnCount(int& count) {
  SQLSMALLINT columns = 0;
  const e_Status status = GetStatus(this, SQLNumResultCols(stmtHandle_.get(), &columns));
  if (status == e_Ok) count = columns;
  return status;
}

Odbc::e_Status OdbcQueryImpl::GetColumnType(int column, int& sqlType) {
  GetStatus(SQL_SUCCESS);
  if (!isColumnNumber(column)) return e_Error;
  SQLLEN value = 0;
  const e_Status status =
      GetStatus(this, SQLColAttribute(stmtHandle_.get(), static_cast<SQLUSMALLINT>(column),
                                      SQL_DESC_CONCISE_TYPE, nullptr, 0, nullptr, &value));
  if (status == e_Ok) sqlType = static_cast<int>(value);
  return status;
}

Odbc::e_Status OdbcQueryImpl::GetColumnName(int column, std::string& name) {
  GetStatus(SQL_SUCCESS);
  if (!isColumnNumber(column)) return e_Error;
  char buffer[kColumnNameBytes] = {};
  SQLSMALLINT length = 0;
  const e_Status status = GetStatus(
      this, SQLColAttribute(stmtHandle_.get(), static_cast<SQLUSMALLINT>(column), SQL_DESC_NAME,
                            buffer, kColumnNameBytes - 1, &length, nullptr));
  if (status == e_Ok) name = buffer;
  return status;
}

OdbcCol* OdbcQueryImpl::GetColumn(int column) {
  if (column < 1 || static_cast<std::size_t>(column) >= columns_.size()) return nullptr;
  return columns_[static_cast<std::size_t>(column)];
}

Odbc::e_Status OdbcQueryImpl::CreateColumns() {
  SQLSMALLINT count = 0;
  if (const e_Status status = GetStatus(this, SQLNumResultCols(stmtHandle_.get(), &count));
      status != e_Ok) {
    return status;
  }
  columns_.assign(static_cast<std::size_t>(count > 0 ? count : 0) + 1, nullptr);
  for (std::size_t n = 1; n < columns_.size(); ++n) {
    columns_[n] = new OdbcColImpl(this, static_cast<short>(n));
    if (const e_Status status = columns_[n]->Initialize(); status != e_Ok) {
      DeleteColumns();
      return status;
    }
  }
  contents_.assign(columns_.size(), nullptr);
  for (std::size_t n = 1; n < columns_.size(); ++n) contents_[n] = &columns_[n]->Content();
  return e_Ok;
}

Odbc::e_Status OdbcQueryImpl::DeleteColumns() {
  freeStmt(SQL_UNBIND);
  for (OdbcColImpl* column : columns_) delete column;
  columns_.clear();
  contents_.clear();
  return e_Ok;
}

Odbc::e_Status OdbcQueryImpl::Fetch() {
  if (columns_.empty()) {
    if (const e_Status status = CreateColumns(); status != e_Ok) return status;
  }
  if (const e_Status status = GetStatus(this, SQLFetch(stmtHandle_.get())); status != e_Ok) {
    return status;
  }
  return FetchData();
}

Odbc::e_Status OdbcQueryImpl::FetchData() {
  e_Status status = e_Ok;
  if (columns_.empty()) return status;
  for (OdbcColImpl* column : std::span(columns_).subspan(1)) {
    status = column->GetData();
    // Kept: other statuses do not end the row, and only the last column's is returned.
    if (status == e_Error) break;
  }
  return status;
}

Odbc::e_Status OdbcQueryImpl::MoreResults() {
  // First: what they describe is gone as soon as the driver moves on.
  DeleteColumns();
  return GetStatus(this, SQLMoreResults(stmtHandle_.get()));
}

}  // namespace KORVEX::Zel::DB::ODBC
