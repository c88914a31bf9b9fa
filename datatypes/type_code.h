#pragma once

// The type code that travels beside every value: which type it is and, for fixed decimals, its
// precision and scale. Part of the contract between the server and the plug-in.

#include <cstdint>

namespace DataTypes {

// Type numbers: the low 8 bits of a type code. The values are fixed by the contract.
enum TypeEnum : std::uint32_t {
  kInt16 = 0,
  kInteger = 1,
  kLong = 2,
  kFloat = 3,
  kDate = 4,
  kString = 5,
  kUnknown = 6,
  kMoney = 7,
  kTimestamp = 8,
  kNoType = 9,
  kBoolean = 10,
  kMoney1 = 11,  // money(1); money(n) is kMoney1 + n - 1
  kMoney15 = 25,
  kInterval = 26,
  kBigDateTime = 27,
  kBinary = 28,
  kTime = 29,
  kFixedDecimal = 30,
};

inline constexpr unsigned kTypeCount = 31;

// Bits of a type code: 0-7 type number, 8-13 scale, 14-27 precision (the last two only for type
// 30).
inline constexpr unsigned kTypeNumberMask = 0xFF;
inline constexpr unsigned kScaleShift = 8;
inline constexpr unsigned kScaleMask = 0x3F;
inline constexpr unsigned kPrecisionShift = 14;
inline constexpr unsigned kPrecisionMask = 0x3FFF;

// The largest precision of a valid fixed decimal, in digits.
inline constexpr unsigned kMaxDecimalPrecision = 34;

constexpr unsigned typeNumber(unsigned typeCode) {
  return typeCode & kTypeNumberMask;
}

constexpr unsigned scaleOf(unsigned typeCode) {
  return (typeCode >> kScaleShift) & kScaleMask;
}

constexpr unsigned precisionOf(unsigned typeCode) {
  return (typeCode >> kPrecisionShift) & kPrecisionMask;
}

// The code of decimal(precision, scale). No range check; both numbers are masked to their bits.
constexpr unsigned createFixedDecimal(int precision, int scale) {
  return kFixedDecimal | (static_cast<unsigned>(scale) & kScaleMask) << kScaleShift |
         (static_cast<unsigned>(precision) & kPrecisionMask) << kPrecisionShift;
}

}  // namespace DataTypes
