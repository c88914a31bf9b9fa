#pragma once

#include <sql.h>
#include <sqlext.h>

#include <string_view>

#include "datatypes/type_code.h"

namespace bench {

struct ColumnRead {
  SQLSMALLINT cType;
  SQLLEN bytes;
};

// A kind of column, by the letter that the stub driver knows it by: the type code that the server
// asks for, and what each generation asks SQLGetData for.
struct Kind {
  char letter;
  const char* name;
  unsigned int type;
  ColumnRead reads[2];
};

inline constexpr Kind kKinds[] = {
    {'i', "integer", DataTypes::kInteger, {{SQL_C_LONG, 8}, {SQL_C_SLONG, 4}}},
    {'b', "bigint", DataTypes::kLong, {{SQL_C_CHAR, 21}, {SQL_C_SBIGINT, 8}}},
    {'d', "double", DataTypes::kFloat, {{SQL_C_DOUBLE, 8}, {SQL_C_DOUBLE, 8}}},
    {'s', "text", DataTypes::kString, {{SQL_C_CHAR, 21}, {SQL_C_CHAR, 128}}},
    {'t',
     "timestamp",
     DataTypes::kBigDateTime,
     {{SQL_C_TYPE_TIMESTAMP, 16}, {SQL_C_TYPE_TIMESTAMP, 16}}},
    {'a', "decimal", DataTypes::createFixedDecimal(18, 4), {{SQL_C_CHAR, 22}, {SQL_C_CHAR, 32}}},
    {'f', "bit", DataTypes::kBoolean, {{SQL_C_BIT, 1}, {SQL_C_BIT, 1}}},
};

// The row of the published figures.
inline constexpr std::string_view kRowKinds = "ibdstaf";

// The letter must be one of the table.
constexpr const Kind& kindOf(char letter) {
  const Kind* kind = kKinds;
  while (kind->letter != letter) ++kind;
  return *kind;
}

}  // namespace bench
