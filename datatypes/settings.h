#pragma once

// The settings of the value library. They are process globals without a lock: set them at start-up,
// before the first conversion.

#include <cstddef>

namespace DataTypes {

extern std::size_t g_dateSize;              // bytes convertToString reads of a date: 8 or 4
extern std::size_t g_decimalSize;           // decimals a float is printed with
extern double g_tolerance;                  // a float of smaller magnitude is printed as 0
extern std::size_t g_legacyMoneyPrecision;  // decimals of plain money
extern long g_legacyMoneyFactor;            // 10^g_legacyMoneyPrecision

// Sets the number of decimals of printed floats and the tolerance 10^-n that goes with it. No
// bounds.
void setDecimalSize(std::size_t n);
std::size_t getDecimalSize();

// Sets the size of a date in bytes. Only 4 and 8 are accepted, anything else changes nothing.
void setDateSize(std::size_t n);

// Sets the decimals of plain money, and its factor. 19 and more change nothing.
void setLegacyMoneyPrecision(std::size_t n);

}  // namespace DataTypes
