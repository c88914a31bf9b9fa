#pragma once

#include <sql.h>
#include <sqlext.h>

#include "datatypes/data_value.h"
#include "odbc/odbc_param.h"

namespace KORVEX::Zel::DB {

// How the values of one type family become an ODBC parameter: the types and sizes that are told to
// the parameter, and how the value is stored in it.
struct BindingRule {
  using Quantity = int (*)(unsigned int type, const DataTypes::DataValue& value);
  using Store = ODBC::Odbc::e_Status (*)(ODBC::OdbcParam& parameter, unsigned int type,
                                         const DataTypes::DataValue& value);

  short cType;
  short sqlType;
  Quantity columnSize;
  Quantity decimalDigits;
  Quantity bufferLength;
  Store store;
};

// The rule for a type code (its low 8 bits count), or null for a code that cannot be bound.
// `bigIntAsChar` selects the text form for 64-bit integers and intervals.
const BindingRule* findBindingRule(unsigned int type, bool bigIntAsChar);

// Tells the parameter its SQL type, C type and input direction, in this order.
void setParameterCommons(ODBC::OdbcParam& parameter, const BindingRule& rule, unsigned int type,
                         const DataTypes::DataValue& value);

// A date (seconds), timestamp (milliseconds) or big date-time (microseconds), all since 1970-01-01
// UTC, as an ODBC timestamp. False, with a line on standard output, for any other type and for a
// value whose year does not fit; `timestamp` is then left alone.
bool convertTime(unsigned int type, const DataTypes::DataValue& value, TIMESTAMP_STRUCT& timestamp);

}  // namespace KORVEX::Zel::DB
