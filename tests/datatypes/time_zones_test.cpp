#include "datatypes/time_zones.h"

#include <gtest/gtest.h>
#include <unicode/basictz.h>
#include <unicode/strenum.h>
#include <unicode/timezone.h>
#include <unicode/tztrans.h>

#include <climits>
#include <memory>
#include <string>

#include "datatypes/zone.h"

namespace DataTypes {
namespace {

TEST(TimeZones, Names) {
  const struct {
    const char* name;
    bool isValid;
  } rows[] = {{nullptr, true},         {"", true},
              {"UTC", true},           {"Europe/Paris", true},
              {"GMT", true},           {"Etc/Unknown", true},
              {"europe/paris", false}, {"GMT+2", false},
              {"GMT+02:00", true},     {"Mars/Phobos", false},
              {"Europe/Paris ", false}};
  for (const auto& row : rows) EXPECT_EQ(isValidTimezone(row.name), row.isValid) << row.name;
}

TEST(TimeZones, Shifts) {
  constexpr long kHour = 3600000000;
  constexpr long kWinter = 1262401445000000;  // 2010-01-02 03:04:05
  constexpr long kSummer = 1278039845000000;  // 2010-07-02 03:04:05
  const struct {
    long micros;
    const char *from, *to;
    bool isOk;
    long result;
  } rows[] = {
      {kWinter, nullptr, nullptr, true, kWinter},
      {kWinter + 999, "UTC", "UTC", true, kWinter},
      {-1500, nullptr, "UTC", true, -1000},
      {kWinter, "UTC", "Europe/Paris", true, kWinter + kHour},
      {kSummer, nullptr, "Europe/Paris", true, kSummer + 2 * kHour},
      {kSummer, "Europe/Paris", "UTC", true, kSummer - 2 * kHour},
      {kSummer, "Europe/Paris", "America/New_York", true, kSummer - 6 * kHour},
      {kWinter, "UTC", "Asia/Kolkata", true, kWinter + 5 * kHour + kHour / 2},
      // An unknown zone is replaced and still applied.
      {kWinter, "UTC", "Mars/Phobos", false, kWinter},
      {kWinter, "UTC", "GMT+2", false, kWinter + 2 * kHour},
      {kWinter, "Mars/Phobos", "Europe/Paris", false, kWinter + kHour},
      {LONG_MAX, nullptr, "Europe/Paris", false, LONG_MAX},
      {LONG_MIN, "Europe/Paris", nullptr, false, LONG_MIN},
      {LONG_MAX, nullptr, nullptr, true, 9223372036854775000},
  };
  for (const auto& row : rows) {
    long result = 77;
    EXPECT_EQ(toTimeZone(row.micros, row.from, row.to, result), row.isOk);
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(toTimeZonePlain(row.micros, row.from, row.to, result), row.isOk);
    EXPECT_EQ(result, row.result);
  }
}

void expectSameShift(long millis, const char* zone) {
  long cached = 0;
  long direct = 0;
  ASSERT_EQ(toTimeZone(millis * 1000, "UTC", zone, cached),
            toTimeZonePlain(millis * 1000, "UTC", zone, direct));
  ASSERT_EQ(cached, direct) << zone << " at " << millis;
  ASSERT_EQ(toTimeZone(millis * 1000, zone, "UTC", cached),
            toTimeZonePlain(millis * 1000, zone, "UTC", direct));
  ASSERT_EQ(cached, direct) << zone << " at " << millis << " to UTC";
}

// Enough for every zone from 1850 to about 2040.
constexpr int kTransitions = 320;

// The cached zones against zones made for each call, around transitions from 1850 on.
void expectSameShiftsAtTransitions(const std::string& name) {
  const std::unique_ptr<icu::TimeZone> zone(
      icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
  const auto* rules = dynamic_cast<const icu::BasicTimeZone*>(zone.get());
  ASSERT_NE(rules, nullptr);
  icu::TimeZoneTransition transition;
  double at = -3786912000000.0;
  for (int count = 0; count < kTransitions && rules->getNextTransition(at, false, transition);
       ++count) {
    at = transition.getTime();
    for (const long offset : {-1000L, 0L, 1000L})
      expectSameShift(static_cast<long>(at) + offset, name.c_str());
  }
}

TEST(TimeZones, EveryZoneAtItsTransitions) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::StringEnumeration> names(icu::TimeZone::createEnumeration(status));
  ASSERT_TRUE(U_SUCCESS(status));
  int count = 0;
  while (const char* name = names->next(nullptr, status)) {
    expectSameShiftsAtTransitions(name);
    if (HasFatalFailure()) return;
    ++count;
  }
  EXPECT_GT(count, 500);
}

}  // namespace
}  // namespace DataTypes
