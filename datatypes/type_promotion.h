#pragma once

// Which type holds the values of two types, and the result types of decimal arithmetic.

namespace DataTypes {

// Widens `a` so that it holds the values of both types. Returns false when there is no such type;
// `a` is then unchanged. The rule is not symmetric.
bool maximizeType(unsigned int& a, const unsigned int& b);

// Makes `a` a type that values of both types can be shown in, text and bytes included. Never fails.
void maximizeAnyType(unsigned int& a, const unsigned int& b);

// Replaces `a` by the fixed decimal that holds its values.
// Kept: types without digits, and fixed decimals themselves, become the bare code 30, that is
// decimal(0,0).
void maximizeTypeToFixedDecimal(unsigned int& a);

// The type of the sum, difference, product or quotient of two fixed decimals. Returns whether its
// precision is at most 34; `result` is set in either case, unclamped.
bool getFixedDecimalAdditionResultType(unsigned int& result, const unsigned int& a,
                                       const unsigned int& b);
bool getFixedDecimalSubtractionResultType(unsigned int& result, const unsigned int& a,
                                          const unsigned int& b);
bool getFixedDecimalMultiplicationResultType(unsigned int& result, const unsigned int& a,
                                             const unsigned int& b);
bool getFixedDecimalDivisionResultType(unsigned int& result, const unsigned int& a,
                                       const unsigned int& b);

}  // namespace DataTypes
