#pragma once

#include <sql.h>
#include <sqlext.h>

#include <array>

#include "datatypes/type_code.h"

namespace KORVEX::Zel::DB::ODBC {

// What the driver says about a parameter or a result column, and where a parameter's value is from.
struct DATA_XFER_SETTINGS {
  SQLSMALLINT sqlType = 0;
  SQLULEN columnSize = 0;
  SQLSMALLINT decimalDigits = 0;
  SQLSMALLINT nullable = 0;
  int rowColumn = 0;           // of a parameter: the column of the packed row
  unsigned int valueType = 0;  // of a parameter: the type code of that value
};

// How a column is fetched: by the ODBC C type that the fetch routine asks for. SQL_NUMERIC stands
// for text that is parsed, and 0 for a column that is not fetched.
inline constexpr SQLSMALLINT kNoFetch = 0;
inline constexpr SQLSMALLINT kNumericText = SQL_NUMERIC;

struct ColumnTransfer {
  unsigned int typeCode;
  SQLSMALLINT fetchAs;
};

// The transfer of a column of a type code that the server asks for.
SQLSMALLINT fetchTypeFor(unsigned int typeCode);

// Whether a transfer is one call that puts the value where it belongs.
bool isFetchedInPlace(SQLSMALLINT fetchAs);

// The type code and transfer of a column that is read as the driver describes it.
ColumnTransfer describedTransfer(const DATA_XFER_SETTINGS& column);

}  // namespace KORVEX::Zel::DB::ODBC
