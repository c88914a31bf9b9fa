#include "datatypes/comparisons.h"

#include <algorithm>
#include <cstring>

#include "datatypes/conversions.h"
#include "datatypes/int128.h"
#include "datatypes/packed.h"
#include "datatypes/type_table.h"

namespace DataTypes {
namespace {

template <class Number>
bool isLess(const unsigned char* a, const unsigned char* b) {
  return loadPacked<Number>(a, false) < loadPacked<Number>(b, false);
}

// A cell that nobody filled points nowhere; it holds the empty text.
const char* textOf(const DataValue& cell) {
  return cell.string != nullptr ? cell.string : "";
}

BinaryValue packedBinary(const unsigned char* packed) {
  return {packed + kPackedLengthBytes, getLengthFromPackedBinary(packed)};
}

// Whether coefficient a x 10^-scaleA is below b x 10^-scaleB, both without sign.
bool isMagnitudeLess(Uint128 a, unsigned scaleA, Uint128 b, unsigned scaleB) {
  if (scaleA == scaleB || a == 0 || b == 0) return a < b;
  // The number of fewer decimals is brought to the other scale.
  const bool widensA = scaleA < scaleB;
  const unsigned shift = widensA ? scaleB - scaleA : scaleA - scaleB;
  if (shift > kPowersOfTen.size()) return !widensA;
  const Uint256 wide = wideProduct(widensA ? a : b, kPowersOfTen[shift - 1]);
  if (wide.high != 0) return !widensA;
  return widensA ? wide.low < b : a < wide.low;
}

bool isDecimalLess(const unsigned char* a, const unsigned char* b, unsigned type) {
  FixedDecimalValue left;
  FixedDecimalValue right;
  std::memcpy(&left, a, sizeof left);
  std::memcpy(&right, b, sizeof right);
  if (precisionOf(type) != 0) left.scale = right.scale = static_cast<std::uint8_t>(scaleOf(type));
  if (left.isNegative() != right.isNegative()) return left.isNegative();
  const Uint128 leftMagnitude = magnitudeOf(makeUint128(left.high, left.low));
  const Uint128 rightMagnitude = magnitudeOf(makeUint128(right.high, right.low));
  return left.isNegative()
             ? isMagnitudeLess(rightMagnitude, right.scale, leftMagnitude, left.scale)
             : isMagnitudeLess(leftMagnitude, left.scale, rightMagnitude, right.scale);
}

}  // namespace

int BinaryValue::compare(const BinaryValue& other) const {
  const std::size_t common = std::min(length, other.length);
  if (common != 0)
    if (const int difference = std::memcmp(data, other.data, common)) return difference;
  return length < other.length ? -1 : static_cast<int>(length > other.length);
}

bool equalValues(DataValue& a, DataValue& b, const unsigned int& type) {
  if (a.isNull() || b.isNull()) return false;
  switch (payloadOf(type)) {
    case PayloadKind::kNone:
      return false;
    case PayloadKind::kDouble:
      return a.float64 == b.float64;
    case PayloadKind::kText:
      return std::strcmp(textOf(a), textOf(b)) == 0;
    case PayloadKind::kBytes:
      return a.binary.compare(b.binary) == 0;
    default:
      return std::memcmp(a.bytes, b.bytes, g_column_lengths[typeNumber(type)]) == 0;
  }
}

const unsigned char* getRawValueForHash(DataValue& cell, const unsigned int& type, int& length) {
  length = 0;
  const PayloadKind payload = cell.isNull() ? PayloadKind::kNone : payloadOf(type);
  switch (payload) {
    case PayloadKind::kNone:
      return nullptr;
    case PayloadKind::kText:
      length = static_cast<int>(std::strlen(textOf(cell)));
      return reinterpret_cast<const unsigned char*>(textOf(cell));
    case PayloadKind::kBytes:
      if (cell.binary.data == nullptr || cell.binary.length == 0) return nullptr;
      length = static_cast<int>(cell.binary.length);
      return cell.binary.data;
    default:
      length = static_cast<int>(g_column_lengths[typeNumber(type)]);
      return cell.bytes;
  }
}

bool lessThan(const unsigned char* a, const unsigned char* b, const unsigned int& type) {
  if (a == nullptr || b == nullptr) return false;
  switch (payloadOf(type)) {
    case PayloadKind::kNone:
      return false;
    case PayloadKind::kInt16:
      return isLess<std::int16_t>(a, b);
    case PayloadKind::kInt32:
      return isLess<std::int32_t>(a, b);
    case PayloadKind::kInt64:
      return isLess<std::int64_t>(a, b);
    case PayloadKind::kDouble:
      return isLess<double>(a, b);
    case PayloadKind::kByte:
      return *a < *b;
    case PayloadKind::kText:
      return std::strcmp(reinterpret_cast<const char*>(a), reinterpret_cast<const char*>(b)) < 0;
    case PayloadKind::kBytes:
      return packedBinary(a).compare(packedBinary(b)) < 0;
    case PayloadKind::kDecimal:
      return isDecimalLess(a, b, type);
  }
  return false;
}

}  // namespace DataTypes
