#pragma once

#include <array>
#include <cstddef>

#include "datatypes/type_table.h"

namespace KORVEX::Zel::DB {

// Where in a table of rows with a `family` each family's row stands, by the family's number; behind
// the end for a family without a row. A row is looked up for each value that passes.
template <typename Row, std::size_t Rows>
constexpr auto familyPlaces(const Row (&rows)[Rows]) {
  constexpr std::size_t kFamilies = static_cast<std::size_t>(DataTypes::TypeFamily::kBinary) + 1;
  std::array<std::size_t, kFamilies> places{};
  places.fill(Rows);
  for (std::size_t at = 0; at < Rows; ++at) places[static_cast<std::size_t>(rows[at].family)] = at;
  return places;
}

}  // namespace KORVEX::Zel::DB
