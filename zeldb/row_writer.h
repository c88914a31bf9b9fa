#pragma once

#include <span>
#include <string>
#include <vector>

#include "datatypes/data_value.h"

namespace zeldb {

// A column of a result.
struct ResultColumn {
  std::string name;
  unsigned int type;  // type code of its values
};

// Writes the rows of a result in some form. Call begin once, row for each row, end once.
class RowWriter {
 public:
  virtual ~RowWriter() = default;
  virtual void begin(const std::vector<ResultColumn>& columns) = 0;
  virtual void row(std::span<const DataTypes::DataValue> values) = 0;
  virtual void end() = 0;
};

}  // namespace zeldb
