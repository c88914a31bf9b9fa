#include "datatypes/calendar.h"

#include <climits>

namespace DataTypes {
namespace {

constexpr long kSecondsPerDay = 86400;

// From 1 March 1900 to 1970-01-01, as the formula of tm2sec counts.
constexpr long kEpochDays = 25508;

long floorDivide(long value, long divisor) {
  const long quotient = value / divisor;
  return value % divisor < 0 ? quotient - 1 : quotient;
}

long secondsOf(long days, const std::tm& t) {
  return ((days * 24 + t.tm_hour) * 60 + t.tm_min) * 60 + t.tm_sec;
}

}  // namespace

long tm2sec(const std::tm* t) {
  if (t->tm_year < 70) {
    // Kept: mktime, so earlier years follow the process's time zone.
    std::tm local = *t;
    return std::mktime(&local);
  }
  if (t->tm_mon < 0 || t->tm_mon > 11) return -1;
  const long y = t->tm_mon < 2 ? t->tm_year - 1L : t->tm_year;
  const long days = 365 * y + y / 4 - y / 100 + (y / 100 + 3) / 4 +
                    detail::kDaysSinceMarch[t->tm_mon] + t->tm_mday - 1 - kEpochDays;
  const long seconds = secondsOf(days, *t);
  return seconds < 0 ? -1 : seconds;
}

long tm2secUtc(const std::tm* t) {
  const long carriedYears = floorDivide(t->tm_mon, 12);
  const int month = static_cast<int>(t->tm_mon - carriedYears * 12) + 1;
  return secondsOf(daysFromCivil(1900L + t->tm_year + carriedYears, month, t->tm_mday), *t);
}

bool breakDownUtc(long seconds, std::tm& out) {
  const long days = floorDivide(seconds, kSecondsPerDay);
  const long remainder = seconds % kSecondsPerDay;
  const auto secondOfDay = static_cast<int>(remainder < 0 ? remainder + kSecondsPerDay : remainder);
  // Years begin on 1 March here, so that the leap day is the last one.
  const long shifted = days + 719468;
  const long era = floorDivide(shifted, 146097);
  const auto dayOfEra = static_cast<unsigned>(shifted - era * 146097);
  const unsigned yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const unsigned marchMonth = (5 * dayOfYear + 2) / 153;
  const bool isNextYear = marchMonth >= 10;
  const bool isLeapYear = yearOfEra % 4 == 0 && (yearOfEra % 100 != 0 || yearOfEra == 0);
  const long year = yearOfEra + era * 400 + (isNextYear ? 1 : 0);
  if (year - 1900 > INT_MAX || year - 1900 < INT_MIN) return false;

  std::tm result{};
  result.tm_year = static_cast<int>(year - 1900);
  result.tm_mon = static_cast<int>(isNextYear ? marchMonth - 10 : marchMonth + 2);
  result.tm_mday = static_cast<int>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
  result.tm_yday =
      static_cast<int>(isNextYear ? dayOfYear - 306 : dayOfYear + (isLeapYear ? 60 : 59));
  // 146097 days are whole weeks, and 1 March 2000 was a Wednesday.
  result.tm_wday = static_cast<int>((dayOfEra + 3) % 7);
  result.tm_hour = secondOfDay / 3600;
  result.tm_min = secondOfDay / 60 % 60;
  result.tm_sec = secondOfDay % 60;
  result.tm_zone = "GMT";
  out = result;
  return true;
}

}  // namespace DataTypes
