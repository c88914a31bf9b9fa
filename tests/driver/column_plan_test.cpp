// The readers that plans use, against the general ones: the same outcome and the same cell for
// every type, C type and kind of content.

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <random>

#include "datatypes/data_types.h"
#include "driver/reader_table.h"

namespace KORVEX::Zel::DB {
namespace {

using DataTypes::DataValue;
using ODBC::CellContent;

constexpr short kCTypes[] = {SQL_C_SHORT,          SQL_C_LONG,      SQL_C_SBIGINT,
                             SQL_C_DOUBLE,         SQL_C_BIT,       SQL_C_CHAR,
                             SQL_C_TYPE_TIMESTAMP, SQL_C_TYPE_TIME, SQL_C_UTINYINT};

// Compares the two readers of a type over one content.
void expectAlike(const CellContent& column, unsigned type, bool safely) {
  const ColumnReader general = findColumnReader(type, safely);
  const ColumnReader settled = settleColumnReader(type, column.cType, safely);
  ASSERT_EQ(general == nullptr, settled == nullptr);
  if (general == nullptr) return;
  DataValue expected;
  DataValue actual;
  const ReadResult wanted = general(column, type, expected);
  const ReadResult got = settled(column, type, actual);
  ASSERT_EQ(got.outcome, wanted.outcome) << "type " << type << " from " << column.cType;
  ASSERT_STREQ(got.reason, wanted.reason);
  if (type == DataTypes::kString || type == DataTypes::kBinary) {
    std::free(const_cast<char*>(expected.string));
    std::free(const_cast<char*>(actual.string));
    return;
  }
  ASSERT_EQ(std::memcmp(actual.bytes, expected.bytes, sizeof actual.bytes), 0)
      << "type " << type << " from " << column.cType << ": " << actual.int64 << ", not "
      << expected.int64;
}

void expectAlikeForAllTypes(CellContent& column) {
  for (unsigned type = 0; type <= DataTypes::kTypeCount; ++type) {
    for (const bool safely : {false, true}) expectAlike(column, type, safely);
  }
}

CellContent contentOf(short cType, const void* bytes, unsigned length) {
  CellContent column;
  column.cType = cType;
  column.indicator = length;
  column.buffer.Append(static_cast<const unsigned char*>(bytes), length);
  return column;
}

TEST(ColumnPlan, ReadsBytesOfEveryKindAsTheGeneralReadersDo) {
  std::mt19937_64 random(1);
  for (const short cType : kCTypes) {
    for (int round = 0; round < 50; ++round) {
      const std::uint64_t words[] = {random(), random()};
      // Small numbers are as likely as large ones, and texts are digits.
      const std::uint64_t small[] = {words[0] >> (round % 64), 0};
      CellContent column = contentOf(cType, round % 2 != 0 ? words : small, sizeof words);
      if (cType == SQL_C_CHAR)
        column = contentOf(cType, "1234567890123456", static_cast<unsigned>(round % 17));
      expectAlikeForAllTypes(column);
    }
    CellContent null = contentOf(cType, "12345678", 8);
    null.indicator = SQL_NULL_DATA;
    expectAlikeForAllTypes(null);
    CellContent empty;
    empty.cType = cType;
    empty.indicator = 0;
    expectAlikeForAllTypes(empty);
  }
}

// Of all times, the likely ones in most rounds; a field, the year or the fraction at an edge.
TIMESTAMP_STRUCT randomTimestamp(std::mt19937& random, int round) {
  constexpr SQLSMALLINT kYears[] = {-32768, -1, 0, 1, 1969, 1970, 2000, 2100, 9999, 10000, 32767};
  constexpr SQLUSMALLINT kFields[] = {0, 1, 2, 12, 13, 23, 24, 28, 31, 32, 59, 60, 61, 62, 65535};
  constexpr SQLUINTEGER kFractions[] = {0, 1, 999, 1000, 999'999'999, 1'000'000'000, 4294967295U};
  const auto oneOf = [&](const auto& values) { return values[random() % std::size(values)]; };
  TIMESTAMP_STRUCT t = {static_cast<SQLSMALLINT>(1960 + random() % 300),
                        static_cast<SQLUSMALLINT>(1 + random() % 12),
                        static_cast<SQLUSMALLINT>(1 + random() % 31),
                        static_cast<SQLUSMALLINT>(random() % 24),
                        static_cast<SQLUSMALLINT>(random() % 60),
                        static_cast<SQLUSMALLINT>(random() % 60),
                        static_cast<SQLUINTEGER>(random() % 1'000'000'000)};
  SQLUSMALLINT* const fields[] = {&t.month, &t.day, &t.hour, &t.minute, &t.second};
  if (round % 2 != 0) *oneOf(fields) = oneOf(kFields);
  if (round % 3 == 0) t.year = oneOf(kYears);
  if (round % 5 == 0) t.fraction = oneOf(kFractions);
  return t;
}

constexpr unsigned kTimestampTypes[] = {DataTypes::kDate, DataTypes::kTimestamp,
                                        DataTypes::kBigDateTime};
constexpr int kRounds = 300'000;

TEST(ColumnPlan, ReadsTimestampsAsTheGeneralReadersDo) {
  std::mt19937 random(2);
  for (int round = 0; round < kRounds; ++round) {
    const TIMESTAMP_STRUCT t = randomTimestamp(random, round);
    const CellContent column = contentOf(SQL_C_TYPE_TIMESTAMP, &t, sizeof t);
    expectAlike(column, kTimestampTypes[random() % std::size(kTimestampTypes)], round % 2 == 0);
    if (HasFatalFailure()) return;
  }
}

// A timestamp is computed from its fields; what it stands for is what its text says.
TEST(ColumnPlan, ReadsTimestampsAsTheirTextIsRead) {
  constexpr char kPicture[] = "%Y-%m-%dT%H:%M:%S";
  constexpr int kFractionDigits[] = {0, 3, 6};  // of kTimestampTypes
  std::mt19937 random(3);
  for (int round = 0; round < kRounds; ++round) {
    const TIMESTAMP_STRUCT t = randomTimestamp(random, round);
    const std::size_t kind = random() % std::size(kTimestampTypes);
    if (t.fraction >= 1'000'000'000) continue;
    char text[80];
    const int length = std::snprintf(
        text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%09u", int{t.year}, int{t.month},
        int{t.day}, int{t.hour}, int{t.minute}, int{t.second}, static_cast<unsigned>(t.fraction));
    const int digits = kFractionDigits[kind];
    text[length - 9 + (digits != 0 ? digits : -1)] = '\0';
    const char* message = nullptr;
    DataValue expected;
    const bool isTime = DataTypes::convertFromString(kTimestampTypes[kind], text, expected, message,
                                                     kPicture, kPicture, kPicture, nullptr);
    const CellContent column = contentOf(SQL_C_TYPE_TIMESTAMP, &t, sizeof t);
    DataValue actual;
    const ReadResult result =
        findColumnReader(kTimestampTypes[kind], false)(column, kTimestampTypes[kind], actual);
    ASSERT_EQ(result.outcome == ReadResult::kValue, isTime) << text;
    if (!isTime) continue;
    ASSERT_EQ(actual.int64, expected.int64) << text;
  }
}

}  // namespace
}  // namespace KORVEX::Zel::DB
