#include "datatypes/time_text.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/time_unit.h"

namespace DataTypes {
namespace {

TEST(TimeUnit, NamesAndMaxima) {
  const struct {
    TimeUnit unit;
    const char* name;
    long maximum;
    std::vector<const char*> texts;
  } rows[] = {
      {NONE, "UNKNOWN", 0, {nullptr}},
      {INVALID, "UNKNOWN", 0, {"seconds", " DAY", "", "MICRO", "WEEK"}},
      {MICROSECOND, "MICROSECOND", LONG_MAX, {"MICROS", "MICROSECOND", "MICROSECONDS"}},
      {MILLISECOND, "MILLISECOND", 9223372036854775, {"MILLIS", "MILLISECOND", "MILLISECONDS"}},
      {SECOND, "SECOND", 9223372036854, {"SEC", "SECOND", "SECONDS"}},
      {MINUTE, "MINUTE", 153722867280, {"MIN", "MINUTE", "MINUTES"}},
      {HOUR, "HOUR", 2562047788, {"HR", "HOUR", "HOURS"}},
      {DAY, "DAY", 106751991, {"DAY", "DAYS"}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(getTimeUnitStr(row.unit), row.name);
    EXPECT_EQ(getTimeUnitMax(row.unit), row.maximum);
    EXPECT_EQ(getTimeUnitMaxStr(row.unit), std::to_string(row.maximum));
    EXPECT_EQ(getTimeUnitMinStr(row.unit), std::to_string(-row.maximum));
    for (const char* text : row.texts) EXPECT_EQ(getTimeUnit(text), row.unit);
  }
  EXPECT_EQ(getTimeUnitStr(static_cast<TimeUnit>(8)), "UNKNOWN");
}

TEST(TimeUnit, Seconds) {
  const struct {
    TimeUnit unit;
    int count, seconds;
  } rows[] = {
      // clang-format off
      {MICROSECOND, 999999, -1}, {MICROSECOND, 1000000, 1}, {MICROSECOND, 2999999, 2},
      {MILLISECOND, 999, -1}, {MILLISECOND, 1000, 1}, {SECOND, 0, 0}, {SECOND, INT_MAX, INT_MAX},
      {SECOND, -1, -1}, {MINUTE, 35791394, 2147483640}, {MINUTE, 35791395, -1},
      {HOUR, 596523, 2147482800}, {HOUR, 596524, -1}, {DAY, 24855, 2147472000}, {DAY, 24856, -1},
      {NONE, 5, -1}, {INVALID, 5, -1},
      // clang-format on
  };
  for (const auto& row : rows) EXPECT_EQ(getSeconds(row.unit, row.count), row.seconds);
}

TEST(TimeUnit, MicroSeconds) {
  const struct {
    TimeUnit unit;
    bool isOk;
    long count, micros;
  } rows[] = {{DAY, true, -106751991, -9223372022400000000},
              {DAY, false, 106751992, 77},
              {DAY, false, LONG_MIN, 77},
              {MICROSECOND, true, LONG_MIN, LONG_MIN},
              {MICROSECOND, true, LONG_MAX, LONG_MAX},
              {MILLISECOND, true, -5, -5000},
              {SECOND, true, -1, -1000000},
              {HOUR, true, 2, 7200000000},
              {NONE, false, 1, 77},
              {INVALID, false, 1, 77}};
  for (const auto& row : rows) {
    long micros = 77;
    EXPECT_EQ(getMicroSeconds(row.unit, row.count, micros), row.isOk);
    EXPECT_EQ(micros, row.micros);
  }
}

TEST(TimeText, Splits) {
  const struct {
    const char *text, *whole, *millis, *micros;
  } rows[] = {{"2010-01-02 03:04:05. 7", "2010-01-02 03:04:05", "700", "700000"},
              {"a.5", "a", "500", "500000"},
              {"a.1234567", "a", "123", "123456"},
              {"a", "a", "000", "000000"},
              {"", "", "000", "000000"},
              {"1.2.3", "1.2", "300", "300000"},
              {"a. x y\tz", "a", "xyz", "xyz000"},
              {".", "", "000", "000000"}};
  for (const auto& row : rows) {
    for (const auto& [split, fraction] :
         {std::pair{&splitTimestamp, row.millis}, std::pair{&splitBigdatetime, row.micros}}) {
      char* whole = nullptr;
      char* tail = nullptr;
      EXPECT_TRUE(split(row.text, whole, tail));
      EXPECT_STREQ(whole, row.whole);
      EXPECT_STREQ(tail, fraction);
      std::free(whole);
      std::free(tail);
    }
  }
}

TEST(TimeText, DateFormatBecomesACopy) {
  EXPECT_STREQ(g_date_format, "%Y-%m-%dT%H:%M:%S");
  EXPECT_STREQ(g_time_format, "%H:%M:%S");
  const char* former = g_date_format;
  char format[] = "%Y";
  setDateFormat(nullptr);
  EXPECT_EQ(g_date_format_allocated, 0);
  setDateFormat(format);
  format[1] = 'X';
  EXPECT_STREQ(g_date_format, "%Y");
  EXPECT_EQ(g_date_format_allocated, 1);
  setDateFormat(format);  // frees the first copy
  std::free(const_cast<char*>(g_date_format));
  g_date_format = former;
  g_date_format_allocated = 0;
}

// The fields that a row expects: year, month (1-12), day, hour, minute, second, weekday, day of
// year.
struct Fields {
  int year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0, weekday = 0, yearDay = 0;
};

TEST(Strptime, Conversions) {
  const struct {
    const char *text, *format;
    Fields fields;
    const char* rest;
  } rows[] = {
      // clang-format off
      {"2010-01-02T03:04:05.678", "%Y-%m-%dT%H:%M:%S", {2010, 1, 2, 3, 4, 5}, ".678"},
      {"12/31/99", "%D", {1999, 12, 31}, ""}, {"5 pm", "%I %p", {1970, 1, 1, 17}, ""},
      {"12 AM", "%I %p", {}, ""}, {"12 PM", "%l %p", {1970, 1, 1, 12}, ""},
      {"11:59:58 pm", "%r", {1970, 1, 1, 23, 59, 58}, ""},
      {"23:59", "%R", {1970, 1, 1, 23, 59}, ""}, {"03:04:61", "%T", {1970, 1, 1, 3, 4, 61}, ""},
      {"03:04:05", "%X", {1970, 1, 1, 3, 4, 5}, ""},
      {"12/31/68 03:04:05", "%c", {2068, 12, 31, 3, 4, 5}, ""},
      {"12/31/69", "%x", {1969, 12, 31}, ""}, {"2010 10:11", "%Y %R", {2010, 1, 1, 10, 11}, ""},
      {"SUNDAY mon", "%a %A", {1970, 1, 1, 0, 0, 0, 1}, ""},
      {"saturday!", "%a", {1970, 1, 1, 0, 0, 0, 6}, "!"},
      {"september SEP sept", "%B %b %h", {1970, 9, 1}, "t"}, {"may", "%b", {1970, 5, 1}, ""},
      {"366", "%j", {1970, 1, 1, 0, 0, 0, 0, 365}, ""}, {"6", "%w", {1970, 1, 1, 0, 0, 0, 6}, ""},
      {"53 00", "%U %W", {}, ""}, {"  \t x", " x", {}, ""}, {"x", "%n%tx", {}, ""},
      {"100%", "100%%", {}, ""}, {"20", "%C", {3900, 1, 1}, ""},
      {"99 20", "%y %C", {3999, 1, 1}, ""}, {"1999 20", "%Y %C", {3999, 1, 1}, ""},
      {"20 10", "%C %y", {3910, 1, 1}, ""}, {"31 12 7", "%Od %Om %EY", {7, 12, 31}, ""},
      {"12/31/99 03:04:05", "%Ec", {1999, 12, 31, 3, 4, 5}, ""},
      {"12/31/99 03:04:05", "%Ex %EX", {1999, 12, 31, 3, 4, 5}, ""},
      {"0", "%C", {1900, 1, 1}, ""}, {"100", "%C", {2900, 1, 1}, "0"},
      {"1 am", "%I %p", {1970, 1, 1, 1}, ""}, {"1 1", "%j %e", {}, ""},
      {"1", "%l", {1970, 1, 1, 1}, ""}, {" \t x", "%tx", {}, ""},
      {"99 10", "%C %y", {11810, 1, 1}, ""}, {"2010 20", "%Y %C", {3910, 1, 1}, ""},
      {"20", "%EC", {3900, 1, 1}, ""}, {"10 11", "%Ey %Oy", {2011, 1, 1}, ""},
      {"23 4 5", "%OH %OM %OS", {1970, 1, 1, 23, 4, 5}, ""},
      {"12 9", "%OI %Oe", {1970, 1, 9}, ""},
      {"53 0 6", "%OU %OW %Ow", {1970, 1, 1, 0, 0, 0, 6}, ""},
      {"00031", "%d", {1970, 1, 31}, ""}, {"045", "%d", {1970, 1, 4}, "5"},
      {"312", "%d", {1970, 1, 31}, "2"}, {"60", "%M", {1970, 1, 1, 0, 6}, "0"},
      {"99990", "%Y", {9999, 1, 1}, "0"},
      {"105", "%y", {2010, 1, 1}, "5"}, {"23 9", "%k %e", {1970, 1, 9, 23}, ""},
      // clang-format on
  };
  for (const auto& row : rows) {
    std::tm t;
    std::memset(&t, 0x55, sizeof t);
    const char* rest = DataTypes::strptime(row.text, row.format, &t);
    SCOPED_TRACE(std::string(row.text) + " by " + row.format);
    ASSERT_NE(rest, nullptr);
    EXPECT_STREQ(rest, row.rest);
    EXPECT_EQ(t.tm_year + 1900, row.fields.year);
    EXPECT_EQ(t.tm_mon + 1, row.fields.month);
    EXPECT_EQ(t.tm_mday, row.fields.day);
    EXPECT_EQ(t.tm_hour, row.fields.hour);
    EXPECT_EQ(t.tm_min, row.fields.minute);
    EXPECT_EQ(t.tm_sec, row.fields.second);
    EXPECT_EQ(t.tm_wday, row.fields.weekday);
    EXPECT_EQ(t.tm_yday, row.fields.yearDay);
  }
}

TEST(Strptime, Mismatches) {
  const struct {
    const char *text, *format;
  } rows[] = {
      // clang-format off
      {"", "%Y"}, {" 5", "%d"}, {"0", "%d"}, {"32", "%d"}, {"24", "%H"}, {"62", "%S"}, {"13", "%m"},
      {"0", "%I"}, {"367", "%j"}, {"7", "%w"}, {"54", "%U"}, {"x", "%Y"}, {"foo", "%a"},
      {"5 pm x", "%I %p"}, {"13 pm", "%H %p"}, {"12 am", "%H %p"}, {"a", "b"}, {"5", "%Q"},
      {"5", "%"}, {"5", "%E"}, {"5", "%Ed"}, {"5", "%OY"}, {"5", "%EOy"}, {"5", "%Ok"},
      {"5", "%OC"}, {"x", "%En"}, {"%", "%E%"}, {"1", "%OB"}, {"-5", "%d"},
      {"0", "%m"}, {"0", "%j"}, {"0", "%e"}, {"32", "%e"}, {"13", "%l"}, {"54", "%W"}, {"x", "%%"},
      {"5", "%EH"}, {"5", "%Oj"}, {"5", "%Ol"}, {"3:4", "%ER"}, {"3:4:5", "%OT"}, {"3:4:5", "%OX"},
      {"1/2/3", "%ED"}, {"1/2/3", "%Ox"}, {"1/2/3 4:5:6", "%Oc"}, {"Sun", "%Ea"}, {"PM", "%Op"},
      {"2010-01-02 03:04:05", "%Y-%m-%dT%H:%M:%S"},
      // clang-format on
  };
  for (const auto& row : rows) {
    std::tm t{};
    EXPECT_EQ(DataTypes::strptime(row.text, row.format, &t), nullptr)
        << row.text << " by " << row.format;
  }
}

}  // namespace
}  // namespace DataTypes
