#pragma once

// Numbers from text and into text. Each fast form gives the result of the plain form beside it.

#include <cstddef>

namespace DataTypes {

// How a constant was read.
enum class NumberStatus {
  kOk,
  kBadBegin,
  kBadFraction,  // no digit behind the point
  kBadEnd,
  kOutOfRange,
};

// A decimal integer that is the whole text. The first character must be a sign or a digit. `value`
// is set only when the status is kOk.
NumberStatus parseIntegerPlain(const char* text, long& value);
NumberStatus parseInteger(const char* text, long& value);

// A floating-point number that is the whole text. The first character must be a sign, a point or a
// digit. An infinite result is out of range, one too small for a double is not.
NumberStatus parseDoublePlain(const char* text, double& value);
NumberStatus parseDouble(const char* text, double& value);

// An amount scaled by 10^decimals, which is `factor`. Digits behind the decimals are dropped.
// Kept: the fraction counts against the amount only when the very first character is "-"; white
// space before it hides the sign from the fraction.
NumberStatus parseMoneyPlain(const char* text, unsigned decimals, long factor, long& value);
NumberStatus parseMoney(const char* text, unsigned decimals, long factor, long& value);

// Writes an amount scaled by 10^decimals, as snprintf would.
// Kept: the limit is not reduced for the sign, so up to outSize + 1 bytes are written.
void printMoneyPlain(long value, unsigned decimals, long factor, char* out, std::size_t outSize);
void printMoney(long value, unsigned decimals, long factor, char* out, std::size_t outSize);

// Writes a double under the settings of the library, as snprintf would.
void printDoublePlain(double value, char* out, std::size_t outSize);
void printDouble(double value, char* out, std::size_t outSize);

// Copies a text of known length as snprintf would: cut to outSize - 1 characters and terminated;
// nothing for size 0.
void copyText(const char* text, std::size_t length, char* out, std::size_t outSize);

}  // namespace DataTypes
