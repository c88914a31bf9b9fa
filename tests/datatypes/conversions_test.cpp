#include "datatypes/conversions.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "datatypes/settings.h"
#include "datatypes/type_table.h"
#include "scoped_time_zone.h"

namespace DataTypes {
namespace {

constexpr unsigned kMoneyOf(unsigned decimals) {
  return kMoney1 + decimals - 1;
}

constexpr const char* kUnknownType = "conversion to unknown type";

DataValue int64Cell(long value) {
  DataValue cell;
  cell.int64 = value;
  return cell;
}

DataValue doubleCell(double value) {
  DataValue cell;
  cell.float64 = value;
  return cell;
}

std::string textOf(unsigned type, DataValue cell, bool withZone = false) {
  char out[400] = "untouched";
  convertToString(type, false, withZone, cell, out, sizeof out);
  return out;
}

TEST(ConvertToString, IntegersTimesAndMoney) {
  const struct {
    unsigned type;
    long value;
    const char* text;
  } rows[] = {
      // clang-format off
      {kInt16, -32768, "-32768"}, {kInteger, INT_MIN, "-2147483648"},
      {kLong, LONG_MIN, "-9223372036854775808"}, {kInterval, 1500000, "1500000"},
      {kDate, 0, "1970-01-01 00:00:00"}, {kDate, -1, "1969-12-31 23:59:59"},
      {kDate, 253402300800, "10000-01-01 00:00:00"}, {kDate, -62167219201, "-001-12-31 23:59:59"},
      {kDate, 67768036191676799, "2147485547-12-31 23:59:59"},
      {kDate, LONG_MAX, "1970-01-01 00:00:00"}, {kTimestamp, -1, "1969-12-31 23:59:59.999"},
      {kTimestamp, 1262401445006, "2010-01-02 03:04:05.006"},
      {kBigDateTime, -1, "1969-12-31 23:59:59.999999"},
      {kBigDateTime, 1262401445000006, "2010-01-02 03:04:05.000006"}, {kTime, 45296, "12:34:56"},
      {kTime, 86400 + 1, "00:00:01"}, {kTime, -1, "23:59:59"}, {kBoolean, 0, "false"},
      {kBoolean, 2, "true"}, {kMoney, 12345, "1.2345"}, {kMoney, -5, "-0.0005"},
      {kMoneyOf(1), LONG_MIN, "-922337203685477580.8"},
      {kMoneyOf(15), LONG_MAX, "9223.372036854775807"}, {kString, 1, "untouched"},
      {kBinary, 1, "untouched"}, {kUnknown, 1, "untouched"}, {kNoType, 1, "untouched"},
      {31, 1, "untouched"},
      // clang-format on
  };
  const std::string zone = "+00";
  for (const auto& row : rows) {
    EXPECT_EQ(textOf(row.type, int64Cell(row.value)), row.text) << row.type;
    const bool hasZone = std::string(row.text).find(':') != std::string::npos;
    EXPECT_EQ(textOf(row.type, int64Cell(row.value), true), row.text + zone.substr(hasZone ? 0 : 3))
        << row.type;
  }
  DataValue null;
  null.setNull();
  EXPECT_EQ(textOf(kLong, null), "untouched");
  char out[8] = "x";
  convertToString(kLong, false, false, static_cast<unsigned char*>(nullptr), out, sizeof out);
  EXPECT_STREQ(out, "x");
}

TEST(ConvertToString, Floats) {
  const struct {
    double value;
    std::size_t decimals;
    const char* text;
  } rows[] = {
      // clang-format off
      {1e-7, 6, "0.000000"}, {-1e-7, 6, "0.000000"}, {-0.0, 6, "0.000000"},
      {0.000001, 6, "0.000001"}, {-1.5, 6, "-1.500000"}, {0.5, 0, "0"}, {1.5, 0, "2"},
      {2.5, 0, "2"}, {1e15, 2, "1000000000000000.00"}, {NAN, 6, "nan"}, {INFINITY, 6, "inf"},
      {-INFINITY, 6, "-inf"}, {1e81, 6, "9.999999999999999212818799e+80"},
      {1.0 / 3, 20, "0.33333333333333331483"},
      // clang-format on
  };
  for (const auto& row : rows) {
    setDecimalSize(row.decimals);
    EXPECT_EQ(textOf(kFloat, doubleCell(row.value)), row.text);
    char out[64];
    convertDoubleToString(row.value, out, sizeof out);
    EXPECT_STREQ(out, row.text);
  }
  setDecimalSize(6);
}

TEST(ConvertToString, Decimals) {
  const struct {
    unsigned type;
    unsigned char scale;
    unsigned long long high, low;
    const char* text;
  } rows[] = {
      {createFixedDecimal(10, 3), 9, 0, 5, "0.005"},
      {kFixedDecimal, 3, 0, 5, "0.005"},
      {kFixedDecimal, 0, 0, 5, "5"},
      {createFixedDecimal(10, 0), 0, 0, 0, "0"},
      {createFixedDecimal(10, 2), 0, 0, 0, "0.00"},
      {createFixedDecimal(10, 2), 0, ~0ULL, 0ULL - 12345, "-123.45"},
      {createFixedDecimal(10, 2), 0, ~0ULL, 0ULL - 45, "-0.45"},
      {createFixedDecimal(38, 0), 0, 1ULL << 63, 0, "-170141183460469231731687303715884105728"},
      {createFixedDecimal(38, 38), 0, (1ULL << 63) - 1, ~0ULL,
       "1.70141183460469231731687303715884105727"},
      {createFixedDecimal(20, 10), 0, 5, 0, "9223372036.8547758080"},
      {createFixedDecimal(34, 1), 0, 0x314dc6448d93, 0x38c15b0a00000000,
       "100000000000000000000000000000000.0"},
  };
  for (const auto& row : rows) {
    DataValue cell;
    cell.decimal = {row.high, row.low, row.scale, 0};
    EXPECT_EQ(textOf(row.type, cell), row.text);
  }
}

TEST(ConvertToString, SettingsOfMoneyAndDate) {
  setLegacyMoneyPrecision(0);
  EXPECT_EQ(textOf(kMoney, int64Cell(-5)), "-5.0") << "precision 0 still has a digit";
  setLegacyMoneyPrecision(18);
  EXPECT_EQ(textOf(kMoney, int64Cell(5)), "0.000000000000000005");
  setLegacyMoneyPrecision(4);
  setDateSize(4);
  EXPECT_EQ(textOf(kDate, int64Cell((7L << 32) + 86400)), "1970-01-02 00:00:00");
  EXPECT_EQ(textOf(kDate, int64Cell(0xFFFFFFFF)), "1969-12-31 23:59:59");
  setDateSize(8);
}

TEST(ConvertToString, CutsAtTheLimit) {
  const struct {
    unsigned type;
    long value;
    std::size_t size;
    const char* text;
  } rows[] = {{kLong, 12345, 3, "12"},
              {kDate, 0, 11, "1970-01-01"},
              {kTimestamp, 0, 20, "1970-01-01 00:00:00"},
              {kBoolean, 1, 1, ""},
              {kMoney, 12345, 4, "1.2"},
              {kFloat, 0, 5, "0.00"},
              {kTime, 0, 6, "00:00"},
              {createFixedDecimal(5, 2), 12345, 5, "123."},
              // the sign is not counted
              {kMoney, -12345, 4, "-1.2"},
              {kMoney, -12345, 1, "-"}};
  for (const auto& row : rows) {
    char out[32];
    std::memset(out, '#', sizeof out);
    DataValue cell = int64Cell(row.value);
    if (payloadOf(row.type) == PayloadKind::kDecimal)
      cell.decimal = {0, static_cast<unsigned long long>(row.value), 0, 0};
    convertToString(row.type, false, false, cell, out, row.size);
    EXPECT_STREQ(out, row.text);
    EXPECT_EQ(out[std::strlen(row.text) + 1], '#');
    out[0] = '#';
    convertToString(row.type, false, false, cell, out, 0);
    EXPECT_EQ(out[0], '#');
  }
}

struct ParseRow {
  unsigned type;
  const char* text;
  long value;                     // the first 64 bits of the payload, sign-extended
  const char* message = nullptr;  // null: parsed
};

// The value of a packed number, sign-extended; of a decimal its low word.
long packedNumber(unsigned type, const unsigned char* packed) {
  DataValue cell;
  unpackValue(type, const_cast<unsigned char*>(packed), cell);
  switch (payloadOf(type)) {
    case PayloadKind::kInt16:
      return cell.int16;
    case PayloadKind::kInt32:
      return cell.int32;
    case PayloadKind::kByte:
      return cell.boolean;
    case PayloadKind::kDecimal:
      return static_cast<long>(cell.decimal.low);
    default:
      return cell.int64;
  }
}

void expectParse(const ParseRow& row) {
  SCOPED_TRACE(std::to_string(row.type) + " '" + row.text + "'");
  unsigned char packed[64];
  const char* message = nullptr;
  const int bytes = convertFromStringAndPack(row.type, false, row.text, packed, sizeof packed,
                                             message, nullptr, nullptr, nullptr, nullptr);
  DataValue cell = int64Cell(77);
  const char* cellMessage = nullptr;
  const bool isOk =
      convertFromString(row.type, row.text, cell, cellMessage, nullptr, nullptr, nullptr, nullptr);
  if (row.message != nullptr) {
    EXPECT_EQ(bytes, -1);
    EXPECT_STREQ(message, row.message);
    EXPECT_FALSE(isOk);
    EXPECT_STREQ(cellMessage, row.message);
    EXPECT_EQ(cell.int64, 77);
    return;
  }
  EXPECT_EQ(bytes, static_cast<int>(g_column_lengths[typeNumber(row.type)])) << message;
  EXPECT_EQ(packedNumber(row.type, packed), row.value);
  EXPECT_TRUE(isOk);
  EXPECT_EQ(std::memcmp(cell.bytes, packed, static_cast<std::size_t>(bytes)), 0);
}

TEST(ConvertFromString, Integers) {
  constexpr const char* kBegin = "integer constant does not begin with a legal character";
  constexpr const char* kEnd = "integer constant does not end with a legal character";
  constexpr const char* kRange16 = "16-bit integer constant out of range";
  constexpr const char* kRange = "integer constant out of range";
  constexpr const char* kLongBegin = "long constant does not begin with a legal character";
  constexpr const char* kLongEnd = "long constant does not end with a legal character";
  constexpr const char* kLongRange = "long constant out of range";
  const ParseRow rows[] = {
      // clang-format off
      {kInt16, "-32768", -32768}, {kInt16, "+32767", 32767}, {kInt16, "32768", 0, kRange16},
      {kInt16, "99999999999999999999", 0, kRange16}, {kInt16, " 1", 0, kBegin},
      {kInt16, "", 0, kBegin}, {kInt16, "1 ", 0, kEnd}, {kInt16, "-", 0, kEnd},
      {kInt16, "+-5", 0, kEnd}, {kInteger, "2147483647", INT_MAX},
      {kInteger, "-2147483648", INT_MIN}, {kInteger, "2147483648", 0, kRange},
      {kInteger, "x", 0, kBegin}, {kInteger, "1.0", 0, kEnd},
      {kLong, "9223372036854775807", LONG_MAX}, {kLong, "-9223372036854775808", LONG_MIN},
      {kLong, "9223372036854775808", 0, kLongRange}, {kLong, "-9223372036854775809", 0, kLongRange},
      {kLong, "0000000000000000000000000000000007", 7},
      {kLong, "99999999999999999999x", 0, kLongEnd}, {kLong, "", 0, kLongBegin},
      {kInterval, "-1500000", -1500000},
      {kInterval, "x", 0, "interval constant does not begin with a legal character"},
      {kInterval, "5s", 0, "interval constant does not end with a legal character"},
      {kInterval, "9223372036854775808", 0, kRange}, {kUnknown, "1", 0, kUnknownType},
      {kNoType, "1", 0, kUnknownType}, {31, "1", 0, kUnknownType}, {255, "", 0, kUnknownType},
      // clang-format on
  };
  for (const auto& row : rows) expectParse(row);
}

TEST(ConvertFromString, Floats) {
  const struct {
    const char *text, *message;
    double value;
  } rows[] = {
      {"-1.5e3", nullptr, -1500.0},
      {".5", nullptr, 0.5},
      {"+5.", nullptr, 5.0},
      {"0x10", nullptr, 16.0},
      {"4.9e-324", nullptr, 4.9406564584124654e-324},
      {"1e-400", nullptr, 0.0},
      {"1.7976931348623157e308", nullptr, 1.7976931348623157e308},
      {"9007199254740993", nullptr, 9007199254740992.0},
      {"1e309", "float constant out of range", 0},
      {"-inf", "float constant out of range", 0},
      {"inf", "float constant does not begin with a legal character", 0},
      {" 1", "float constant does not begin with a legal character", 0},
      {"", "float constant does not begin with a legal character", 0},
      {".", "float constant does not end with a legal character", 0},
      {"1,5", "float constant does not end with a legal character", 0},
      {"1e", "float constant does not end with a legal character", 0},
  };
  for (const auto& row : rows) {
    DataValue cell;
    const char* message = nullptr;
    const bool isOk =
        convertFromString(kFloat, row.text, cell, message, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(isOk, row.message == nullptr) << row.text;
    EXPECT_STREQ(message, row.message) << row.text;
    EXPECT_EQ(cell.float64, row.value) << row.text;
  }
}

TEST(ConvertFromString, BooleansMoneyAndDecimals) {
  constexpr const char* kNoBoolean = "not a legal boolean value";
  constexpr const char* kBegin = "money constant does not begin with a legal character";
  constexpr const char* kEnd = "money constant does not end with a legal character";
  constexpr const char* kFraction = "money constant fractional part does not begin with a digit";
  constexpr const char* kRange = "money constant out of range";
  constexpr const char* kPrecision = "input exceeds specified precision";
  const ParseRow rows[] = {
      // clang-format off
      {kBoolean, " YES ", 1}, {kBoolean, "\t\r\ntRuE\n", 1}, {kBoolean, "t", 1},
      {kBoolean, "On", 1}, {kBoolean, "1", 1}, {kBoolean, "y", 1}, {kBoolean, "F", 0},
      {kBoolean, "false", 0}, {kBoolean, "NO", 0}, {kBoolean, "off", 0}, {kBoolean, "0", 0},
      {kBoolean, "n ", 0}, {kBoolean, "", 0, kNoBoolean}, {kBoolean, "yess", 0, kNoBoolean},
      {kBoolean, "tr", 0, kNoBoolean}, {kBoolean, "t t", 0, kNoBoolean},
      {kBoolean, "\vt", 0, kNoBoolean}, {kMoneyOf(4), "1.23456", 12345},
      {kMoneyOf(4), "1.5", 15000}, {kMoneyOf(4), " -1.5", -5000}, {kMoneyOf(4), "-1.5", -15000},
      {kMoneyOf(4), "-.5", -5000}, {kMoneyOf(4), " \t+.5", 5000}, {kMoney, "-0.00019", -1},
      {kMoney, "7", 70000}, {kMoneyOf(15), "9223.372036854775807", LONG_MAX},
      {kMoneyOf(15), "-9223.372036854775808", LONG_MIN},
      {kMoneyOf(15), "9223.372036854775808", 0, kRange},
      {kMoneyOf(1), "922337203685477581", 0, kRange},
      {kMoneyOf(1), "9999999999999999999999", 0, kRange},
      {kMoneyOf(1), "-9999999999999999999999.5", 0, kRange}, {kMoney, "", 0, kBegin},
      {kMoney, "-", 0, kBegin}, {kMoney, "x", 0, kBegin}, {kMoney, "+-1", 0, kBegin},
      {kMoney, "1,5", 0, kEnd}, {kMoney, "1 ", 0, kEnd}, {kMoney, "1.5 ", 0, kEnd},
      {kMoney, "1.5.5", 0, kEnd}, {kMoney, "1.23456x", 0, kEnd}, {kMoney, "1.", 0, kFraction},
      {kMoney, ".", 0, kFraction}, {kMoney, "1.x", 0, kFraction},
      {createFixedDecimal(5, 2), "-1,5", -150}, {createFixedDecimal(5, 2), "1000", 0, kPrecision},
      {createFixedDecimal(5, 2), "x", 0, kPrecision}, {kFixedDecimal, "0", 0, kPrecision},
      // clang-format on
  };
  for (const auto& row : rows) expectParse(row);
  setLegacyMoneyPrecision(0);
  expectParse({kMoney, "7.99", 7});
  setLegacyMoneyPrecision(4);
}

TEST(ConvertFromString, DatesAndTimes) {
  const ScopedTimeZone utc("UTC");
  constexpr const char* kDateNoMatch = "date constant does not match format";
  constexpr const char* kTimestampNoMatch = "timestamp constant does not match format";
  const ParseRow rows[] = {
      {kDate, "2010-01-02T03:04:05", 1262401445},
      {kDate, "2010-01-02T03:04:05 and more", 1262401445},
      {kDate, "1960-01-01T00:00:00", -315619200},
      {kDate, "9999-12-31T23:59:61", 253402300801},
      {kDate, "2010-01-02 03:04:05", 0, kDateNoMatch},
      {kDate, "", 0, kDateNoMatch},
      {kTimestamp, "2010-01-02T03:04:05.67", 1262401445670},
      {kTimestamp, "2010-01-02T03:04:05", 1262401445000},
      {kTimestamp, "2010-01-02T03:04:05.1239", 1262401445123},
      {kTimestamp, "2010-01-02T03:04:05. 1 2", 1262401445120},
      {kTimestamp, "2010-01-02T03:04:05.x", 1262401445000},
      {kTimestamp, "2010-01-02T03:04:05.-50", 1262401444950},
      {kTimestamp, "2010-1-2T3:4:5", 1262401445000},
      {kTimestamp, "2010-01-02T03:04:05x.5", 1262401445500},
      {kTimestamp, "2010-01-32T03:04:05", 0, kTimestampNoMatch},
      {kTimestamp, "1960-01-01T00:00:00.5", -315619199500},
      {kBigDateTime, "2010-01-02T03:04:05.000006", 1262401445000006},
      {kBigDateTime, "2010-01-02T03:04:05.1234567", 1262401445123456},
      {kBigDateTime, "now", 0, "bigdatetime constant does not match format"},
      {kTime, "12:34:56", 45296},
      {kTime, "12:34", 0, "time constant does not match format"},
      {kTime, "24:00:00", 0, "time constant does not match format"},
  };
  for (const auto& row : rows) expectParse(row);
}

TEST(ConvertFromString, FormatsFallBackFromOneToTheNext) {
  const struct {
    unsigned type;
    const char *text, *date, *timestamp, *bigdatetime, *time, *message;
    long value;
  } rows[] = {
      {kDate, "2010", "%Y", "%m", "%m", "%m", nullptr, 1262304000},
      {kTimestamp, "2010", "%Y", nullptr, "%m", "%m", nullptr, 1262304000000},
      {kTimestamp, "2010", "%m", "%Y", "%m", "%m", nullptr, 1262304000000},
      {kBigDateTime, "2010", "%Y", nullptr, nullptr, "%m", nullptr, 1262304000000000},
      {kBigDateTime, "2010", "%m", "%Y", nullptr, "%m", nullptr, 1262304000000000},
      {kBigDateTime, "2010", "%m", "%m", "%Y", "%m", nullptr, 1262304000000000},
      {kTime, "10", "%Y", "%Y", "%Y", "%H", nullptr, 36000},
      {kDate, " 77x", "%s", nullptr, nullptr, nullptr, nullptr, 77},
      {kDate, "x", "%s", nullptr, nullptr, nullptr, "date constant does not match standard format",
       0},
      {kTimestamp, "9223372036854775.807", "%s", nullptr, nullptr, nullptr, nullptr, LONG_MAX},
      {kTimestamp, "9223372036854775.808", "%s", nullptr, nullptr, nullptr, "timestamp overflow",
       0},
      {kTimestamp, "-9223372036854776", "%s", nullptr, nullptr, nullptr, "timestamp overflow", 0},
      {kTimestamp, "x", "%s", nullptr, nullptr, nullptr, "timestamp constant does not match format",
       0},
      {kBigDateTime, "9223372036854.775807", "%s", nullptr, nullptr, nullptr, nullptr, LONG_MAX},
      {kBigDateTime, "9223372036854.775808", "%s", nullptr, nullptr, nullptr,
       "bigdatetime overflow", 0},
      {kBigDateTime, "9223372036855", "%s", nullptr, nullptr, nullptr, "bigdatetime overflow", 0},
  };
  for (const auto& row : rows) {
    DataValue cell;
    const char* message = nullptr;
    EXPECT_EQ(convertFromString(row.type, row.text, cell, message, row.date, row.timestamp,
                                row.bigdatetime, row.time),
              row.message == nullptr)
        << row.text;
    EXPECT_STREQ(message, row.message) << row.text;
    EXPECT_EQ(cell.int64, row.value) << row.text;
  }
}

TEST(ConvertFromString, StringsAndBinariesAreOwned) {
  DataValue cell;
  cell.string = ::strdup("former");
  const char* message = nullptr;
  const auto convert = [&](unsigned type, const char* text) {
    return convertFromString(type, text, cell, message, nullptr, nullptr, nullptr, nullptr);
  };
  ASSERT_TRUE(convert(kString, "abc"));
  EXPECT_STREQ(cell.string, "abc");
  ASSERT_TRUE(convert(kString, cell.string)) << "the cell's own text";
  EXPECT_STREQ(cell.string, "abc");
  std::free(const_cast<char*>(cell.string));

  cell.setNull();
  ASSERT_TRUE(convert(kBinary, "0a0B"));
  EXPECT_FALSE(cell.isNull());
  ASSERT_EQ(cell.binary.length, 2U);
  EXPECT_EQ(cell.binary.data[0], 10);
  EXPECT_EQ(cell.binary.data[1], 11);
  for (const char* text : {"0a 0b 0c", "0g", "0a0"}) {
    EXPECT_FALSE(convert(kBinary, text));
    EXPECT_STREQ(message, "DataType::convertFromString() could not convert binary data from hex.");
    EXPECT_EQ(cell.binary.data[1], 11) << "unchanged";
  }
  ASSERT_TRUE(convert(kBinary, "0 c")) << "a single blank does not change half the length";
  EXPECT_EQ(cell.binary.data[0], 12);
  ASSERT_TRUE(convert(kBinary, ""));
  EXPECT_EQ(cell.binary.length, 0U);
  std::free(const_cast<unsigned char*>(cell.binary.data));
}

}  // namespace
}  // namespace DataTypes
