#pragma once

#include "odbc/odbc_query.h"

namespace KORVEX::Zel::DB::ODBC {

// The result of a catalog function: a query without SQL and parameters, ready to be fetched. The
// caller deletes it when it has read it; the connection does so at the latest when it disconnects.
class OdbcCatalog : public virtual Odbc, public virtual OdbcQuery {};

}  // namespace KORVEX::Zel::DB::ODBC
