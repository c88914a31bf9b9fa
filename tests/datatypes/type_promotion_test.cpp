#include "datatypes/type_promotion.h"

#include <gtest/gtest.h>

#include <string>

#include "datatypes/settings.h"
#include "datatypes/type_table.h"

namespace DataTypes {
namespace {

// A row a type of the first argument, a column a type of the second one; type 30 is decimal(20,6).
// "--" is no common type; "d" and a letter a decimal of kDecimals.
// clang-format off
constexpr const char* kMaximizeType[kTypeCount] = {
    "00 01 02 03 04 -- 00 -- 08 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- 26 27 -- 29 dA",
    "01 01 02 03 04 -- 01 07 08 -- 01 11 12 13 14 15 16 17 18 19 -- -- -- -- -- -- 26 27 -- 29 dA",
    "02 02 02 03 04 -- 02 -- 08 -- 02 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- 26 27 -- 29 dB",
    "03 03 03 03 03 -- 03 03 03 -- 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 -- 03 03",
    "04 04 04 03 04 -- 04 -- 08 -- 04 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- 04 27 -- 04 dB",
    "-- -- -- -- -- 05 05 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- --",
    "00 01 02 03 04 05 06 07 08 -- 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 dA",
    "-- 07 -- 03 -- -- 07 07 -- -- 07 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- dC",
    "08 08 08 03 08 -- 08 -- 08 -- 08 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- 08 27 -- 08 dB",
    "-- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- --",
    "10 01 02 03 04 -- 10 07 08 -- 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 -- 29 dA",
    "-- 11 -- 03 -- -- 11 -- -- -- 11 11 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- dD",
    "-- 12 -- 03 -- -- 12 -- -- -- 12 -- 12 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- dE",
    "-- 13 -- 03 -- -- 13 -- -- -- 13 -- -- 13 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- dF",
    "-- 14 -- 03 -- -- 14 -- -- -- 14 -- -- -- 14 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- dC",
    "-- 15 -- 03 -- -- 15 -- -- -- 15 -- -- -- -- 15 -- -- -- -- -- -- -- -- -- -- -- -- -- -- dA",
    "-- 16 -- 03 -- -- 16 -- -- -- 16 -- -- -- -- -- 16 -- -- -- -- -- -- -- -- -- -- -- -- -- dA",
    "-- 17 -- 03 -- -- 17 -- -- -- 17 -- -- -- -- -- -- 17 -- -- -- -- -- -- -- -- -- -- -- -- dG",
    "-- 18 -- 03 -- -- 18 -- -- -- 18 -- -- -- -- -- -- -- 18 -- -- -- -- -- -- -- -- -- -- -- dH",
    "-- 19 -- 03 -- -- 19 -- -- -- 19 -- -- -- -- -- -- -- -- 19 -- -- -- -- -- -- -- -- -- -- dI",
    "-- -- -- 03 -- -- 20 -- -- -- 20 -- -- -- -- -- -- -- -- -- 20 -- -- -- -- -- -- -- -- -- dJ",
    "-- -- -- 03 -- -- 21 -- -- -- 21 -- -- -- -- -- -- -- -- -- -- 21 -- -- -- -- -- -- -- -- dK",
    "-- -- -- 03 -- -- 22 -- -- -- 22 -- -- -- -- -- -- -- -- -- -- -- 22 -- -- -- -- -- -- -- dL",
    "-- -- -- 03 -- -- 23 -- -- -- 23 -- -- -- -- -- -- -- -- -- -- -- -- 23 -- -- -- -- -- -- dM",
    "-- -- -- 03 -- -- 24 -- -- -- 24 -- -- -- -- -- -- -- -- -- -- -- -- -- 24 -- -- -- -- -- dN",
    "-- -- -- 03 -- -- 25 -- -- -- 25 -- -- -- -- -- -- -- -- -- -- -- -- -- -- 25 -- -- -- -- dO",
    "26 26 26 03 04 -- 26 -- 08 -- 26 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- 26 27 -- 29 dB",
    "27 27 27 03 27 -- 27 -- 27 -- 27 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- 27 27 -- 27 dB",
    "-- -- -- -- -- -- 28 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- 28 -- --",
    "29 29 29 03 04 -- 29 -- 08 -- 29 -- -- -- -- -- -- -- -- -- -- -- -- -- -- -- 29 27 -- 29 dB",
    "dA dA dB 03 dB -- dA dC dB -- dA dD dE dF dC dA dA dG dH dI dJ dK dL dM dN dO dB dB -- dB dA",
};
constexpr const char* kMaximizeAnyType[kTypeCount] = {
    "00 01 02 03 04 05 00 07 08 00 00 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 dA",
    "01 01 02 03 04 05 01 07 08 01 01 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 dA",
    "02 02 02 03 04 05 02 02 08 02 02 02 02 02 02 02 02 02 02 02 02 02 02 02 02 02 26 27 28 29 dB",
    "03 03 03 03 03 05 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 03 28 03 03",
    "04 04 04 03 04 05 04 04 08 04 04 04 04 04 04 04 04 04 04 04 04 04 04 04 04 04 04 27 28 04 dB",
    "05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 28 05 05",
    "00 01 02 03 04 05 06 07 08 06 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 dA",
    "07 07 02 03 04 05 07 07 08 07 07 11 12 13 14 07 07 07 07 07 07 07 07 07 07 07 26 27 28 29 dC",
    "08 08 08 03 08 05 08 08 08 08 08 08 08 08 08 08 08 08 08 08 08 08 08 08 08 08 08 27 28 08 dB",
    "00 01 02 03 04 05 06 07 08 09 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 dA",
    "00 01 02 03 04 05 10 07 08 10 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 dA",
    "11 11 02 03 04 05 11 11 08 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 26 27 28 29 dD",
    "12 12 02 03 04 05 12 12 08 12 12 11 12 12 12 12 12 12 12 12 12 12 12 12 12 12 26 27 28 29 dE",
    "13 13 02 03 04 05 13 13 08 13 13 11 12 13 13 13 13 13 13 13 13 13 13 13 13 13 26 27 28 29 dF",
    "14 14 02 03 04 05 14 14 08 14 14 11 12 13 14 14 14 14 14 14 14 14 14 14 14 14 26 27 28 29 dC",
    "15 15 02 03 04 05 15 07 08 15 15 11 12 13 14 15 15 15 15 15 15 15 15 15 15 15 26 27 28 29 dA",
    "16 16 02 03 04 05 16 07 08 16 16 11 12 13 14 15 16 16 16 16 16 16 16 16 16 16 26 27 28 29 dA",
    "17 17 02 03 04 05 17 07 08 17 17 11 12 13 14 15 16 17 17 17 17 17 17 17 17 17 26 27 28 29 dG",
    "18 18 02 03 04 05 18 07 08 18 18 11 12 13 14 15 16 17 18 18 18 18 18 18 18 18 26 27 28 29 dH",
    "19 19 02 03 04 05 19 07 08 19 19 11 12 13 14 15 16 17 18 19 19 19 19 19 19 19 26 27 28 29 dI",
    "20 20 02 03 04 05 20 07 08 20 20 11 12 13 14 15 16 17 18 19 20 20 20 20 20 20 26 27 28 29 dJ",
    "21 21 02 03 04 05 21 07 08 21 21 11 12 13 14 15 16 17 18 19 20 21 21 21 21 21 26 27 28 29 dK",
    "22 22 02 03 04 05 22 07 08 22 22 11 12 13 14 15 16 17 18 19 20 21 22 22 22 22 26 27 28 29 dL",
    "23 23 02 03 04 05 23 07 08 23 23 11 12 13 14 15 16 17 18 19 20 21 22 23 23 23 26 27 28 29 dM",
    "24 24 02 03 04 05 24 07 08 24 24 11 12 13 14 15 16 17 18 19 20 21 22 23 24 24 26 27 28 29 dN",
    "25 25 02 03 04 05 25 07 08 25 25 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 dO",
    "26 26 26 03 04 05 26 26 08 26 26 26 26 26 26 26 26 26 26 26 26 26 26 26 26 26 26 27 28 29 dB",
    "27 27 27 03 27 05 27 27 27 27 27 27 27 27 27 27 27 27 27 27 27 27 27 27 27 27 27 27 28 27 dB",
    "28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28 28",
    "29 29 29 03 04 05 29 29 08 29 29 29 29 29 29 29 29 29 29 29 29 29 29 29 29 29 29 27 28 29 dB",
    "dA dA dB 03 dB 05 dA dC dB dA dA dD dE dF dC dA dA dG dH dI dJ dK dL dM dN dO dB dB 28 dB dA",
};

constexpr struct {
  int precision;
  int scale;
} kDecimals[] = {{20, 6}, {25, 6}, {21, 6}, {24, 6}, {23, 6},  {22, 6},  {21, 7}, {22, 8},
                 {23, 9}, {24, 10}, {25, 11}, {26, 12}, {27, 13}, {28, 14}, {29, 15}};
// clang-format on

unsigned typeOf(unsigned number) {
  return number == kFixedDecimal ? createFixedDecimal(20, 6) : number;
}

// The type of a matrix entry; false when there is none.
bool expectedType(const char* row, unsigned column, unsigned& type) {
  const std::string entry(row + std::size_t{column} * 3, 2);
  if (entry == "--") return false;
  const auto& decimal = kDecimals[entry[0] == 'd' ? entry[1] - 'A' : 0];
  type = entry[0] == 'd' ? createFixedDecimal(decimal.precision, decimal.scale)
                         : static_cast<unsigned>(std::stoi(entry));
  return true;
}

TEST(TypePromotion, EveryPairOfTypes) {
  for (unsigned a = 0; a < kTypeCount; ++a) {
    for (unsigned b = 0; b < kTypeCount; ++b) {
      SCOPED_TRACE(std::to_string(a) + ", " + std::to_string(b));
      unsigned expected = typeOf(a);
      const bool isPossible = expectedType(kMaximizeType[a], b, expected);
      unsigned result = typeOf(a);
      EXPECT_EQ(maximizeType(result, typeOf(b)), isPossible);
      EXPECT_EQ(result, expected);

      expectedType(kMaximizeAnyType[a], b, expected);
      result = typeOf(a);
      maximizeAnyType(result, typeOf(b));
      EXPECT_EQ(result, expected) << "any";
    }
  }
}

TEST(TypePromotion, DecimalsGiveUpScaleFirst) {
  const struct {
    unsigned a, b, result;
  } rows[] = {
      {createFixedDecimal(30, 10), kLong, createFixedDecimal(30, 10)},
      {createFixedDecimal(34, 30), kLong, createFixedDecimal(34, 15)},
      {createFixedDecimal(34, 0), createFixedDecimal(34, 34), createFixedDecimal(34, 0)},
      {createFixedDecimal(40, 2), kInteger, createFixedDecimal(34, 0)},
      {createFixedDecimal(5, 7), kInteger, createFixedDecimal(17, 7)},
  };
  for (const auto& row : rows) {
    unsigned result = row.a;
    EXPECT_TRUE(maximizeType(result, row.b));
    EXPECT_EQ(result, row.result);
  }
  unsigned text = createFixedDecimal(5, 2) | 0;
  EXPECT_FALSE(maximizeType(text, kString));
}

TEST(TypePromotion, LegacyMoneyPrecisionDecides) {
  const struct {
    std::size_t precision;
    bool takesInteger;
    unsigned withMoney5;  // maximizeAnyType(money, money(5))
    unsigned fromMoney5;  // maximizeAnyType(money(5), money)
  } rows[] = {{4, true, kMoney, kMoney},
              {5, true, kMoney1 + 4, kMoney1 + 4},
              {9, true, kMoney1 + 4, kMoney1 + 4},
              {10, false, kMoney1 + 4, kMoney1 + 4}};
  for (const auto& row : rows) {
    setLegacyMoneyPrecision(row.precision);
    unsigned type = kMoney;
    EXPECT_EQ(maximizeType(type, kInteger), row.takesInteger);
    type = kMoney;
    maximizeAnyType(type, kMoney1 + 4U);
    EXPECT_EQ(type, row.withMoney5);
    type = kMoney1 + 4;
    maximizeAnyType(type, kMoney);
    EXPECT_EQ(type, row.fromMoney5);
    type = kMoney;
    maximizeTypeToFixedDecimal(type);
    EXPECT_EQ(type, createFixedDecimal(19, static_cast<int>(row.precision)));
  }
  setLegacyMoneyPrecision(4);
}

TEST(TypePromotion, ToFixedDecimal) {
  const struct {
    unsigned type, result;
  } rows[] = {
      // clang-format off
      {kInteger, 163870}, {kBoolean, 16414}, {kLong, 311326}, {kDate, 311326}, {kTimestamp, 311326},
      {kInterval, 311326}, {kBigDateTime, 311326}, {kTime, 311326},
      {kMoney1 + 2, createFixedDecimal(19, 3)}, {kInt16, 30}, {kFloat, 30}, {kString, 30},
      {kBinary, 30}, {kUnknown, 30}, {createFixedDecimal(9, 2), 30}, {77, 30},
      // clang-format on
  };
  for (const auto& row : rows) {
    unsigned type = row.type;
    maximizeTypeToFixedDecimal(type);
    EXPECT_EQ(type, row.result) << row.type;
  }
}

TEST(TypePromotion, DecimalResultTypes) {
  using Rule = bool (*)(unsigned&, const unsigned&, const unsigned&);
  const struct {
    Rule rule;
    int pa, sa, pb, sb;
    int precision, scale;
    bool isValid;
  } rows[] = {
      {getFixedDecimalAdditionResultType, 10, 2, 8, 4, 13, 4, true},
      {getFixedDecimalSubtractionResultType, 10, 2, 8, 4, 13, 4, true},
      {getFixedDecimalAdditionResultType, 33, 0, 33, 0, 34, 0, true},
      {getFixedDecimalAdditionResultType, 34, 0, 1, 0, 35, 0, false},
      {getFixedDecimalMultiplicationResultType, 20, 2, 20, 2, 41, 4, false},
      {getFixedDecimalMultiplicationResultType, 16, 2, 17, 3, 34, 5, true},
      {getFixedDecimalDivisionResultType, 10, 2, 8, 4, 23, 11, true},
      {getFixedDecimalDivisionResultType, 34, 34, 34, 34, 103, 69, false},
  };
  for (const auto& row : rows) {
    unsigned result = 0;
    EXPECT_EQ(
        row.rule(result, createFixedDecimal(row.pa, row.sa), createFixedDecimal(row.pb, row.sb)),
        row.isValid);
    EXPECT_EQ(result, createFixedDecimal(row.precision, row.scale));
  }
}

}  // namespace
}  // namespace DataTypes
