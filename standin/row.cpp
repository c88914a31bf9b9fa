#include "host/row.h"

#include <cstdlib>

namespace KORVEX::Zel::DB {
namespace {

// The buffer that a string or binary cell points at; null for other types and for NULL.
const void* bufferOf(unsigned int type, const DataTypes::DataValue& value) {
  if (value.isNull()) {
    return nullptr;
  }
  switch (DataTypes::typeNumber(type)) {
    case DataTypes::kString:
      return value.string;
    case DataTypes::kBinary:
      return value.binary.data;
    default:
      return nullptr;
  }
}

}  // namespace

Row::Row() {
  constexpr std::size_t kUsualColumns = 16;  // one allocation for most rows
  columns_.reserve(kUsualColumns);
}

Row::~Row() {
  for (const Column& column : columns_) {
    if (column.owned) {
      std::free(const_cast<void*>(bufferOf(column.type, column.value)));
    }
  }
}

// Out of the way of the columns for which there is room.
[[gnu::cold, gnu::noinline]] void Row::makeRoom() {
  constexpr std::size_t kGrowth = 4;  // rows are short-lived: few moves count for more than space
  columns_.reserve(kGrowth * columns_.size() + 1);
}

void Row::addColumn(unsigned int type, const DataTypes::DataValue& value, bool handOver) {
  if (columns_.size() == columns_.capacity()) makeRoom();
  // There is room now, so that the list's own way to make some is not built in here once more.
  if (columns_.size() == columns_.capacity()) __builtin_unreachable();
  columns_.push_back({value, type, handOver});
}

std::size_t Row::getNumColumns() const {
  return columns_.size();
}

unsigned int Row::getColumnType(std::size_t index) const {
  return columns_[index].type;
}

const DataTypes::DataValue& Row::getColumnValue(std::size_t index) const {
  return columns_[index].value;
}

}  // namespace KORVEX::Zel::DB
