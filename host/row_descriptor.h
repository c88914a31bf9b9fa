#pragma once

#include <vector>

#include "host/export.h"

namespace KORVEX::Zel::DB {

// The types in which the server wants the columns of a row.
class ZEL_EXPORT RowDescriptor {
 public:
  explicit RowDescriptor(std::vector<unsigned int> types);
  ~RowDescriptor();

  // Index from 0; it must be below getNumColumns().
  unsigned int getColumnType(int index) const;
  int getNumColumns() const;

 private:
  std::vector<unsigned int> types_;
};

}  // namespace KORVEX::Zel::DB
