#pragma once

#include <string>
#include <vector>

#include "odbc/odbc_impl.h"
#include "odbc/odbc_query.h"
#include "odbc/sql_handle.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcColImpl;
class OdbcDbcImpl;

// A statement handle and the columns of its current result.
//
// Columns are never bound: after each fetch they pull their values with SQLGetData, in ascending
// order, as ODBC wants it.
class OdbcQueryImpl : public OdbcImpl, public virtual OdbcQuery {
 public:
  // A child of `dbc`, which must be connected when Initialize is called.
  explicit OdbcQueryImpl(OdbcDbcImpl* dbc);
  ~OdbcQueryImpl() override;

  // In slot order.
  // SQLAllocHandle; a failure's record is the connection's.
  e_Status Initialize() override;
  e_Status Finalize() override;
  SQLHANDLE GetHandle(e_Handle kind) override;
  SQLHANDLE GetHandle() override { return stmtHandle_.get(); }
  e_Handle GetHandleType() override { return e_Stmt; }
  e_Status MaxRows(int rows) override;
  e_Status Fetch() override;
  e_Status MoreResults() override;
  e_Status GetColumnName(int column, std::string& name) override;
  e_Status GetColumnType(int column, int& sqlType) override;
  e_Status GetColumnCount(int& count) override;
  OdbcCol* GetColumn(int column) override;
  const std::vector<const CellContent*>& Contents() override { return contents_; }

 protected:
  const OdbcDbcImpl& dbc() const { return *dbc_; }

  // Makes the column objects of a result set, once; all of them or none. SQLNumResultCols, then
  // what each column asks about itself.
  e_Status CreateColumns();
  // Unbinds and deletes them. The diagnostics are left alone.
  e_Status DeleteColumns();
  // Reads every column of the current row, up to the first that fails.
  e_Status FetchData();
  // SQLFreeStmt, result ignored: the call only tidies up, and must not replace the record that says
  // why.
  void freeStmt(SQLUSMALLINT option) { SQLFreeStmt(stmtHandle_.get(), option); }

 private:
  SqlHandle<SQL_HANDLE_STMT> stmtHandle_;
  SQLHANDLE dbcHandle_;
  SQLHANDLE envHandle_;
  OdbcDbcImpl* dbc_;
  // By column number; entry 0 is null. The columns are children of the query: once DeleteChildren
  // has run the entries dangle.
  std::vector<OdbcColImpl*> columns_;
  std::vector<const CellContent*> contents_;  // of the same columns
};

}  // namespace KORVEX::Zel::DB::ODBC
