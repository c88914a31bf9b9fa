#include "datatypes/calendar.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <random>

#include "scoped_time_zone.h"

namespace DataTypes {
namespace {

std::tm civil(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  std::tm t{};
  t.tm_year = year - 1900;
  t.tm_mon = month - 1;
  t.tm_mday = day;
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_sec = second;
  return t;
}

TEST(Calendar, EveryDayAgreesWithTheCLibrary) {
  const ScopedTimeZone newYork("America/New_York");
  for (int year = 1970; year <= 2500; ++year) {
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= 31; ++day) {
        const std::tm t = civil(year, month, day, 23, 59, 58);
        std::tm copy = t;
        const long expected = timegm(&copy);
        ASSERT_EQ(tm2sec(&t), expected) << year << "-" << month << "-" << day;
        ASSERT_EQ(tm2secUtc(&t), expected);
      }
    }
  }
}

TEST(Calendar, SecondsOfEdges) {
  const ScopedTimeZone utc("UTC");
  const struct {
    std::tm t;
    long tm2sec, utc;
  } rows[] = {
      {civil(1970, 1, 1), 0, 0},
      {civil(2000, 2, 29), 951782400, 951782400},
      {civil(1969, 12, 31, 23, 59, 59), -1, -1},
      {civil(1969, 12, 31), -86400, -86400},
      {civil(1970, 1, 0), -1, -86400},
      {civil(1970, 13, 1), -1, 31536000},
      {civil(2001, 0, 1), -1, 975628800},
      {civil(1, 1, 1), -62135596800, -62135596800},
      {civil(-400, 3, 1), -74784816000, -74784816000},
      {civil(2147483647, 12, 31, 23, 59, 59), 67767976233532799, 67767976233532799},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(tm2sec(&row.t), row.tm2sec);
    EXPECT_EQ(tm2secUtc(&row.t), row.utc);
  }
}

TEST(Calendar, OnlyYearsBefore1970FollowTheProcessZone) {
  const ScopedTimeZone newYork("EST5");
  const std::tm early = civil(1960, 1, 1);
  const std::tm late = civil(1980, 1, 1);
  EXPECT_EQ(tm2sec(&early), -315601200);
  EXPECT_EQ(tm2secUtc(&early), -315619200);
  EXPECT_EQ(tm2sec(&late), 315532800);
  EXPECT_EQ(early.tm_wday, 0) << "the argument is not normalised";
}

void expectSameBreakDown(long seconds) {
  std::tm expected{};
  std::tm actual{};
  const bool isPossible = gmtime_r(&seconds, &expected) != nullptr;
  ASSERT_EQ(breakDownUtc(seconds, actual), isPossible) << seconds;
  if (!isPossible) return;
  ASSERT_STREQ(actual.tm_zone, expected.tm_zone);
  const auto fields = [](const std::tm& t) {
    return std::array{t.tm_year, t.tm_mon,  t.tm_mday, t.tm_hour, t.tm_min,
                      t.tm_sec,  t.tm_wday, t.tm_yday, t.tm_isdst};
  };
  ASSERT_EQ(fields(actual), fields(expected)) << seconds;
  ASSERT_EQ(actual.tm_gmtoff, 0);
}

TEST(Calendar, BreakDownAgreesWithTheCLibrary) {
  for (const long seconds : {LONG_MIN, -67768040609740801, -67768040609740800, -62135596801, -1L,
                             0L, 67768036191676799, 67768036191676800, LONG_MAX})
    expectSameBreakDown(seconds);
  for (long day = -300000; day < 300000; ++day) expectSameBreakDown(day * 86400 + 86399);
  std::mt19937_64 random(3);
  for (int i = 0; i < 300000; ++i)
    expectSameBreakDown(static_cast<long>(random()) >> (random() % 63));
}

}  // namespace
}  // namespace DataTypes
