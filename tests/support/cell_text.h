#pragma once

#include <string>

#include "datatypes/data_value.h"
#include "datatypes/type_code.h"

namespace KORVEX::Zel::DB {

// A cell as text: numbers in decimal, a decimal's coefficient and scale, texts and bytes as they
// are.
inline std::string cellText(const DataTypes::DataValue& cell, unsigned int type) {
  if (cell.isNull()) return "NULL";
  switch (DataTypes::typeNumber(type)) {
    case DataTypes::kInt16:
      return std::to_string(cell.int16);
    case DataTypes::kInteger:
      return std::to_string(cell.int32);
    case DataTypes::kFloat:
      return std::to_string(cell.float64);
    case DataTypes::kBoolean:
      return std::to_string(cell.boolean);
    case DataTypes::kString:
      return cell.string;
    case DataTypes::kBinary:
      return {reinterpret_cast<const char*>(cell.binary.data), cell.binary.length};
    case DataTypes::kFixedDecimal:
      return std::to_string(static_cast<long>(cell.decimal.low)) + " scale " +
             std::to_string(cell.decimal.scale);
    default:
      return std::to_string(cell.int64);
  }
}

}  // namespace KORVEX::Zel::DB
