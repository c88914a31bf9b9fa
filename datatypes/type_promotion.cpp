#include "datatypes/type_promotion.h"

#include <algorithm>

#include "datatypes/settings.h"
#include "datatypes/type_table.h"

namespace DataTypes {
namespace {

struct Digits {
  int integer;
  int scale;
};

Digits digitsOf(unsigned type) {
  const TypeRow* row = typeRow(type);
  const DigitSource source = row != nullptr ? row->digits : DigitSource::kNone;
  switch (source) {
    case DigitSource::kNone:
      return {0, 0};
    case DigitSource::kRow:
      return {row->integerDigits, row->scale};
    case DigitSource::kLegacyMoney: {
      const int precision = static_cast<int>(g_legacyMoneyPrecision);
      return {19 - precision, precision};
    }
    case DigitSource::kTypeCode: {
      const int scale = static_cast<int>(scaleOf(type));
      return {static_cast<int>(precisionOf(type)) - scale, scale};
    }
  }
  return {0, 0};
}

// The decimal that holds both; digits behind the point give way when 34 are too few.
unsigned commonDecimal(unsigned a, unsigned b) {
  const Digits digitsA = digitsOf(a);
  const Digits digitsB = digitsOf(b);
  const int integer = std::max(digitsA.integer, digitsB.integer);
  const int scale = std::max(digitsA.scale, digitsB.scale);
  constexpr int kMax = kMaxDecimalPrecision;
  if (integer + scale <= kMax) return createFixedDecimal(integer + scale, scale);
  return createFixedDecimal(kMax, std::max(0, kMax - integer));
}

// Whether a value of type `number` fits a money type of `scale` decimals.
bool fitsMoney(unsigned number, std::size_t scale) {
  constexpr std::size_t kMaxScaleForInteger = 9;
  return number == kBoolean || (number == kInteger && scale <= kMaxScaleForInteger);
}

// The decimals of a money type number; only for money types.
std::size_t moneyScale(unsigned number) {
  return number == kMoney ? g_legacyMoneyPrecision : number - kMoney1 + 1;
}

bool isMoney(unsigned number) {
  return number == kMoney || isScaledMoney(number);
}

constexpr TypeEnum kScalarOrder[] = {kBigDateTime, kTimestamp, kDate,   kTime,
                                     kInterval,    kLong,      kInteger};

// One side is money: the other one must fit it.
bool maximizeMoney(unsigned& a, unsigned b) {
  const unsigned numberA = typeNumber(a);
  const unsigned numberB = typeNumber(b);
  // Plain money is asked before money(n), on either side.
  const bool keepA = numberA == kMoney || (isMoney(numberA) && numberB != kMoney);
  if (keepA) return fitsMoney(numberB, moneyScale(numberA));
  if (!fitsMoney(numberA, moneyScale(numberB))) return false;
  a = numberB == kMoney ? static_cast<unsigned>(kMoney) : b;
  return true;
}

// The first of `order` that either side has becomes `a`.
template <std::size_t Count>
bool takeFirst(unsigned& a, unsigned numberB, const TypeEnum (&order)[Count]) {
  for (const TypeEnum number : order) {
    if (typeNumber(a) != number && numberB != number) continue;
    a = number;
    return true;
  }
  return false;
}

bool decimalResult(unsigned& result, int precision, int scale) {
  constexpr unsigned kFirstInvalid = createFixedDecimal(kMaxDecimalPrecision + 1, 0) & ~0xFFU;
  result = createFixedDecimal(precision, scale);
  return result < kFirstInvalid;
}

struct Operand {
  explicit Operand(unsigned type)
      : precision(static_cast<int>(precisionOf(type))), scale(static_cast<int>(scaleOf(type))) {}
  int precision;
  int scale;
};

}  // namespace

bool maximizeType(unsigned int& a, const unsigned int& b) {
  const unsigned numberA = typeNumber(a);
  const unsigned numberB = typeNumber(b);
  const auto either = [&](TypeEnum number) { return numberA == number || numberB == number; };

  if (either(kNoType)) return false;
  if (numberB == kUnknown) return true;
  if (numberA == kUnknown) {
    a = b;
    return true;
  }
  if (either(kString) || either(kBinary)) return a == b;
  if (either(kFloat)) {
    a = kFloat;
    return true;
  }
  if (either(kFixedDecimal)) {
    a = commonDecimal(a, b);
    return true;
  }
  if (a == b) return true;
  if (isMoney(numberA) || isMoney(numberB)) return maximizeMoney(a, b);
  if (takeFirst(a, numberB, kScalarOrder)) return true;
  // Kept: boolean takes in whatever is left, but nothing that is left takes in boolean.
  if (numberA != kBoolean) return false;
  a = kBoolean;
  return true;
}

void maximizeAnyType(unsigned int& a, const unsigned int& b) {
  constexpr TypeEnum kTextFirst[] = {kBinary, kString, kFloat};
  constexpr TypeEnum kTimes[] = {kBigDateTime, kTimestamp, kDate, kTime, kInterval, kLong};
  constexpr TypeEnum kSmall[] = {kInteger, kInt16, kBoolean, kUnknown};
  const unsigned numberA = typeNumber(a);
  const unsigned numberB = typeNumber(b);

  if (takeFirst(a, numberB, kTextFirst)) return;
  if (numberA == kFixedDecimal || numberB == kFixedDecimal) {
    a = commonDecimal(a, b);
    return;
  }
  if (takeFirst(a, numberB, kTimes)) return;
  if (numberA == kMoney && isScaledMoney(numberB)) {
    if (g_legacyMoneyPrecision >= moneyScale(numberB)) a = b;
    return;
  }
  if (isScaledMoney(numberA) && numberB == kMoney) {
    if (moneyScale(numberA) > g_legacyMoneyPrecision) a = kMoney;
    return;
  }
  if (numberA == kMoney || numberB == kMoney) {
    a = kMoney;
    return;
  }
  // Kept: of two money scales the smaller wins.
  for (unsigned number = kMoney1; number <= kMoney15; ++number) {
    if (numberA != number && numberB != number) continue;
    a = number;
    return;
  }
  takeFirst(a, numberB, kSmall);
}

void maximizeTypeToFixedDecimal(unsigned int& a) {
  const bool isDecimal = typeNumber(a) == kFixedDecimal;
  const Digits digits = isDecimal ? Digits{0, 0} : digitsOf(a);
  a = createFixedDecimal(digits.integer + digits.scale, digits.scale);
}

bool getFixedDecimalAdditionResultType(unsigned int& result, const unsigned int& a,
                                       const unsigned int& b) {
  const Operand left(a);
  const Operand right(b);
  const int scale = std::max(left.scale, right.scale);
  const int integer = std::max(left.precision - left.scale, right.precision - right.scale);
  return decimalResult(result, scale + integer + 1, scale);
}

bool getFixedDecimalSubtractionResultType(unsigned int& result, const unsigned int& a,
                                          const unsigned int& b) {
  return getFixedDecimalAdditionResultType(result, a, b);
}

bool getFixedDecimalMultiplicationResultType(unsigned int& result, const unsigned int& a,
                                             const unsigned int& b) {
  const Operand left(a);
  const Operand right(b);
  return decimalResult(result, left.precision + right.precision + 1, left.scale + right.scale);
}

bool getFixedDecimalDivisionResultType(unsigned int& result, const unsigned int& a,
                                       const unsigned int& b) {
  const Operand left(a);
  const Operand right(b);
  return decimalResult(result, left.precision + right.precision + right.scale + 1,
                       left.scale + right.precision + 1);
}

}  // namespace DataTypes
