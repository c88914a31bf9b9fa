#pragma once

#include <array>
#include <cstddef>

#include "datatypes/type_table.h"

namespace KORVEX::Zel::DB::ODBC {

// Of a table of rows with a `family`, the row of each type number; null for numbers without one. A
// row is looked up for each value that passes.
template <typename Row, std::size_t Rows>
constexpr auto rowsByType(const Row (&rows)[Rows]) {
  std::array<const Row*, DataTypes::kTypeCount> places{};
  for (unsigned int type = 0; type < DataTypes::kTypeCount; ++type) {
    for (const Row& row : rows) {
      if (row.family == DataTypes::familyOf(type)) places[type] = &row;
    }
  }
  return places;
}

// The row of a type code (its low 8 bits count), or null.
template <typename Places>
constexpr auto rowOf(const Places& places, unsigned int typeCode) {
  const unsigned int number = DataTypes::typeNumber(typeCode);
  return number < places.size() ? places[number] : nullptr;
}

}  // namespace KORVEX::Zel::DB::ODBC
