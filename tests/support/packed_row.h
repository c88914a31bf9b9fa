#pragma once

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "datatypes/data_value.h"
#include "host/row_internal2.h"

namespace KORVEX::Zel::DB {

// A value in its packed form; nothing is NULL.
using PackedValue = std::optional<std::string>;

template <typename Raw>
std::string rawBytes(const Raw& raw) {
  return {reinterpret_cast<const char*>(&raw), sizeof raw};
}

// The packed form of a cell, as the server lays its rows out.
inline PackedValue packedValue(const DataTypes::DataValue& cell, unsigned int type) {
  if (cell.isNull()) return std::nullopt;
  switch (DataTypes::typeNumber(type)) {
    case DataTypes::kInt16:
      return rawBytes(cell.int16);
    case DataTypes::kInteger:
      return rawBytes(cell.int32);
    case DataTypes::kBoolean:
      return rawBytes(cell.boolean);
    case DataTypes::kString:
      return std::string(cell.string) + '\0';
    case DataTypes::kFixedDecimal:
      return rawBytes(cell.decimal);
    case DataTypes::kBinary: {
      const std::uint32_t length = cell.binary.length;
      std::string packed = rawBytes(__builtin_bswap32(length));
      packed.append(reinterpret_cast<const char*>(cell.binary.data), length);
      return packed;
    }
    default:
      return rawBytes(cell.int64);
  }
}

// A packed row of values; good as long as the object.
class PackedRow {
 public:
  explicit PackedRow(const std::vector<PackedValue>& values) {
    bytes_.resize(RowInternal2::kHeaderBytes + (values.size() + 1) * sizeof(int) + sizeof(int));
    for (std::size_t i = 0; i < values.size(); ++i) {
      setOffset(i, values[i] ? static_cast<int>(bytes_.size()) : 0);
      if (values[i]) bytes_ += *values[i];
    }
    setOffset(values.size(), static_cast<int>(bytes_.size()));
  }

  const RowInternal2* get() const {
    return static_cast<const RowInternal2*>(static_cast<const void*>(bytes_.data()));
  }

 private:
  void setOffset(std::size_t column, int offset) {
    std::memcpy(&bytes_[RowInternal2::kHeaderBytes + column * sizeof offset], &offset,
                sizeof offset);
  }

  std::string bytes_;
};

}  // namespace KORVEX::Zel::DB
