#pragma once

#include <string>
#include <vector>

#include "odbc/odbc.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcCol;
struct CellContent;

// Something with a result set: a statement or a catalog query. Columns count from 1.
class OdbcQuery : public virtual Odbc {
 public:
  // In slot order.
  // Asks the driver for at most `rows` rows of each result set; 0 for all.
  virtual e_Status MaxRows(int rows) = 0;
  // Goes to the next row and reads all its columns. The first fetch of a result set makes the
  // column objects. e_NoData behind the last row; no column is read then. e_Error: the fetch or
  // one column failed, and the columns behind that one still hold the previous row.
  virtual e_Status Fetch() = 0;
  // Goes to the next result; the column objects of this one are gone. e_NoData: there is none.
  virtual e_Status MoreResults() = 0;
  // What the driver says about the current result; outputs change on success only. Names are cut
  // to 254 bytes. The type is the concise SQL type.
  virtual e_Status GetColumnName(int column, std::string& name) = 0;
  virtual e_Status GetColumnType(int column, int& sqlType) = 0;
  virtual e_Status GetColumnCount(int& count) = 0;
  // The column's object, which the query owns, or null: no such column, or nothing fetched yet.
  virtual OdbcCol* GetColumn(int column) = 0;
  // What each column holds in the current row, by column number; null at 0, and empty as long as
  // there are no columns. The list itself stays where it is as long as the query.
  virtual const std::vector<const CellContent*>& Contents() = 0;
};

}  // namespace KORVEX::Zel::DB::ODBC
