#include "zeldb/value_parser.h"

#include <gtest/gtest.h>

#include <string>

#include "datatypes/data_types.h"
#include "zeldb/column_type.h"
#include "zeldb/failure.h"
#include "zeldb/value_text.h"

namespace zeldb {
namespace {

// What the text reads as, written out again, or "!" and the reason.
std::string readAndWrite(const char* typeName, const std::string& text) {
  ValueParser parser(typeFromName(typeName));
  DataTypes::DataValue value;
  return parser.parse(text, value) ? valueText(parser.valueType(), value) : "!" + parser.reason();
}

struct Case {
  const char* type;
  const char* text;
  const char* expected;
};

TEST(ValueParser, ReadsWhatFitsExactly) {
  const Case cases[] = {
      {"int16", "-32768", "-32768"},
      {"integer", "+7", "7"},
      {"long", "-9223372036854775808", "-9223372036854775808"},
      {"float", "0.1", "0.1"},
      {"float", "-1e300", "-1e+300"},
      {"float", "1e-7", "1e-07"},
      {"float", "NaN", "nan"},
      {"float", "-Infinity", "-inf"},
      {"boolean", "YES", "true"},
      {"boolean", "0", "false"},
      {"string", "", ""},
      {"string", " a\xE2\x82\xAC ", " a\xE2\x82\xAC "},
      {"binary", "00ff0A", "00FF0A"},
      {"binary", "", ""},
      {"money", "-922337203685477.5808", "-922337203685477.5808"},
      {"money", "1.50000", "1.5000"},
      {"money(2)", "-.05", "-0.05"},
      {"decimal(5,2)", "000123.400", "123.40"},
      {"decimal(34,0)", "-9999999999999999999999999999999999",
       "-9999999999999999999999999999999999"},
      {"decimal(2,2)", "0.99", "0.99"},
      {"interval", "-1", "-1"},
      {"date", "2024-02-29", "2024-02-29"},
      {"date", "1969-12-31 23:59:59", "1969-12-31 23:59:59"},
      {"date", "2024-01-01T00:00:00.000Z", "2024-01-01"},
      {"timestamp", "1969-12-31T23:59:59.999", "1969-12-31 23:59:59.999"},
      {"timestamp", "2024-01-01 10:20:30.5+00", "2024-01-01 10:20:30.500"},
      {"bigdatetime", "2024-01-01 10:20:30.000001", "2024-01-01 10:20:30.000001"},
      {"bigdatetime", "2024-01-01 10:20", "2024-01-01 10:20:00.000000"},
      {"bigdatetime", "0001-01-01 00:00:00+00:00", "0001-01-01 00:00:00.000000"},
      {"time", "23:59:59", "23:59:59"},
      {"time", "07:05", "07:05:00"},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(readAndWrite(row.type, row.text), row.expected) << row.type << " " << row.text;
  }
}

TEST(ValueParser, RefusesWhatWouldBeCutOrGuessed) {
  const char* const noMoment = "!not a date and time of the form YYYY-MM-DD hh:mm:ss";
  const Case cases[] = {
      {"int16", "32768", "!16-bit integer constant out of range"},
      {"integer", "", "!integer constant does not begin with a legal character"},
      {"integer", "1 ", "!integer constant does not end with a legal character"},
      {"integer", "2147483648", "!integer constant out of range"},
      {"long", "9223372036854775808", "!long constant out of range"},
      {"float", "1e999", "!float constant out of range"},
      {"boolean", "maybe", "!not a legal boolean value"},
      {"binary", "0", "!Odd number of characters in hex string"},
      {"binary", "0g", "!Invalid hex character"},
      {"money", "1.23456", "!5 digits behind the point, the type holds 4"},
      {"money", " -1.5", "!not a decimal number"},
      {"money", "922337203685477.5808", "!money constant out of range"},
      {"money(15)", "0.0000000000000001", "!16 digits behind the point, the type holds 15"},
      {"decimal(5,2)", "1234", "!4 digits before the point, the type holds 3"},
      {"decimal(5,2)", "1.234", "!3 digits behind the point, the type holds 2"},
      {"decimal(5,2)", ".", "!not a decimal number"},
      {"decimal(5,2)", "1e2", "!not a decimal number"},
      {"date", "2023-02-29", noMoment},
      {"date", "2024-1-1", noMoment},
      {"date", "2024-01-01 24:00:00", noMoment},
      {"date", "2024-01-01 00:00:00.5", "!1 digits of a second, the type holds 0"},
      {"timestamp", "2024-01-01 00:00:00.1234", "!4 digits of a second, the type holds 3"},
      {"bigdatetime", "2024-01-01 00:00:00+01", noMoment},
      {"bigdatetime", "2024-01-01 00:00:00.", noMoment},
      {"time", "25:00", "!not a time of the form hh:mm:ss"},
      {"time", "12:00:00.5", "!not a time of the form hh:mm:ss"},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(readAndWrite(row.type, row.text), row.expected) << row.type << " " << row.text;
  }
  EXPECT_EQ(readAndWrite("string", std::string("a\0b", 3)), "!a string cannot hold a zero byte");
  EXPECT_NE(readAndWrite("integer", std::string("1\0", 2)).front(), '1');
}

TEST(ValueParser, RefusesWhatItsColumnWouldCut) {
  const ValueLimits none;
  const ValueLimits short3{.characters = 3};
  const ValueLimits doubles{.significantDigits = 15};
  const ValueLimits days{.daysOnly = true};
  const ValueLimits millis{.secondDigits = 3};
  const ValueLimits cents{.fractionDigits = 2};
  const ValueLimits finite{.infinity = false};
  const unsigned int decimal = DataTypes::kFixedDecimal;
  struct LimitCase {
    unsigned int type;
    const ValueLimits& limits;
    const char* fits;
    const char* refused;
    const char* state;
  };
  for (const LimitCase& row : {
           LimitCase{DataTypes::kString, short3, "\xE2\x82\xAC\xC3\xA9z", "abcd", "22001"},
           LimitCase{DataTypes::kBinary, short3, "000102", "00010203", "22001"},
           LimitCase{DataTypes::kString, doubles, "a lot more than 15", "1234567890.123456",
                     "22018"},
           LimitCase{DataTypes::kFloat, doubles, "0.123456789012345", "1234567890123456", "22018"},
           LimitCase{DataTypes::kTimestamp, days, "2024-02-29T00:00:00Z", "2024-02-29 00:00:01",
                     "22018"},
           LimitCase{DataTypes::kBigDateTime, millis, "2024-02-29 01:02:03.120000",
                     "2024-02-29 01:02:03.1234", "22018"},
           LimitCase{decimal, cents, "-1.250", "1.005", "22018"},
           LimitCase{DataTypes::kFloat, finite, "nan", "inf", "22018"},
       }) {
    DataTypes::DataValue value;
    ValueParser parser(row.type, row.limits);
    EXPECT_TRUE(parser.parse(row.fits, value)) << row.fits << ": " << parser.reason();
    EXPECT_FALSE(parser.parse(row.refused, value)) << row.refused;
    EXPECT_STREQ(parser.state(), row.state) << row.refused;
    EXPECT_TRUE(ValueParser(row.type, none).parse(row.refused, value)) << row.refused;
  }
}

TEST(ValueParser, HandsDecimalsWithoutPrecisionOnAsText) {
  ValueParser parser(DataTypes::kFixedDecimal);
  DataTypes::DataValue value;
  EXPECT_EQ(parser.valueType(), 5U);
  const std::string text = "-12345678901234567890123456789012345678.90";
  ASSERT_TRUE(parser.parse(text, value));
  EXPECT_EQ(value.string, text);
  EXPECT_FALSE(parser.parse("1,5", value));
}

TEST(ColumnType, KnowsNamesAndRefusesOthers) {
  EXPECT_EQ(typeFromName("int64"), 2U);
  EXPECT_EQ(typeFromName("money(3)"), 13U);
  EXPECT_EQ(typeFromName("decimal(10,2)"), 164382U);
  for (const char* const name : {"", "INTEGER", "text", "money(16)", "decimal", "decimal(35,0)",
                                 "decimal(2,3)", "decimal(10,2)x", "decimal(a,b)"}) {
    EXPECT_THROW(typeFromName(name), Failure) << name;
  }
}

TEST(ColumnType, TakesListsApart) {
  const auto types = typesFromList("a:integer,b c:decimal(10,2),d:e:string");
  EXPECT_EQ(types, (std::map<std::string, unsigned>{{"a", 1}, {"b c", 164382}, {"d:e", 5}}));
  EXPECT_TRUE(typesFromList("").empty());
  for (const char* const list : {"a", ":integer", "a:integer,a:long", "a:integer,,b:long", "a:x"}) {
    EXPECT_THROW(typesFromList(list), Failure) << list;
  }
}

}  // namespace
}  // namespace zeldb
