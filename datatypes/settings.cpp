#include "datatypes/settings.h"

#include <cmath>

namespace DataTypes {

std::size_t g_dateSize = 8;
std::size_t g_decimalSize = 6;
double g_tolerance = 0.000001;
std::size_t g_legacyMoneyPrecision = 4;
long g_legacyMoneyFactor = 10000;

void setDecimalSize(std::size_t n) {
  g_decimalSize = n;
  // One rounding: repeated division would drift from 10^-n.
  g_tolerance = std::pow(10.0, -static_cast<double>(n));
}

std::size_t getDecimalSize() {
  return g_decimalSize;
}

void setDateSize(std::size_t n) {
  if (n == 4 || n == 8) g_dateSize = n;
}

void setLegacyMoneyPrecision(std::size_t n) {
  constexpr std::size_t kTooManyDigits = 19;  // 10^19 does not fit the factor
  if (n >= kTooManyDigits) return;
  g_legacyMoneyPrecision = n;
  g_legacyMoneyFactor = 1;
  for (std::size_t i = 0; i < n; ++i) g_legacyMoneyFactor *= 10;
}

}  // namespace DataTypes
