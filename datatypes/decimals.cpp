#include "datatypes/decimals.h"

#include <climits>

#include "datatypes/int128.h"

namespace DataTypes {
namespace {

constexpr int kMaxPower = static_cast<int>(kPowersOfTen.size());
constexpr int kMaxReciprocal = static_cast<int>(kReciprocals.size());

constexpr int kMinDoubleScale = -9;
constexpr int kMaxDoubleScale = 30;

// 10^-scale, indexed by 30 - scale.
constexpr double kDoubleScales[] = {1e-30, 1e-29, 1e-28, 1e-27, 1e-26, 1e-25, 1e-24, 1e-23,
                                    1e-22, 1e-21, 1e-20, 1e-19, 1e-18, 1e-17, 1e-16, 1e-15,
                                    1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9,  1e-8,  1e-7,
                                    1e-6,  1e-5,  1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,
                                    1e2,   1e3,   1e4,   1e5,   1e6,   1e7,   1e8,   1e9};
static_assert(sizeof kDoubleScales / sizeof *kDoubleScales ==
              kMaxDoubleScale - kMinDoubleScale + 1);

// Decimal128: the exponent field holds exponent + 6176 and runs to 12287.
constexpr int kExponentBias = 6176;
constexpr int kMaxBiasedExponent = 12287;
constexpr unsigned kCoefficientHighBits = 49;

void store(Uint128 value, unsigned long long& high, unsigned long long& low) {
  high = highWord(value);
  low = lowWord(value);
}

// The coefficient without its decimals; INT_MIN has no negation.
bool wholePart(unsigned long long& high, unsigned long long& low, int scale) {
  if (scale == 0) return true;
  return decimal_shift(high, low, scale == INT_MIN ? INT_MAX : -scale);
}

}  // namespace

bool decimal_shift(unsigned long long& high, unsigned long long& low, const int& n) {
  const Uint128 value = makeUint128(high, low);
  if (n == 0 || value == 0) return true;
  if (n < -kMaxReciprocal) {
    store(0, high, low);
    return true;
  }
  const Uint128 magnitude = magnitudeOf(value);
  Uint128 shifted = 0;
  if (n < 0) {
    shifted = wideProduct(magnitude, kReciprocals[static_cast<unsigned>(-n - 1)]).high;
  } else {
    const bool inTable = n <= kMaxPower;
    const Uint256 product = inTable
                                ? wideProduct(magnitude, kPowersOfTen[static_cast<unsigned>(n - 1)])
                                : Uint256{1, 0};
    if (product.high != 0) {
      store(magnitude, high, low);
      return false;
    }
    shifted = product.low;
  }
  store(signBit(value) ? -shifted : shifted, high, low);
  return true;
}

bool decimal_setFromInt64(unsigned long long& high, unsigned long long& low, long& value,
                          int scale) {
  high = value < 0 ? ULLONG_MAX : 0;
  low = static_cast<unsigned long long>(value);
  return decimal_shift(high, low, scale);
}

bool decimal_setFromInt(unsigned long long& high, unsigned long long& low, int& value, int scale) {
  long wide = value;
  return decimal_setFromInt64(high, low, wide, scale);
}

bool decimal_getInt64(unsigned long long high, unsigned long long low, const int& scale,
                      long& out) {
  const bool isWhole = wholePart(high, low, scale);
  out = static_cast<long>(low);
  return isWhole && high == (out < 0 ? ULLONG_MAX : 0);
}

bool decimal_getDate(unsigned long long high, unsigned long long low, const int& scale, long& out) {
  return decimal_getInt64(high, low, scale, out);
}

bool decimal_getInt(unsigned long long high, unsigned long long low, const int& scale, int& out) {
  const bool isWhole = wholePart(high, low, scale);
  out = static_cast<int>(static_cast<unsigned>(low));
  const unsigned long long upper = low >> 32;
  return isWhole && ((high == 0 && upper == 0) || (high == ULLONG_MAX && upper == UINT_MAX));
}

bool decimal_getDouble(const unsigned long long& high, const unsigned long long& low,
                       const int& scale, double& out) {
  if (scale < kMinDoubleScale || scale > kMaxDoubleScale) return false;
  const Uint128 value = makeUint128(high, low);
  const auto magnitude = static_cast<double>(magnitudeOf(value));
  out = signBit(value) ? -magnitude : magnitude;
  if (scale != 0) out *= kDoubleScales[kMaxDoubleScale - scale];
  return true;
}

bool toBID128(unsigned long long& high, unsigned long long& low, int scale, BID_UINT128& out) {
  const Uint128 value = makeUint128(high, low);
  const unsigned long long sign = signBit(value) ? 1ULL << 63 : 0;
  store(magnitudeOf(value), high, low);
  if (high >> kCoefficientHighBits != 0) return false;
  if (scale > kExponentBias || scale < kExponentBias - kMaxBiasedExponent) return false;
  const auto exponent = static_cast<unsigned long long>(kExponentBias - scale);
  out.w[1] = sign | exponent << kCoefficientHighBits | high;
  out.w[0] = low;
  return true;
}

bool fromBID128(unsigned long long& high, unsigned long long& low, const BID_UINT128& in) {
  const unsigned long long mask = (1ULL << kCoefficientHighBits) - 1;
  const Uint128 magnitude = makeUint128(in.w[1] & mask, in.w[0]);
  store(in.w[1] >> 63 != 0 ? -magnitude : magnitude, high, low);
  return true;
}

}  // namespace DataTypes
