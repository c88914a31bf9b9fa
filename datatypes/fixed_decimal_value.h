#pragma once

#include <cstdint>

namespace DataTypes {

// A fixed-point decimal: a signed 128-bit two's-complement coefficient in two words, times
// 10^-scale. The record is part of the contract with the server; its operations are the value
// library's.
struct FixedDecimalValue {
  std::uint64_t high;      // upper half of the coefficient; bit 63 is the sign
  std::uint64_t low;       // lower half
  std::uint8_t scale;      // decimal digits behind the point
  std::uint8_t precision;  // decimal digits in all
};

}  // namespace DataTypes
