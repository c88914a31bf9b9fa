#pragma once

#include "datatypes/settings.h"
#include "datatypes/type_table.h"

namespace DataTypes {

// The decimals of a money type and 10^decimals.
struct MoneyFormat {
  unsigned decimals;
  long factor;
};

// Of a money type only.
inline MoneyFormat moneyFormat(unsigned type) {
  if (!isScaledMoney(type))
    return {static_cast<unsigned>(g_legacyMoneyPrecision), g_legacyMoneyFactor};
  const unsigned decimals = kTypeTable[typeNumber(type)].scale;
  long factor = 1;
  for (unsigned i = 0; i < decimals; ++i) factor *= 10;
  return {decimals, factor};
}

}  // namespace DataTypes
