#pragma once

#include <string>

#include "odbc/cell_content.h"
#include "odbc/odbc.h"

namespace KORVEX::Zel::DB {

// The value of a column that the driver delivers as a number.
struct ColumnNumber {
  bool real = false;  // which of the two holds the value
  long integer = 0;
  double floating = 0;

  // The integer, or the floating value when it is a whole number within 64 bits; false otherwise.
  bool toInt64(long& out) const;
  double toDouble() const;
  // The shortest text that reads back as the same number, never with an exponent when `plain`.
  std::string toText(bool plain) const;
};

// Reads a column of a numeric C type. Returns the column's status: e_Ok, e_Null, or e_Error when
// its C type is not numeric.
ODBC::Odbc::e_Status readColumnNumber(const ODBC::CellContent& column, ColumnNumber& number);

}  // namespace KORVEX::Zel::DB
