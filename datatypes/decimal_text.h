#pragma once

// Decimal digits of 128-bit coefficients, in and out.

#include <cstddef>

#include "datatypes/int128.h"

namespace DataTypes {

// Reads a decimal text (the syntax of FixedDecimalValue::setDecimalValue) into a signed coefficient
// of `scale` decimals. Returns false when the text is malformed or the number does not fit;
// `coefficient` is undefined then.
bool parseDecimalPlain(const char* text, int scale, Uint128& coefficient);

// The same result, faster for usual texts.
bool parseDecimal(const char* text, int scale, Uint128& coefficient);

// The longest text of a coefficient at scale 255, without the terminator: sign, "0.", digits.
inline constexpr std::size_t kMaxDecimalText = 3 + 255;

// Writes a signed coefficient with `scale` decimals, without a terminator, and returns its length.
// `out` has room for kMaxDecimalText characters.
std::size_t printDecimalPlain(Uint128 coefficient, unsigned scale, char* out);

// The same bytes, faster.
std::size_t printDecimal(Uint128 coefficient, unsigned scale, char* out);

}  // namespace DataTypes
