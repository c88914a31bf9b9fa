#include "datatypes/decimals.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "datatypes/decimal_text.h"
#include "datatypes/int128.h"

extern "C" {
#include <bid_conf.h>
#include <bid_functions.h>
}

namespace DataTypes {
namespace {

FixedDecimalValue decimal(Int128 coefficient, int precision, int scale) {
  const auto bits = static_cast<Uint128>(coefficient);
  return {highWord(bits), lowWord(bits), static_cast<std::uint8_t>(scale),
          static_cast<std::uint8_t>(precision)};
}

Int128 coefficientOf(const FixedDecimalValue& value) {
  return static_cast<Int128>(makeUint128(value.high, value.low));
}

Uint128 number(const char* digits) {
  Uint128 value = 0;
  for (; *digits != '\0'; ++digits) value = value * 10 + static_cast<unsigned>(*digits - '0');
  return value;
}

TEST(FixedDecimal, FromText) {
  const struct {
    int precision, scale;
    const char* text;
    bool isOk;
    long coefficient;
  } rows[] = {
      // clang-format off
      {5, 2, "123.456", true, 12345}, {5, 2, "1.5", true, 150}, {5, 2, "  -1,5  ", true, -150},
      {5, 2, "12.5-", true, -1250}, {5, 2, "-12.5-", true, 1250}, {5, 2, "12.5 + ", true, 1250},
      {5, 2, "+.5", true, 50}, {5, 2, "5.", true, 500}, {5, 2, "-0.001", true, 0},
      {5, 2, "999.99", true, 99999}, {5, 2, "1000", false, 0}, {5, 2, "", false, 0},
      {5, 2, "   ", false, 0}, {5, 2, "-", false, 0}, {5, 2, ".", false, 0},
      {5, 2, "1.2.3", false, 0}, {5, 2, "1e3", false, 0}, {5, 2, "\t1", false, 0},
      {5, 2, "- 1", false, 0}, {5, 2, "1 -  x", false, 0}, {5, 2, "1--", false, 0},
      {3, 0, "7.99", true, 7}, {5, 7, "0.0012345678", true, 12345}, {5, 7, "0.01", false, 0},
      {1, 63, "0.0", true, 0},
      {34, 17, "1.00000000000000007", true, 100000000000000007},
      {34, 20, "1.00000000000000000007", true, 7766279631452241927}, {0, 0, "0", false, 0},
      {39, 0, "0", false, 0},
      {18, 0, "000000000000000000000000000000000000000012", true, 12},
      {18, 2, "1.2300000000000000000000000000000000000000000000000009", true, 123},
      // clang-format on
  };
  for (const auto& row : rows) {
    FixedDecimalValue value;
    EXPECT_EQ(value.setDecimalValue(row.precision, row.scale, row.text), row.isOk) << row.text;
    if (row.isOk) {
      EXPECT_EQ(static_cast<long>(coefficientOf(value)), row.coefficient) << row.text;
    }
  }
  FixedDecimalValue value;
  EXPECT_FALSE(value.setDecimalValue(5, 2, static_cast<const char*>(nullptr)));
}

TEST(FixedDecimal, FromTextAtTheEdges) {
  const struct {
    int precision, scale;
    const char* text;
    bool isOk;
  } rows[] = {
      {38, 0, "99999999999999999999999999999999999999", true},
      {38, 0, "100000000000000000000000000000000000000", false},
      {38, 0, "170141183460469231731687303715884105728", false},
      {38, 0, "999999999999999999999999999999999999999999", false},
      {38, 38, "1", false},
      {38, 37, "9.9999999999999999999999999999999999999", true},
      {34, 34, "0.9999999999999999999999999999999999", true},
  };
  for (const auto& row : rows) {
    FixedDecimalValue value;
    EXPECT_EQ(value.setDecimalValue(row.precision, row.scale, row.text), row.isOk) << row.text;
  }
  // Coefficients that no precision allows.
  Uint128 coefficient = 0;
  EXPECT_TRUE(parseDecimalPlain("170141183460469231731687303715884105727", 0, coefficient));
  EXPECT_TRUE(coefficient == ~Uint128{0} >> 1);
  EXPECT_TRUE(parseDecimalPlain("-170141183460469231731687303715884105728", 0, coefficient));
  EXPECT_FALSE(parseDecimalPlain("170141183460469231731687303715884105728", 0, coefficient));
  for (const int precision : {0, 39})
    EXPECT_TRUE(decimal(0, precision, 0).checkPrecisionOverflow()) << precision;
  // Scale and precision are stored, and the bytes behind them are zero.
  FixedDecimalValue value;
  std::memset(&value, 0xFF, sizeof value);
  ASSERT_TRUE(value.setDecimalValue(9, 3, "-2.5"));
  const unsigned char expected[8] = {3, 9};
  EXPECT_EQ(std::memcmp(reinterpret_cast<unsigned char*>(&value) + 16, expected, 8), 0);
  EXPECT_TRUE(value.isNegative());
}

TEST(FixedDecimal, FromNumbers) {
  FixedDecimalValue value;
  EXPECT_TRUE(value.setDecimalValue(3, 0, 999L));
  EXPECT_FALSE(value.setDecimalValue(3, 0, 1000L));
  EXPECT_TRUE(value.setDecimalValue(3, 0, -999));
  EXPECT_FALSE(value.setDecimalValue(3, 0, -1000));
  EXPECT_TRUE(value.setDecimalValue(38, 19, LONG_MIN));
  EXPECT_FALSE(value.setDecimalValue(38, 20, LONG_MAX));
  EXPECT_FALSE(value.setDecimalValue(0, 0, 0));
  EXPECT_FALSE(value.setDecimalValue(10, -1, 0));
  const struct {
    int precision, scale;
    double number;
    bool isOk;
    long coefficient;
  } rows[] = {
      {10, 2, 0.0000009, true, 0}, {10, 6, 0.000001, true, 1}, {10, 8, 5e-7, true, 0},
      {10, 2, 1.005, true, 100},   {10, 2, 2.675, true, 267},  {10, 2, -1.5, true, -150},
      {10, 0, 2.5, true, 2},       {10, 0, 3.5, true, 4},      {3, 2, 9.999, false, 0},
      {38, 0, 1e81, false, 0},     {38, 0, NAN, false, 0},     {38, 0, INFINITY, false, 0},
      {38, 0, 1e70, false, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(value.setDecimalValue(row.precision, row.scale, row.number), row.isOk) << row.number;
    if (row.isOk) {
      EXPECT_EQ(static_cast<long>(coefficientOf(value)), row.coefficient) << row.number;
    }
  }
}

TEST(FixedDecimal, ResultTypes) {
  using Rule = bool (*)(FixedDecimalValue&, FixedDecimalValue&);
  const struct {
    Rule rule;
    FixedDecimalValue a, b;
    bool isOk;
    long coefficient;
    int precision, scale;
  } rows[] = {
      {FixedDecimalValue::toAdditionResultType, decimal(15, 10, 2), decimal(1, 8, 4), true, 1500,
       13, 4},
      {FixedDecimalValue::toSubtractionResultType, decimal(-15, 10, 4), decimal(1, 8, 2), true, -15,
       11, 4},
      {FixedDecimalValue::toMultiplicationResultType, decimal(15, 17, 2), decimal(1, 17, 4), false,
       15, 17, 2},
      {FixedDecimalValue::toMultiplicationResultType, decimal(15, 16, 2), decimal(1, 17, 4), true,
       150000, 34, 6},
      {FixedDecimalValue::toMultiplicationResultType, decimal(15, 10, 2), decimal(1, 8, 4), true,
       150000, 19, 6},
      {FixedDecimalValue::toDivisionResultType, decimal(-15, 5, 2), decimal(1, 3, 1), true, -150000,
       10, 6},
      {FixedDecimalValue::toAdditionResultType, decimal(1, 34, 0), decimal(1, 34, 34), false, 1, 34,
       0},
      // The shift does not fit.
      {FixedDecimalValue::toAdditionResultType, decimal((Int128{1} << 126) + 5, 10, 0),
       decimal(1, 8, 4), false, 5, 10, 0},
  };
  for (auto row : rows) {
    EXPECT_EQ(row.rule(row.a, row.b), row.isOk);
    EXPECT_EQ(static_cast<long>(coefficientOf(row.a)), row.coefficient);
    EXPECT_EQ(row.a.precision, row.precision);
    EXPECT_EQ(row.a.scale, row.scale);
  }
}

TEST(FixedDecimal, CommonScales) {
  FixedDecimalValue a = decimal(-15, 5, 1);
  FixedDecimalValue b = decimal(2, 5, 3);
  EXPECT_EQ(FixedDecimalValue::toMaxScale(b, a), 3);
  EXPECT_EQ(static_cast<long>(coefficientOf(a)), -1500);
  EXPECT_EQ(a.scale, 1);
  EXPECT_EQ(FixedDecimalValue::toMaxScale(a, a), 1);
  a = decimal(static_cast<Int128>(number("170141183460469231731687303715884105727")), 38, 0);
  EXPECT_EQ(FixedDecimalValue::toMaxScale(a, b), -1);
  a = decimal(-1599, 5, 4);
  EXPECT_TRUE(FixedDecimalValue::toSameScale(a, b));
  EXPECT_EQ(static_cast<long>(coefficientOf(a)), -159);
  EXPECT_EQ(a.scale, 4);
}

TEST(Decimals, Shift) {
  const struct {
    Int128 value;
    int n;
    bool isOk;
    Int128 result;
  } rows[] = {
      {-15, -1, true, -1},
      {15, -1, true, 1},
      {12345, -40, true, 0},
      {-7, INT_MIN, true, 0},
      {0, 39, true, 0},
      {0, INT_MAX, true, 0},
      {5, 39, false, 5},
      {-5, 39, false, 5},
      {-5, 2, true, -500},
      {7, 0, true, 7},
      {static_cast<Int128>(number("34028236692093846346337460743176821146")), 1, false,
       static_cast<Int128>(number("34028236692093846346337460743176821146"))},
      // A negative coefficient is left as its magnitude.
      {-static_cast<Int128>(number("34028236692093846346337460743176821146")), 1, false,
       static_cast<Int128>(number("34028236692093846346337460743176821146"))},
      // A product from 2^127 on comes back with the wrong sign.
      {static_cast<Int128>(number("17014118346046923173168730371588410573")), 1, true,
       static_cast<Int128>(number("170141183460469231731687303715884105730"))},
      // One too high: nearly all dropped digits are nines.
      {static_cast<Int128>(number("59999999999999999999")), -19, true, 6},
      {static_cast<Int128>(number("59999999999999999998")), -19, true, 5},
  };
  for (const auto& row : rows) {
    FixedDecimalValue value = decimal(row.value, 38, 0);
    EXPECT_EQ(decimal_shift(value.high, value.low, row.n), row.isOk) << row.n;
    EXPECT_TRUE(coefficientOf(value) == row.result) << row.n << " " << value.low;
  }
}

TEST(Decimals, WholeNumbers) {
  const struct {
    Int128 value;
    int scale;
    bool fitsLong;
    long asLong;
    bool fitsInt;
    int asInt;
  } rows[] = {
      {0, 0, true, 0, true, 0},
      {12345, 2, true, 123, true, 123},
      {-12399, 2, true, -123, true, -123},
      {-129, 1, true, -12, true, -12},
      {2147483648, 0, true, 2147483648, true, INT_MIN},
      {-2147483649, 0, true, -2147483649, true, INT_MAX},
      {4294967296, 0, true, 4294967296, false, 0},
      {Int128{LONG_MAX} + 1, 0, false, LONG_MIN, false, 0},
      {LONG_MIN, 0, true, LONG_MIN, false, 0},
      {Int128{LONG_MIN} - 1, 0, false, LONG_MAX, false, -1},
      {5, -2, true, 500, true, 500},
      {5, -40, false, 5, false, 5},
      {5, INT_MIN, false, 5, false, 5},
  };
  for (const auto& row : rows) {
    const FixedDecimalValue value = decimal(row.value, 38, 0);
    long wide = 77;
    int narrow = 77;
    EXPECT_EQ(decimal_getInt64(value.high, value.low, row.scale, wide), row.fitsLong);
    EXPECT_EQ(wide, row.asLong);
    EXPECT_EQ(decimal_getDate(value.high, value.low, row.scale, wide), row.fitsLong);
    EXPECT_EQ(decimal_getInt(value.high, value.low, row.scale, narrow), row.fitsInt);
    EXPECT_EQ(narrow, row.asInt);
  }
  unsigned long long high = 1;
  unsigned long long low = 1;
  int narrow = INT_MIN;
  EXPECT_TRUE(decimal_setFromInt(high, low, narrow, 3));
  EXPECT_TRUE(static_cast<Int128>(makeUint128(high, low)) == Int128{INT_MIN} * 1000);
  long wide = LONG_MAX;
  EXPECT_FALSE(decimal_setFromInt64(high, low, wide, 38));
}

TEST(Decimals, Doubles) {
  const struct {
    Int128 value;
    int scale;
    double result;
  } rows[] = {{12345, 2, 123.45},
              {-5, 0, -5.0},
              {5, -9, 5e9},
              {1, 30, 1e-30},
              {static_cast<Int128>(Uint128{1} << 126), 0, 0x1p126},
              {static_cast<Int128>(Uint128{1} << 127), 0, -0x1p127}};
  for (const auto& row : rows) {
    const FixedDecimalValue value = decimal(row.value, 38, 0);
    double result = 0;
    EXPECT_TRUE(decimal_getDouble(value.high, value.low, row.scale, result));
    EXPECT_EQ(result, row.result);
  }
  for (int scale = -9; scale <= 30; ++scale) {
    double power = 0;
    EXPECT_TRUE(decimal_getDouble(0, 1, scale, power));
    EXPECT_EQ(power, std::stod("1e" + std::to_string(-scale)));
  }
  double untouched = 1.5;
  EXPECT_FALSE(decimal_getDouble(0, 1, 31, untouched));
  EXPECT_FALSE(decimal_getDouble(0, 1, -10, untouched));
  EXPECT_EQ(untouched, 1.5);
}

TEST(Decimals, Bid128) {
  unsigned long long high = ULLONG_MAX;
  unsigned long long low = ULLONG_MAX;
  BID_UINT128 bid{};
  ASSERT_TRUE(toBID128(high, low, 2, bid));
  EXPECT_EQ(bid.w[1], 0x8000000000000000ULL | 6174ULL << 49);
  EXPECT_EQ(bid.w[0], 1ULL);
  EXPECT_EQ(high, 0ULL) << "the magnitude stays in the words";
  EXPECT_EQ(low, 1ULL);
  EXPECT_TRUE(fromBID128(high, low, bid));
  EXPECT_EQ(high, ULLONG_MAX);
  high = 1ULL << 49;
  EXPECT_FALSE(toBID128(high, low, 0, bid));
  high = 0;
  EXPECT_FALSE(toBID128(high, low, 6177, bid));
  EXPECT_FALSE(toBID128(high, low, -6112, bid));
}

class RandomDecimals {
 public:
  // Up to 34 digits, of any length.
  Int128 coefficient() {
    const int digits = static_cast<int>(generator_() % 34) + 1;
    Uint128 value =
        makeUint128(generator_(), generator_()) % kPowersOfTen[static_cast<unsigned>(digits) - 1];
    return generator_() % 2 == 0 ? static_cast<Int128>(value) : -static_cast<Int128>(value);
  }
  std::uint64_t next() { return generator_(); }

 private:
  std::mt19937_64 generator_{20240101};
};

// A decimal library reads the digits as what toBID128 makes of the coefficient.
TEST(Decimals, AgreeWithADecimal128Library) {
  RandomDecimals random;
  for (int i = 0; i < 500000; ++i) {
    const int scale = static_cast<int>(random.next() % 31);
    const Int128 coefficient = random.coefficient();
    FixedDecimalValue value = decimal(coefficient, 34, scale);
    BID_UINT128 ours;
    ASSERT_TRUE(toBID128(value.high, value.low, scale, ours));
    ASSERT_TRUE(fromBID128(value.high, value.low, ours));
    ASSERT_TRUE(coefficientOf(value) == coefficient);
    char text[kMaxDecimalText + 1] = {};
    printDecimalPlain(static_cast<Uint128>(coefficient), static_cast<unsigned>(scale), text);
    _IDEC_flags flags = 0;
    const ::BID_UINT128 theirs = bid128_from_string(text, 0, &flags);
    ASSERT_EQ(std::memcmp(&ours, &theirs, sizeof ours), 0) << text;
  }
}

// Shifts against the same digits multiplied or divided one by one.
TEST(Decimals, ShiftAgreesWithSchoolbook) {
  RandomDecimals random;
  for (int i = 0; i < 1000000; ++i) {
    const Int128 operand = random.coefficient();
    const int n = static_cast<int>(random.next() % 61) - 30;
    Uint128 expected = magnitudeOf(static_cast<Uint128>(operand));
    Uint128 dropped = 0;
    bool fits = true;
    for (int step = 0; step < n && fits; ++step) {
      fits = expected <= ~Uint128{0} / 10;
      if (fits) expected *= 10;
    }
    if (n < 0) {
      const Uint128 power = kPowersOfTen[static_cast<unsigned>(-n - 1)];
      dropped = power - 1 - expected % power;
      expected /= power;
    }
    FixedDecimalValue value = decimal(operand, 34, 0);
    ASSERT_EQ(decimal_shift(value.high, value.low, n), fits);
    if (!fits) continue;
    const Uint128 actual = magnitudeOf(makeUint128(value.high, value.low));
    if (signBit(expected)) continue;  // came back with the wrong sign
    // One too high is allowed only where the dropped digits are nearly all nines.
    const bool isNearlyNines =
        n < 0 && dropped < kPowersOfTen[static_cast<unsigned>(-n - 1)] / 1000;
    ASSERT_TRUE(actual == expected || (isNearlyNines && actual == expected + 1)) << i;
  }
}

}  // namespace
}  // namespace DataTypes
