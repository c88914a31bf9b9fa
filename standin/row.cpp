#include "host/row.h"

#include <cstdlib>
#include <memory>
#include <new>

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

// The columns' memory is left unset until they are added.
Row::Row() {}  // NOLINT(modernize-use-equals-default): the union's columns have a constructor

Row::~Row() {
  for (std::uint32_t number = lastOwned_; number != 0;) {
    const Column& column = columns_[number - 1];
    std::free(const_cast<void*>(bufferOf(column.type, column.value)));
    number = column.earlierOwned;
  }
  if (columns_ != usual_) ::operator delete(columns_);
}

// Where there is no room for another column.
[[gnu::noinline]] void Row::addColumnFar(unsigned int type, const DataTypes::DataValue& value,
                                         bool handOver) {
  constexpr std::size_t kGrowth = 4;  // rows are short-lived: few moves count for more than space
  const std::size_t size = getNumColumns();
  auto* larger = static_cast<Column*>(::operator new(kGrowth * size * sizeof(Column)));
  std::uninitialized_copy_n(columns_, size, larger);
  if (columns_ != usual_) ::operator delete(columns_);
  columns_ = larger;
  end_ = larger + size;
  roomEnd_ = larger + kGrowth * size;
  addColumn(type, value, handOver);
}

// The last column's buffer belongs to the row.
[[gnu::noinline]] void Row::ownLast() {
  end_[-1].earlierOwned = lastOwned_;
  lastOwned_ = static_cast<std::uint32_t>(getNumColumns());
}

void Row::addColumn(unsigned int type, const DataTypes::DataValue& value, bool handOver) {
  if (end_ == roomEnd_) return addColumnFar(type, value, handOver);
  Column& column = *end_++;
  column.value = value;
  column.type = type;
  if (handOver) ownLast();
}

std::size_t Row::getNumColumns() const {
  return static_cast<std::size_t>(end_ - columns_);
}

unsigned int Row::getColumnType(std::size_t index) const {
  return columns_[index].type;
}

const DataTypes::DataValue& Row::getColumnValue(std::size_t index) const {
  return columns_[index].value;
}

}  // namespace KORVEX::Zel::DB
