#pragma once

// Decimal digits of 64-bit numbers, byte for byte as printf writes them.

#include <cstddef>

namespace DataTypes {

// The longest text of a 64-bit number, padded to at most that width.
inline constexpr std::size_t kMaxNumberText = 32;

// Writes "%0*lld" without a terminator and returns its length. `out` has room for kMaxNumberText
// characters, `width` is below that.
std::size_t printPaddedPlain(long value, int width, char* out);

// The same bytes, faster.
std::size_t printPadded(long value, int width, char* out);

}  // namespace DataTypes
