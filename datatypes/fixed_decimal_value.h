#pragma once

#include <cstdint>

namespace DataTypes {

// A fixed-point decimal: a signed 128-bit two's-complement coefficient in two words, times
// 10^-scale. The record is part of the contract with the server; its operations are the value
// library's. The words have the type that the decimal functions take by reference.
struct FixedDecimalValue {
  unsigned long long high;  // upper half of the coefficient; bit 63 is the sign
  unsigned long long low;   // lower half
  std::uint8_t scale;       // decimal digits behind the point
  std::uint8_t precision;   // decimal digits in all

  // Each sets scale, precision (1 to 38) and coefficient, and zeroes the bytes behind them. Returns
  // whether the value fits the precision; after false the coefficient is undefined.
  // A whole number becomes value x 10^scale.
  bool setDecimalValue(int newPrecision, int newScale, long value);
  bool setDecimalValue(int newPrecision, int newScale, int value);

  // A double is rounded to the scale as printf rounds it; a magnitude below 1e-6 is taken as 0, one
  // above 1e80, an infinity and a NaN fail.
  bool setDecimalValue(int newPrecision, int newScale, double value);

  // A text is blanks, an optional sign, digits with an optional "." or ",", blanks, an optional
  // sign, blanks. Digits behind the scale are dropped, not rounded. Fails without a digit, on any
  // other character and on a null text.
  // Kept: a trailing "-" flips the sign, so 12.5- is -12.5 and -12.5- is 12.5.
  bool setDecimalValue(int newPrecision, int newScale, const char* text);

  // Whether the coefficient needs more digits than the precision; true for a precision outside 1 to
  // 38.
  bool checkPrecisionOverflow() const;

  bool isNegative() const { return (high >> 63) != 0; }

  // Each prepares `a` so that the operation can be done on the coefficients, and gives it scale and
  // precision of the result; `b` is only read. The operation itself is the caller's. Returns false
  // when the result needs more than 34 digits (`a` is unchanged) or the rescaled coefficient does
  // not fit (its coefficient is then undefined).
  static bool toAdditionResultType(FixedDecimalValue& a, FixedDecimalValue& b);
  static bool toSubtractionResultType(FixedDecimalValue& a, FixedDecimalValue& b);
  static bool toMultiplicationResultType(FixedDecimalValue& a, FixedDecimalValue& b);
  static bool toDivisionResultType(FixedDecimalValue& a, FixedDecimalValue& b);

  // Rescales the coefficient of `a` to the scale of `b`, leaving the field `scale` of `a` as it is.
  // Returns false when it does not fit.
  static bool toSameScale(FixedDecimalValue& a, FixedDecimalValue& b);

  // Rescales the coefficient of the smaller scale to the larger one, leaving both fields `scale` as
  // they are. Returns the larger scale, or -1 when the coefficient does not fit.
  static int toMaxScale(FixedDecimalValue& a, FixedDecimalValue& b);
};

}  // namespace DataTypes
