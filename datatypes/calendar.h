#pragma once

// Seconds since 1970-01-01 00:00:00 UTC and broken-down time in the Gregorian calendar. Unlike the
// C library's functions these take no lock (tm2sec does for years before 1970).

#include <ctime>

namespace DataTypes {

namespace detail {

// Days from 1 March to the first of each month, January first.
inline constexpr int kDaysSinceMarch[] = {306, 337, 0, 31, 61, 92, 122, 153, 184, 214, 245, 275};

}  // namespace detail

// Days from 1970-01-01 to a date of the proleptic Gregorian calendar. `month` is 1 to 12; any day
// number is allowed and counts on.
constexpr long daysFromCivil(long year, int month, long day) {
  const long marchYear = month <= 2 ? year - 1 : year;
  const long era = (marchYear >= 0 ? marchYear : marchYear - 399) / 400;
  const long yearOfEra = marchYear - era * 400;
  const long dayOfYear = (153L * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

// The same for a date of 1970 or later: `year` at least 1970, `month` 1 to 12, `day` at least 1.
constexpr unsigned daysSince1970(unsigned year, unsigned month, unsigned day) {
  const unsigned y = year - (month <= 2 ? 1 : 0);
  const unsigned century = y / 100;
  const auto daysBefore = static_cast<unsigned>(detail::kDaysSinceMarch[month - 1]);
  // A year of 365 days and a quarter, the quarters cut: 365 * y + y / 4.
  return y * 1461 / 4 - century + century / 4 + daysBefore + day - 719469;
}

// Seconds since the epoch of a broken-down UTC time, or -1 when they are negative or the month is
// outside 0 to 11. Weekday, day of year and daylight flag are ignored; fields out of range count
// on.
// Kept: years before 1970 are handed to mktime, that is to the process's time zone.
long tm2sec(const std::tm* t);

// Seconds since the epoch of a broken-down UTC time, right for every year and whatever the
// process's time zone is. Months outside 0 to 11 carry into the year, other fields out of range
// count on.
long tm2secUtc(const std::tm* t);

// Breaks seconds down in UTC with the results of gmtime_r. Returns false, and leaves `out` alone,
// when the year does not fit an int.
bool breakDownUtc(long seconds, std::tm& out);

}  // namespace DataTypes
