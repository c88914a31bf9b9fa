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
    unsigned from;
    const char* text;
    unsigned to;
    const char* result;
  } rows[] = {
      {kLong, "32767", kInt16, "32767"},
      {kLong, "32768", kInt16, "refused"},
      {kLong, "-2147483648", kInteger, "-2147483648"},
      {kLong, "2147483648", kInteger, "refused"},
      {kInt16, "-5", kLong, "-5"},
      {kInteger, "1", kBoolean, "true"},
      {kInteger, "2", kBoolean, "refused"},
      {kBoolean, "true", kMoney, "1.0000"},
      {kInteger, "7", kMoney2, "7.00"},
      {kLong, "922337203685477581", kMoney2, "refused"},
      {kMoney, "1.5000", kMoney2, "1.50"},
      {kMoney, "1.2345", kMoney2, "refused"},
      {kMoney, "1.0000", kInteger, "1"},
      {kMoney, "1.5", kInteger, "refused"},
      {kMoney, "-1.2500", kDecimal52, "-1.25"},
      {kMoney, "1000", kDecimal52, "refused"},
      {kDecimal52, "-1.50", kMoney1, "-1.5"},
      {kDecimal52, "1.25", kMoney1, "refused"},
      {kDecimal52, "7", kInt16, "7"},
      {kDecimal380, "9223372036854775808", kLong, "refused"},
      {kDecimal380, "-9223372036854775808", kLong, "-9223372036854775808"},
      {kDecimal380, "99999999999999999999999999999999999999", createFixedDecimal(38, 1), "refused"},
      {kLong, "1", kFixedDecimal, "refused"},
      {kDecimal52, "123.45", kFloat, "123.450000"},
      {kLong, "9007199254740993", kFloat, "9007199254740992.000000"},
      {kFloat, "3", kInteger, "3"},
      {kFloat, "3.5", kInteger, "refused"},
      {kFloat, "9223372036854775807", kLong, "refused"},
      {kFloat, "-9223372036854775808", kLong, "-9223372036854775808"},
      {kFloat, "1.005", kDecimal52, "1.00"},
      {kFloat, "1.006", kMoney2, "1.01"},
      {kFloat, "1e300", kMoney2, "refused"},
      {kFloat, "1e300", kDecimal52, "refused"},
      {kFloat, "1", kBoolean, "true"},
      {kDate, "2010-01-02T03:04:05", kTimestamp, "2010-01-02 03:04:05.000"},
      {kDate, "2010-01-02T03:04:05", kTime, "03:04:05"},
      {kDate, "1960-01-02T03:04:05", kTime, "03:04:05"},
      {kTimestamp, "2010-01-02T03:04:05", kDate, "2010-01-02 03:04:05"},
      {kTimestamp, "2010-01-02T03:04:05.5", kDate, "refused"},
      {kTimestamp, "2010-01-02T03:04:05.5", kBigDateTime, "2010-01-02 03:04:05.500000"},
      {kBigDateTime, "2010-01-02T03:04:05.500", kTimestamp, "2010-01-02 03:04:05.500"},
      {kBigDateTime, "2010-01-02T03:04:05.5001", kTimestamp, "refused"},
      {kTime, "03:04:05", kTimestamp, "1970-01-01 03:04:05.000"},
      {kDate, "2010-01-02T03:04:05", kLong, "1262401445"},
      {kTimestamp, "2010-01-02T03:04:05.678", kLong, "1262401445678"},
      {kLong, "1262401445", kDate, "2010-01-02 03:04:05"},
      {kInterval, "1500000", kLong, "1500000"},
      {kInterval, "1500000", kDate, "refused"},
      {kTime, "03:04:05", kInterval, "refused"},
      {kLong, "-5", kString, "-5"},
      {kDecimal52, "1.5", kString, "1.50"},
      {kBinary, "0a0b", kString, "0A0B"},
      {kString, "4142", kBinary, "AB"},
      {kString, "4 1 42", kBinary, "refused"},
      {kString, "-5", kInteger, "-5"},
      {kString, "x", kInteger, "refused"},
      {kString, "x", kString, "x"},
      {kString, "2010-01-02T03:04:05", kDate, "2010-01-02 03:04:05"},
      {kLong, "5", kBinary, "refused"},
      {kBinary, "05", kLong, "refused"},
      {kLong, "5", kUnknown, "refused"},
      {kLong, "5", 31, "refused"},
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
