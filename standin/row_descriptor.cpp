#include "host/row_descriptor.h"

#include <utility>

namespace KORVEX::Zel::DB {

RowDescriptor::RowDescriptor(std::vector<unsigned int> types) : types_(std::move(types)) {}

RowDescriptor::~RowDescriptor() = default;

unsigned int RowDescriptor::getColumnType(int index) const {
  return types_[static_cast<std::size_t>(index)];
}

int RowDescriptor::getNumColumns() const {
  return static_cast<int>(types_.size());
}

}  // namespace KORVEX::Zel::DB
