#include "datatypes/types.h"

#include <gtest/gtest.h>

#include <string>

#include "datatypes/settings.h"

namespace DataTypes {
namespace {

TEST(Types, NamesOfEveryNumber) {
  const struct {
    unsigned type;
    const char *name, *upper, *legacy, *legacyUpper, *constant;
    unsigned long alignment;
  } rows[] = {
      {0, "int16", "INT16", "int16", "INT16", "&intConst", 2},
      {1, "integer", "INTEGER", "int32", "INT32", "&intConst", 4},
      {2, "long", "LONG", "int64", "INT64", "&intConst", 8},
      {3, "float", "FLOAT", "double", "DOUBLE", "&floatConst", 8},
      {4, "date", "DATE", "date", "DATE", "&dateConst", 8},
      {5, "string", "STRING", "string", "STRING", "&stringConst", 1},
      {6, "N/A", "UNKNOWN", "N/A", "UNKNOWN", "N/A", 1},
      {7, "money", "MONEY", "money", "MONEY", "&moneyConst", 8},
      {8, "timestamp", "TIMESTAMP", "timestamp", "TIMESTAMP", "&timestampConst", 8},
      {9, "N/A", "UNKNOWN", "N/A", "UNKNOWN", "N/A", 1},
      {10, "boolean", "BOOLEAN", "boolean", "BOOLEAN", "&boolConst", 1},
      {26, "interval", "INTERVAL", "interval", "INTERVAL", "&intervalConst", 8},
      {27, "bigdatetime", "BIGDATETIME", "bigdatetime", "BIGDATETIME", "&bigdatetimeConst", 8},
      {28, "binary", "BINARY", "binary", "BINARY", "&binaryConst", 1},
      {29, "time", "TIME", "time", "TIME", "&timeConst", 8},
      {163870, "decimal(10,0)", "DECIMAL(10,0)", "decimal(10,0)", "DECIMAL(10,0)",
       "&fixeddecimalConst", 24},
      {30, "decimal(0,0)", "DECIMAL(0,0)", "decimal(0,0)", "DECIMAL(0,0)", "&fixeddecimalConst",
       24},
      {31, "N/A", "UNKNOWN", "N/A", "UNKNOWN", "N/A", 1},
      {255, "N/A", "UNKNOWN", "N/A", "UNKNOWN", "N/A", 1},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(typeToString(row.type), row.name);
    EXPECT_EQ(typeToStringUpper(row.type), row.upper);
    EXPECT_EQ(typeToLegacyString(row.type), row.legacy);
    EXPECT_EQ(typeToLegacyStringUpper(row.type), row.legacyUpper);
    EXPECT_EQ(typeToTypeConstString(row.type), row.constant);
    EXPECT_EQ(getAlignment(row.type), row.alignment) << row.name;
    EXPECT_EQ(getAlignmentMask(row.type), row.alignment - 1) << row.name;
  }
}

TEST(Types, MoneyNames) {
  const char* const names[] = {"money(1)",  "money(2)",  "money(3)",  "money(4)",  "money(5)",
                               "money(6)",  "money(7)",  "money(8)",  "money(9)",  "money(10)",
                               "money(11)", "money(12)", "money(13)", "money(14)", "money(15)"};
  unsigned type = 11;
  for (const std::string name : names) {
    EXPECT_EQ(typeToString(type), name);
    EXPECT_EQ(typeToLegacyString(type), name);
    EXPECT_EQ(typeToStringUpper(type), "MONEY" + name.substr(5));
    EXPECT_EQ(typeToLegacyStringUpper(type), "MONEY" + name.substr(5));
    EXPECT_EQ(typeToTypeConstString(type), "&moneyConst");
    EXPECT_EQ(stringToType(name), type);
    EXPECT_EQ(getAlignment(type), 8U);
    ++type;
  }
}

TEST(Types, DecimalNames) {
  const struct {
    int precision, scale;
    const char* name;
  } rows[] = {{1, 1, "decimal(1,1)"},
              {34, 34, "decimal(34,34)"},
              {34, 0, "decimal(34,0)"},
              {5, 7, ""},
              {35, 0, ""},
              {16383, 63, ""},
              {1, 36, ""}};
  for (const auto& row : rows)
    EXPECT_EQ(typeToString(createFixedDecimal(row.precision, row.scale)), row.name);
}

TEST(Types, CodesOfNames) {
  const struct {
    const char* name;
    unsigned type;
  } rows[] = {
      // clang-format off
      {"boolean", 10}, {"int16", 0}, {"int32", 1}, {"integer", 1}, {"int64", 2}, {"long", 2},
      {"money", 7}, {"money(1)", 11}, {"money(9)", 19}, {"money(15)", 25}, {"interval", 26},
      {"double", 3}, {"float", 3}, {"time", 29}, {"date", 4}, {"timestamp", 8}, {"bigdatetime", 27},
      {"string", 5}, {"binary", 28}, {"INTEGER", 6}, {"", 6}, {" long", 6}, {"money(16)", 6},
      {"N/A", 6}, {"decimal(10,2)", 164382}, {"decimal(1,0)", 16414},
      {"a fixeddecimal( 19 , 0x)", 311326}, {"decimal", 30}, {"decimal(5", 30 | 5 << 14},
      {"decimal,3)", 30 | 3 << 8}, {"decimal,3)(4", 30 | 3 << 8}, {"decimal(x,y)", 30},
      {"decimal)7(8,9", 30 | 8 << 14},
      // masked, not checked
      {"decimal(16385,65)", 30 | 1 << 14 | 1 << 8}, {"decimal(-1,0)", 30 | 0x3FFF << 14},
      // clang-format on
  };
  for (const auto& row : rows) EXPECT_EQ(stringToType(row.name), row.type) << row.name;
}

TEST(Types, Classes) {
  // A character a type number: n numeric, i integer too, d generic date too, a all, - none.
  const std::string expected = "iiinD-ann-innnnnnnnnnnnnnnnD-nn";
  ASSERT_EQ(expected.size(), kTypeCount);
  for (unsigned type = 0; type < kTypeCount; ++type) {
    const char c = expected[type];
    EXPECT_EQ(numericType(type), c != '-') << type;
    EXPECT_EQ(integerType(type), c == 'i' || c == 'a') << type;
    EXPECT_EQ(genericDateType(type), c == 'D' || c == 'a') << type;
  }
  for (const unsigned type : {31U, 255U})
    EXPECT_FALSE(numericType(type) || integerType(type) || genericDateType(type));
  EXPECT_TRUE(integerType(0xFFFFFF00U)) << "only the type number counts";
}

TEST(Types, ColumnLengths) {
  const unsigned expected[] = {2, 4, 8, 8, 8, 0, 0, 8, 8, 0, 1, 8, 8, 8, 8, 8,
                               8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 0, 8, 24};
  for (unsigned type = 0; type < kTypeCount; ++type)
    EXPECT_EQ(g_column_lengths[type], expected[type]) << type;
}

TEST(Settings, SettersAndTheirBounds) {
  EXPECT_EQ(g_dateSize, 8U);
  setDateSize(6);
  EXPECT_EQ(g_dateSize, 8U);
  setDateSize(4);
  EXPECT_EQ(g_dateSize, 4U);
  EXPECT_EQ(getAlignment(kDate), 8U) << "whatever the setting is";
  setDateSize(8);

  EXPECT_EQ(getDecimalSize(), 6U);
  EXPECT_EQ(g_tolerance, 0.000001);
  setDecimalSize(15);
  EXPECT_EQ(g_decimalSize, 15U);
  EXPECT_EQ(g_tolerance, 1e-15);
  setDecimalSize(6);

  setLegacyMoneyPrecision(19);
  EXPECT_EQ(g_legacyMoneyFactor, 10000);
  setLegacyMoneyPrecision(18);
  EXPECT_EQ(g_legacyMoneyFactor, 1000000000000000000);
  setLegacyMoneyPrecision(0);
  EXPECT_EQ(g_legacyMoneyFactor, 1);
  setLegacyMoneyPrecision(4);
}

}  // namespace
}  // namespace DataTypes
