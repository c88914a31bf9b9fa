#include "datatypes/cast.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "datatypes/conversions.h"
#include "scoped_time_zone.h"

namespace DataTypes {
namespace {

constexpr unsigned kDecimal52 = createFixedDecimal(5, 2);
constexpr unsigned kDecimal380 = createFixedDecimal(38, 0);
constexpr unsigned kMoney2 = kMoney1 + 1;

// Reads, casts and prints; null when the cast is refused.
std::string castText(unsigned from, const char* text, unsigned to) {
  DataValue cell;
  cell.setNull();
  const char* message = nullptr;
  EXPECT_TRUE(convertFromString(from, text, cell, message, nullptr, nullptr, nullptr, nullptr))
      << text << ": " << message;
  const DataValue before = cell;
  std::string result;
  if (!cast(&cell, from, to)) {
    EXPECT_EQ(std::memcmp(&cell, &before, DataValue::kPayloadBytes + 1), 0) << "left alone";
    result = "refused";
  } else if (to == kString) {
    result = cell.string;
    if (from != kString) std::free(const_cast<char*>(cell.string));
  } else if (to == kBinary) {
    result.assign(reinterpret_cast<const char*>(cell.binary.data), cell.binary.length);
    if (from != kBinary) std::free(const_cast<unsigned char*>(cell.binary.data));
  } else {
    char out[400] = "";
    convertToString(to, false, false, cell, out, sizeof out);
    result = out;
  }
  if (from == kString) std::free(const_cast<char*>(before.string));
  if (from == kBinary) std::free(const_cast<unsigned char*>(before.binary.data));
  return result;
}

TEST(Cast, Values) {
  const ScopedTimeZone utc("UTC");
  const struct {
    unsigned from, to;
    const char *text, *result;
  } rows[] = {
      // clang-format off
      {kLong, kInt16, "32767", "32767"}, {kLong, kInt16, "32768", "refused"},
      {kLong, kInteger, "-2147483648", "-2147483648"}, {kLong, kInteger, "2147483648", "refused"},
      {kInt16, kLong, "-5", "-5"}, {kInteger, kBoolean, "1", "true"},
      {kInteger, kBoolean, "2", "refused"}, {kBoolean, kMoney, "true", "1.0000"},
      {kBoolean, kLong, "false", "0"},
      {kInteger, kMoney2, "7", "7.00"}, {kLong, kMoney2, "922337203685477581", "refused"},
      {kMoney, kMoney2, "1.5000", "1.50"}, {kMoney, kMoney2, "1.2345", "refused"},
      {kMoney, kInteger, "1.0000", "1"}, {kMoney, kInteger, "1.5", "refused"},
      {kMoney, kDecimal52, "-1.2500", "-1.25"}, {kMoney, kDecimal52, "1000", "refused"},
      {kDecimal52, kMoney1, "-1.50", "-1.5"}, {kDecimal52, kMoney1, "1.25", "refused"},
      {kDecimal52, kInt16, "7", "7"}, {kDecimal380, kLong, "9223372036854775808", "refused"},
      {kDecimal380, kLong, "-9223372036854775808", "-9223372036854775808"},
      {kDecimal380, createFixedDecimal(38, 1), "99999999999999999999999999999999999999", "refused"},
      // times 10^5 it is 2^128 and a little
      {kDecimal380, createFixedDecimal(38, 5), "3402823669209384634633746074317683", "refused"},
      {kLong, kFixedDecimal, "1", "refused"}, {kDecimal52, kFloat, "123.45", "123.450000"},
      {kLong, kFloat, "9007199254740993", "9007199254740992.000000"}, {kFloat, kInteger, "3", "3"},
      {kFloat, kInteger, "3.5", "refused"}, {kFloat, kLong, "9223372036854775807", "refused"},
      {kFloat, kLong, "-9223372036854775808", "-9223372036854775808"},
      {kFloat, kDecimal52, "1.005", "1.00"}, {kFloat, kMoney2, "1.006", "1.01"},
      {kFloat, kMoney2, "1e300", "refused"}, {kFloat, kDecimal52, "1e300", "refused"},
      {kFloat, kBoolean, "1", "true"},
      {kDate, kTimestamp, "2010-01-02T03:04:05", "2010-01-02 03:04:05.000"},
      {kDate, kTime, "2010-01-02T03:04:05", "03:04:05"},
      {kDate, kTime, "1960-01-02T03:04:05", "03:04:05"},
      {kTimestamp, kDate, "2010-01-02T03:04:05", "2010-01-02 03:04:05"},
      {kTimestamp, kDate, "2010-01-02T03:04:05.5", "refused"},
      {kTimestamp, kBigDateTime, "2010-01-02T03:04:05.5", "2010-01-02 03:04:05.500000"},
      {kBigDateTime, kTimestamp, "2010-01-02T03:04:05.500", "2010-01-02 03:04:05.500"},
      {kBigDateTime, kTimestamp, "2010-01-02T03:04:05.5001", "refused"},
      {kTime, kTimestamp, "03:04:05", "1970-01-01 03:04:05.000"},
      {kDate, kLong, "2010-01-02T03:04:05", "1262401445"},
      {kTimestamp, kLong, "2010-01-02T03:04:05.678", "1262401445678"},
      {kLong, kDate, "1262401445", "2010-01-02 03:04:05"}, {kInterval, kLong, "1500000", "1500000"},
      {kInterval, kDate, "1500000", "refused"}, {kTime, kInterval, "03:04:05", "refused"},
      {kLong, kString, "-5", "-5"}, {kDecimal52, kString, "1.5", "1.50"},
      {kBinary, kString, "", ""},
      {kBinary, kString, "0a0b", "0A0B"}, {kString, kBinary, "4142", "AB"},
      {kString, kBinary, "4 1 42", "refused"}, {kString, kInteger, "-5", "-5"},
      {kString, kInteger, "x", "refused"}, {kString, kString, "x", "x"},
      {kString, kDate, "2010-01-02T03:04:05", "2010-01-02 03:04:05"},
      {kLong, kBinary, "5", "refused"}, {kBinary, kLong, "05", "refused"},
      {kLong, kUnknown, "5", "refused"}, {kLong, 31, "5", "refused"},
      // clang-format on
  };
  for (const auto& row : rows)
    EXPECT_EQ(castText(row.from, row.text, row.to), row.result)
        << row.from << " '" << row.text << "' to " << row.to;
}

TEST(Cast, NullsStayNullWhereAConversionExists) {
  DataValue cell;
  cell.setNull();
  EXPECT_TRUE(cast(&cell, kLong, kDate));
  EXPECT_TRUE(cell.isNull());
  EXPECT_FALSE(cast(&cell, kLong, kBinary));
  EXPECT_FALSE(cast(&cell, kNoType, kLong));
  EXPECT_FALSE(cast(nullptr, kLong, kLong));
}

TEST(Cast, Overflows) {
  DataValue cell;
  cell.int64 = LONG_MAX;
  EXPECT_FALSE(cast(&cell, kDate, kBigDateTime));
  EXPECT_EQ(cell.int64, LONG_MAX);
  cell.float64 = NAN;
  EXPECT_FALSE(cast(&cell, kFloat, kLong));
  EXPECT_FALSE(cast(&cell, kFloat, kMoney2));
}

}  // namespace
}  // namespace DataTypes
