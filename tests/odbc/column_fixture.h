#pragma once

#include "odbc/byte_store.h"
#include "odbc/odbc_col.h"
#include "tests/odbc/odbc_fixture.h"

namespace odbc_test {

using KORVEX::Zel::DB::ODBC::ByteStore;
using KORVEX::Zel::DB::ODBC::OdbcCol;

class Column : public OdbcTest {
 protected:
  // Fetches one row of one column.
  Odbc::e_Status fetch(const fake::ColumnDescription& column, const fake::Cell& cell) {
    fetchFirst({{column}, {{cell}}});
    const Odbc::e_Status status = stmt_->Fetch();
    column_ = stmt_->GetColumn(1);
    log_.clear();
    for (const std::string& line : fake_.takeLog()) {
      if (line.starts_with("SQLGetData")) log_.push_back(line);
    }
    return status;
  }

  std::string bytes() {
    ByteStore store("old", 3);
    status_ = column_->GetData(&store);
    return std::string(store.Text(), store.Length());
  }

  OdbcCol* column_ = nullptr;
  Log log_;
  Odbc::e_Status status_ = Odbc::e_Ok;
};

}  // namespace odbc_test
