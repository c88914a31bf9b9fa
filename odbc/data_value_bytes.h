#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstring>
#include <optional>
#include <span>

#include "datatypes/data_value.h"
#include "datatypes/type_code.h"

namespace KORVEX::Zel::DB::ODBC {

// The bytes of a variable-length cell, and whether they are text. Text comes without its
// terminator; a missing pointer counts as no bytes.
struct DataValueBytes {
  std::span<const unsigned char> bytes;
  bool binary;

  SQLSMALLINT cType() const { return binary ? SQL_C_BINARY : SQL_C_CHAR; }
};

// By type code; nothing for a type that is neither string nor binary. The value of a NULL is not
// looked at.
inline std::optional<DataValueBytes> dataValueBytes(unsigned int typeCode,
                                                    const DataTypes::DataValue& value,
                                                    bool isNull) {
  const bool binary = typeCode == DataTypes::kBinary;
  if (!binary && typeCode != DataTypes::kString) return std::nullopt;
  DataValueBytes result = {{}, binary};
  if (isNull) return result;
  if (binary && value.binary.data != nullptr) {
    result.bytes = {value.binary.data, value.binary.length};
  } else if (!binary && value.string != nullptr) {
    result.bytes = {reinterpret_cast<const unsigned char*>(value.string),
                    std::strlen(value.string)};
  }
  return result;
}

}  // namespace KORVEX::Zel::DB::ODBC
