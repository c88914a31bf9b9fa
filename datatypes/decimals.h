#pragma once

// Operations on the coefficient of a fixed decimal: a signed 128-bit two's-complement number in two
// words, always in the order high, low.

#include "datatypes/fixed_decimal_value.h"

namespace DataTypes {

// A decimal128 number in the binary-integer encoding of IEEE 754-2008: w[0] the low, w[1] the high
// word.
struct alignas(16) BID_UINT128 {
  unsigned long long w[2];
};

// Multiplies (n > 0) or divides (n < 0, truncating toward zero) the coefficient by 10^|n|. Returns
// false when the product does not fit 128 bits; the words then hold the magnitude of the
// coefficient.
// Kept: the sign is not checked again, a product from 2^127 on comes back with the wrong sign; and
// a quotient can be one too high when the dropped digits are nearly all nines.
bool decimal_shift(unsigned long long& high, unsigned long long& low, const int& n);

// Sets the coefficient to value x 10^scale. Returns false when it does not fit, as decimal_shift.
bool decimal_setFromInt64(unsigned long long& high, unsigned long long& low, long& value,
                          int scale);
bool decimal_setFromInt(unsigned long long& high, unsigned long long& low, int& value, int scale);

// The whole part of the value. `out` is always written; returns whether it fits 64 bits.
bool decimal_getInt64(unsigned long long high, unsigned long long low, const int& scale, long& out);

// The same for a date held as its count of seconds.
bool decimal_getDate(unsigned long long high, unsigned long long low, const int& scale, long& out);

// The whole part of the value. `out` is always written; returns whether it fits 32 bits.
// Kept: bit 31 is not compared with the sign, 2147483648 succeeds and reads as -2147483648.
bool decimal_getInt(unsigned long long high, unsigned long long low, const int& scale, int& out);

// The value as a double. Scales outside -9 to 30 are refused: false, `out` is left alone.
bool decimal_getDouble(const unsigned long long& high, const unsigned long long& low,
                       const int& scale, double& out);

// The value as a decimal128. Returns false when the coefficient needs more than 113 bits or the
// scale is beyond the format's exponents.
// Kept: a negative coefficient is negated in the caller's words; they hold the magnitude
// afterwards.
bool toBID128(unsigned long long& high, unsigned long long& low, int scale, BID_UINT128& out);

// The coefficient of a decimal128 that toBID128 made. The exponent is ignored: the caller knows the
// scale. Large coefficients, infinities and NaNs are not recognised. Always true.
bool fromBID128(unsigned long long& high, unsigned long long& low, const BID_UINT128& in);

}  // namespace DataTypes
