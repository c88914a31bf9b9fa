#pragma once

#include <cstddef>
#include <cstdint>

#include "datatypes/fixed_decimal_value.h"
#include "datatypes/type_code.h"

namespace DataTypes {

// The bytes of a binary value. The cell does not own them.
struct BinaryValue {
  const unsigned char* data;
  std::uint32_t length;  // bytes

  // Compares byte by byte, a shorter value before a longer one that begins with it. Returns a
  // negative number, 0 or a positive number. Defined by the value library.
  int compare(const BinaryValue& other) const;
};

// One value, or NULL. The cell does not know its own type: whoever hands it on says the type code.
// It never frees what it points at; text and bytes belong to whoever filled it in.
struct DataValue {
  static constexpr std::size_t kPayloadBytes = 24;

  union {
    std::int16_t int16;
    std::int32_t int32;
    std::int64_t int64;  // long, dates, times, interval (units: see the type table), money
    double float64;
    std::uint8_t boolean;  // 0 or 1
    const char* string;    // NUL-terminated
    BinaryValue binary;
    FixedDecimalValue decimal;
    unsigned char bytes[kPayloadBytes];  // equality and hashing of decimals look at all 24
  };
  std::uint8_t null;  // 1: NULL, the payload means nothing; 0: a value

  // A zeroed value that is not NULL.
  constexpr DataValue() : bytes{}, null(0) {}

  bool isNull() const { return null != 0; }
  void setNull() { null = 1; }

  // Zeroes the payload and clears the null flag.
  void clear() { *this = DataValue(); }
};

static_assert(sizeof(FixedDecimalValue) == DataValue::kPayloadBytes);
static_assert(offsetof(DataValue, null) == DataValue::kPayloadBytes);

}  // namespace DataTypes
