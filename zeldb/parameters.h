#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "datatypes/type_code.h"
#include "host/parameter.h"

namespace zeldb {

using Parameters = std::vector<KORVEX::Zel::DB::Parameter>;

// A string for a marker of a statement. Refers to the text, which must outlive it.
inline KORVEX::Zel::DB::Parameter textParameter(const std::string& text) {
  KORVEX::Zel::DB::Parameter parameter{};
  parameter.type = DataTypes::kString;
  parameter.value.string = text.c_str();
  return parameter;
}

// A 64-bit integer for a marker of a statement.
inline KORVEX::Zel::DB::Parameter longParameter(std::uint64_t value) {
  KORVEX::Zel::DB::Parameter parameter{};
  parameter.type = DataTypes::kLong;
  parameter.value.int64 = static_cast<std::int64_t>(value);
  return parameter;
}

}  // namespace zeldb
