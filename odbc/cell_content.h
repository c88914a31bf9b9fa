#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstdint>

#include "odbc/byte_store.h"

namespace KORVEX::Zel::DB::ODBC {

// What a cell holds, and as what: the part of it that readers of values look at.
struct CellContent {
  std::int16_t cType = 0;  // 0: never set
  std::int16_t sqlType = 0;
  std::uint32_t columnSize = 0;
  std::int16_t decimalDigits = 0;
  SQLLEN indicator = SQL_NULL_DATA;  // the length in bytes, or NULL
  ByteStore buffer;                  // the value as its C type lays it out

  bool isNull() const { return indicator == SQL_NULL_DATA; }
};

}  // namespace KORVEX::Zel::DB::ODBC
