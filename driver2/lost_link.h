#pragma once

#include <sql.h>
#include <sqlext.h>

namespace KORVEX::Zel::DB {

// Whether the driver knows that a connection is lost (SQLGetConnectAttr). False when it does not
// tell. A commit must ask before: a driver that notices the loss while it frees a statement or
// closes a cursor, whose results nobody reports, may say of a later commit that it has succeeded.
inline bool linkIsLost(SQLHDBC dbc) {
  SQLULEN dead = 0;
  const SQLRETURN rc = SQLGetConnectAttr(dbc, SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr);
  return SQL_SUCCEEDED(rc) && static_cast<SQLUINTEGER>(dead) == SQL_CD_TRUE;
}

}  // namespace KORVEX::Zel::DB
