#pragma once

#include <cstddef>
#include <cstdint>

#include "datatypes/data_value.h"
#include "host/export.h"

namespace KORVEX::Zel::DB {

// One result row: typed values in column order. Owns the malloc'ed buffers that were handed over.
class ZEL_EXPORT Row {
 public:
  Row();
  ~Row();  // frees every buffer that was handed over
  Row(const Row&) = delete;
  Row& operator=(const Row&) = delete;

  // Appends a column. With `handOver`, the text or bytes that a non-null string or binary cell
  // points at (from malloc) belong to the row from now on; if appending throws, they stay the
  // caller's.
  void addColumn(unsigned int type, const DataTypes::DataValue& value, bool handOver);

  std::size_t getNumColumns() const;
  // Index from 0; it must be below getNumColumns().
  unsigned int getColumnType(std::size_t index) const;
  const DataTypes::DataValue& getColumnValue(std::size_t index) const;

 private:
  struct Column {
    DataTypes::DataValue value;
    unsigned int type;
    std::uint32_t earlierOwned;  // of a column that owns its buffer: as lastOwned_ was before it
  };
  static constexpr std::size_t kUsualColumns = 16;

  void ownLast();
  void addColumnFar(unsigned int type, const DataTypes::DataValue& value, bool handOver);

  std::uint32_t lastOwned_ = 0;  // the last such column, counted from 1; 0: there is none
  Column* columns_ = usual_;
  Column* end_ = usual_;  // behind the last column
  Column* roomEnd_ = usual_ + kUsualColumns;
  // Most rows have no more columns than these, and are one block of memory.
  union {
    Column usual_[kUsualColumns];
  };
};

}  // namespace KORVEX::Zel::DB
