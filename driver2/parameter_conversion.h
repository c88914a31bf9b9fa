#pragma once

#include <sql.h>
#include <sqlext.h>

namespace KORVEX::Zel::DB {

class DBError;

namespace ODBC {

// What a parameter's value is turned into before it is bound; it must last until the execution.
struct ParameterScratch {
  TIMESTAMP_STRUCT timestamp;
  TIME_STRUCT time;
  char text[64];
  SQLLEN indicator;  // the value's length or SQL_NULL_DATA, where each parameter has its own
};

// What SQLBindParameter is told of a value.
struct BoundValue {
  SQLPOINTER data = nullptr;
  SQLLEN lengthBytes = 0;
};

// Turns a packed value (not null, at any address) of a type code into what ODBC takes: dates and
// times as structures, money and decimals as text, both in `scratch`; everything else where it
// lies. Returns 0, or -1 with "error converting date" for a date whose year cannot be expressed.
int convertParameter(const void* value, unsigned int type, ParameterScratch& scratch,
                     BoundValue& bound, DBError* error);

}  // namespace ODBC
}  // namespace KORVEX::Zel::DB
