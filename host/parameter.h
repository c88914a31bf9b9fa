#pragma once

#include "datatypes/data_value.h"

namespace KORVEX::Zel::DB {

// One parameter of a statement: its type code and its value.
struct Parameter {
  unsigned int type = DataTypes::kUnknown;
  DataTypes::DataValue value;
};

}  // namespace KORVEX::Zel::DB
