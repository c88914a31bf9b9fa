#pragma once

#include "odbc/odbc_catalog.h"
#include "odbc/odbc_query_impl.h"

namespace KORVEX::Zel::DB::ODBC {

// A catalog query: a statement handle that runs one catalog function instead of SQL.
class OdbcCatalogImpl : public OdbcCatalog, public OdbcQueryImpl {
 public:
  explicit OdbcCatalogImpl(OdbcDbcImpl* dbc) : OdbcQueryImpl(dbc) {}

  // Behind the slots of the query. Runs the function.
  virtual e_Status Execute() = 0;
};

}  // namespace KORVEX::Zel::DB::ODBC
