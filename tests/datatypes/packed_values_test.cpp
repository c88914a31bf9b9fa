#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "datatypes/conversions.h"
#include "datatypes/type_table.h"
#include "scoped_time_zone.h"

namespace DataTypes {
namespace {

constexpr unsigned kMoneyOf(unsigned decimals) {
  return kMoney1 + decimals - 1;
}

int pack(unsigned type, bool swap, const char* text, unsigned char* out, std::size_t size,
         const char*& message) {
  return convertFromStringAndPack(type, swap, text, out, size, message, nullptr, nullptr, nullptr,
                                  nullptr);
}

TEST(Pack, SizesAndByteOrder) {
  const ScopedTimeZone utc("UTC");
  const struct {
    unsigned type;
    const char* text;
    std::vector<unsigned char> bytes, swapped;
  } rows[] = {
      {kInt16, "258", {2, 1}, {1, 2}},
      {kInteger, "16909060", {4, 3, 2, 1}, {1, 2, 3, 4}},
      {kLong, "258", {2, 1, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 1, 2}},
      {kFloat, "1", {0, 0, 0, 0, 0, 0, 0xF0, 0x3F}, {0x3F, 0xF0, 0, 0, 0, 0, 0, 0}},
      {kBoolean, "true", {1}, {1}},
      {kDate, "1970-01-01T00:04:18", {2, 1, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 1, 2}},
      {kBigDateTime,
       "1970-01-01T00:00:00.000258",
       {2, 1, 0, 0, 0, 0, 0, 0},
       {0, 0, 0, 0, 0, 0, 1, 2}},
      {kTime, "00:04:18", {2, 1, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 1, 2}},
      {kMoneyOf(2), "2.58", {2, 1, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 1, 2}},
      {kString, "ab", {'a', 'b', 0}, {'a', 'b', 0}},
      {kString, "", {0}, {0}},
      {kBinary, "0A 0b", {0, 0, 0, 2, 10, 11}, {0, 0, 0, 2, 10, 11}},
      {kBinary, "", {0, 0, 0, 0}, {0, 0, 0, 0}},
      // decimals are never swapped
      {createFixedDecimal(5, 2), "2.58", {2, 1, 0, 0, 0, 0, 0, 0}, {2, 1, 0, 0, 0, 0, 0, 0}},
  };
  for (const auto& row : rows) {
    const bool isDecimal = payloadOf(row.type) == PayloadKind::kDecimal;
    const std::size_t size = isDecimal ? 24 : row.bytes.size();
    const std::size_t offset = isDecimal ? 8 : 0;  // the low word
    std::string texts[2];
    for (const bool swap : {false, true}) {
      unsigned char out[32];
      const char* message = nullptr;
      EXPECT_EQ(pack(row.type, swap, row.text, out, size, message), static_cast<int>(size));
      const auto& expected = swap ? row.swapped : row.bytes;
      EXPECT_EQ(std::memcmp(out + offset, expected.data(), expected.size()), 0) << row.text;
      char text[64] = "";
      convertToString(row.type, swap, false, out, text, sizeof text);
      texts[swap ? 1 : 0] = text;
    }
    EXPECT_EQ(texts[0], texts[1]) << row.text;
    EXPECT_EQ(texts[0].empty(), row.type == kString || row.type == kBinary);
    unsigned char out[32];
    const char* message = nullptr;
    EXPECT_EQ(pack(row.type, false, row.text, out, size - 1, message), -1);
    const bool isShortBinary = row.type == kBinary && size > 4;
    EXPECT_STREQ(message, isShortBinary ? "DataType::convertFromStringAndPack() could not convert "
                                          "binary data from hex."
                                        : "output buffer overflow");
  }
}

TEST(Pack, Append) {
  unsigned char out[8];
  const char* message = nullptr;
  const auto append = [&](const char* text, unsigned type, std::size_t size) {
    return packAndAppendValue(out, size, text, type, nullptr, nullptr, nullptr, nullptr, message);
  };
  EXPECT_EQ(append("abc", kString, 4), 4);
  EXPECT_EQ(append("abc", kString, 3), 0);
  EXPECT_STREQ(message, "output buffer overflow");
  EXPECT_EQ(append("-7", kInteger, 8), 4);
  EXPECT_EQ(append("x", kInteger, 8), 0);
  EXPECT_EQ(append("1", kNoType, 8), 0);
  EXPECT_STREQ(message, "conversion to unknown type");
}

TEST(Unpack, Cells) {
  DataValue cell;
  cell.int64 = 77;
  unpackValue(kLong, nullptr, cell);
  EXPECT_TRUE(cell.isNull());
  EXPECT_EQ(cell.int64, 77) << "nothing else is touched";

  unsigned char text[] = "abc";
  unpackValue(kString, text, cell);
  EXPECT_FALSE(cell.isNull());
  EXPECT_EQ(cell.string, reinterpret_cast<char*>(text));

  unsigned char binary[] = {0, 0, 1, 2, 9};
  unpackValue(28U, binary, cell);
  EXPECT_EQ(cell.binary.length, 258U);
  EXPECT_EQ(cell.binary.data, binary + 4);
  EXPECT_EQ(getLengthFromPackedBinary(binary), 258U);
  EXPECT_EQ(getLengthFromPackedBinary(nullptr), 0U);

  unsigned char decimal[24] = {1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 7, 8};
  unpackValue(kFixedDecimal, decimal, cell);
  EXPECT_EQ(cell.decimal.high, 1ULL);
  EXPECT_EQ(cell.decimal.low, 2ULL);
  EXPECT_EQ(cell.decimal.scale, 7);
  EXPECT_EQ(cell.decimal.precision, 8);
  unpackValue(createFixedDecimal(20, 4), decimal, cell);
  EXPECT_EQ(cell.decimal.scale, 4);
  EXPECT_EQ(cell.decimal.precision, 20);

  unsigned char number[] = {0xFE, 0xFF, 0x55};
  unpackValue(kInt16, number, cell);
  EXPECT_EQ(cell.int16, -2);
}

TEST(Unpack, NewStrings) {
  const ScopedTimeZone utc("UTC");
  const struct {
    unsigned type;
    const char *text, *result;
  } rows[] = {{kLong, "-5", "-5"},
              {kString, "abc", "abc"},
              {kBinary, "0a0B", "0A0B"},
              {kBinary, "", ""},
              {kMoney, "-922337203685477.5808", "-922337203685477.5808"},
              {kDate, "2010-01-02T03:04:05", "2010-01-02 03:04:05"},
              {createFixedDecimal(9, 2), "1.5", "1.50"}};
  for (const auto& row : rows) {
    unsigned char packed[32];
    const char* message = nullptr;
    ASSERT_GE(pack(row.type, false, row.text, packed, sizeof packed, message), 0) << row.text;
    char* text = unpackToNewString(row.type, packed);
    EXPECT_STREQ(text, row.result);
    std::free(text);
  }
  unsigned char byte = 0;
  EXPECT_EQ(unpackToNewString(kLong, nullptr), nullptr);
  EXPECT_EQ(unpackToNewString(kUnknown, &byte), nullptr);
}

}  // namespace
}  // namespace DataTypes
