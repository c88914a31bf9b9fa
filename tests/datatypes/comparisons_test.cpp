#include "datatypes/comparisons.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "datatypes/conversions.h"

namespace DataTypes {
namespace {

struct Packed {
  Packed(unsigned type, const char* text) {
    const char* message = nullptr;
    EXPECT_GE(convertFromStringAndPack(type, false, text, bytes, sizeof bytes, message, nullptr,
                                       nullptr, nullptr, nullptr),
              0)
        << text;
  }
  unsigned char bytes[64] = {};
};

// Rows in ascending order: the first text is less than the second one.
TEST(Comparisons, OrderAndEquality) {
  const struct {
    unsigned type;
    const char *less, *greater;
  } rows[] = {
      {kInt16, "-1", "1"},
      {kInteger, "-2147483648", "0"},
      {kLong, "255", "256"},
      {kFloat, "-1.5", "-1"},
      {kBoolean, "false", "true"},
      {kMoney, "-0.5", "0.4"},
      {kDate, "2010-01-02T03:04:05", "2010-01-02T03:04:06"},
      {kTime, "01:00:00", "02:00:00"},
      {kString, "", "a"},
      {kString, "a", "aa"},
      {kString, "aa", "b"},
      {kString, "a", "\xC3\xA4"},
      {kBinary, "", "00"},
      {kBinary, "0000", "01"},
      {kBinary, "7F", "80"},
      {createFixedDecimal(34, 2), "-2", "1"},
      {createFixedDecimal(34, 2), "-2.01", "-2"},
      {createFixedDecimal(34, 2), "99999999999999999999999999.98", "99999999999999999999999999.99"},
  };
  for (const auto& row : rows) {
    Packed less(row.type, row.less);
    Packed greater(row.type, row.greater);
    SCOPED_TRACE(row.less);
    EXPECT_TRUE(lessThan(less.bytes, greater.bytes, row.type));
    EXPECT_FALSE(lessThan(greater.bytes, less.bytes, row.type));
    EXPECT_FALSE(lessThan(less.bytes, less.bytes, row.type));
    EXPECT_FALSE(lessThan(nullptr, less.bytes, row.type));
    EXPECT_FALSE(lessThan(less.bytes, nullptr, row.type));
    EXPECT_FALSE(lessThan(less.bytes, greater.bytes, kNoType));
    DataValue a;
    DataValue b;
    unpackValue(row.type, less.bytes, a);
    unpackValue(row.type, greater.bytes, b);
    EXPECT_FALSE(equalValues(a, b, row.type));
    EXPECT_TRUE(equalValues(a, a, row.type));
    DataValue null = a;
    null.setNull();
    EXPECT_FALSE(equalValues(a, null, row.type));
    EXPECT_FALSE(equalValues(null, null, row.type));
    EXPECT_FALSE(equalValues(a, a, kUnknown));
    EXPECT_FALSE(equalValues(a, a, 31));
  }
}

TEST(Comparisons, DecimalsOfDifferentScales) {
  const struct {
    long a;
    unsigned scaleA;
    long b;
    unsigned scaleB;
    bool isLess;
  } rows[] = {{100, 2, 10, 1, false},      {99, 2, 10, 1, true},
              {-100, 2, -99, 2, true},     {-101, 2, -10, 1, true},
              {1, 200, 1, 0, true},        {1, 0, 1, 200, false},
              {-1, 0, -1, 200, true},      {0, 9, 0, 0, false},
              {1, 0, 1000000001, 9, true}, {1L << 62, 0, 1L << 62, 30, false},
              {0, 0, 1, 200, true},        {1, 200, 0, 0, false}};
  for (const auto& row : rows) {
    DataValue a;
    DataValue b;
    a.decimal = {row.a < 0 ? ~0ULL : 0, static_cast<unsigned long long>(row.a),
                 static_cast<std::uint8_t>(row.scaleA), 0};
    b.decimal = {row.b < 0 ? ~0ULL : 0, static_cast<unsigned long long>(row.b),
                 static_cast<std::uint8_t>(row.scaleB), 0};
    EXPECT_EQ(lessThan(a.bytes, b.bytes, kFixedDecimal), row.isLess) << row.a << " " << row.b;
    EXPECT_FALSE(equalValues(a, b, kFixedDecimal)) << "compared as they are stored";
  }
}

TEST(Comparisons, FloatsCompareAsNumbers) {
  DataValue zero;
  DataValue minusZero;
  minusZero.float64 = -0.0;
  EXPECT_TRUE(equalValues(zero, minusZero, kFloat));
  EXPECT_FALSE(lessThan(minusZero.bytes, zero.bytes, kFloat));
  zero.float64 = NAN;
  EXPECT_FALSE(equalValues(zero, zero, kFloat));
  EXPECT_FALSE(lessThan(zero.bytes, minusZero.bytes, kFloat));
}

TEST(Comparisons, BytesToHash) {
  const struct {
    unsigned type;
    int length;
  } rows[] = {{kInt16, 2},   {kInteger, 4}, {kLong, 8}, {kFloat, 8},
              {kBoolean, 1}, {kMoney, 8},   {kTime, 8}, {kFixedDecimal, 24}};
  for (const auto& row : rows) {
    DataValue cell;
    int length = 77;
    EXPECT_EQ(getRawValueForHash(cell, row.type, length), cell.bytes);
    EXPECT_EQ(length, row.length);
    cell.setNull();
    EXPECT_EQ(getRawValueForHash(cell, row.type, length), nullptr);
    EXPECT_EQ(length, 0);
  }
  DataValue cell;
  int length = 77;
  cell.string = "abc";
  EXPECT_EQ(getRawValueForHash(cell, kString, length),
            reinterpret_cast<const unsigned char*>(cell.string));
  EXPECT_EQ(length, 3);
  const unsigned char bytes[] = {1, 2};
  cell.binary = {bytes, 2};
  EXPECT_EQ(getRawValueForHash(cell, kBinary, length), bytes);
  EXPECT_EQ(length, 2);
  for (const BinaryValue& empty : {BinaryValue{bytes, 0}, BinaryValue{nullptr, 2}}) {
    cell.binary = empty;
    EXPECT_EQ(getRawValueForHash(cell, kBinary, length), nullptr);
    EXPECT_EQ(length, 0);
  }
  EXPECT_EQ(getRawValueForHash(cell, kNoType, length), nullptr);
  EXPECT_EQ(getRawValueForHash(cell, 31, length), nullptr);
}

TEST(Comparisons, BinaryValues) {
  const unsigned char data[] = {1, 2, 3};
  const BinaryValue whole{data, 3};
  const BinaryValue begin{data, 2};
  const BinaryValue tail{data + 1, 2};
  const BinaryValue none{nullptr, 0};
  EXPECT_EQ(whole.compare(whole), 0);
  EXPECT_LT(begin.compare(whole), 0);
  EXPECT_GT(tail.compare(whole), 0);
  EXPECT_LT(none.compare(begin), 0);
  EXPECT_EQ(none.compare(none), 0);
}

}  // namespace
}  // namespace DataTypes
