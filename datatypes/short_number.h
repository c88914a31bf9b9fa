#pragma once

// The texts of numbers as databases write them, read without a look at what else a number's text
// may be. Each function gives the result of the general form, or says that the text is for that
// one.

#include <cstddef>
#include <cstdint>

#include "datatypes/fixed_decimal_value.h"

namespace DataTypes {

// How many bytes must be readable from the start of a text, whatever stands behind its end.
inline constexpr std::size_t kShortNumberRoom = 9;

// Reads an optional "-" and 1 to 16 digits as strtoll does; false, with `value` left alone, for
// every other text.
bool readShortInteger(const char* text, std::size_t length, std::int64_t& value);

// Reads a decimal: an optional sign, digits, and behind a point as many as the type code's scale or
// up to three fewer, 16 characters at most. Gives what
// FixedDecimalValue::setDecimalValue gives for the code's precision and scale, faster. False, with
// `value` left alone, for every other text or type: those are for setDecimalValue to judge.
bool readShortDecimal(const char* text, std::size_t length, unsigned int typeCode,
                      FixedDecimalValue& value);

}  // namespace DataTypes
