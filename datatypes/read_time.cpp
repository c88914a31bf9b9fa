#include "datatypes/read_time.h"

#include <climits>
#include <ctime>

#include "datatypes/calendar.h"
#include "datatypes/time_zones.h"
#include "datatypes/zone.h"

namespace DataTypes {
namespace {

constexpr long kMicrosPerSecond = 1000000;
constexpr long kMicrosPerMilli = 1000;
constexpr long kMillisPerSecond = 1000;

int orZero(int value) {
  return value < 0 ? 0 : value;
}

int hourOfDay(int marker, int hour) {
  const bool isTwelve = hour == 12 || hour < 1;
  if (marker == ReadTime::kPm) return isTwelve ? 12 : hour + 12;
  return isTwelve ? 0 : hour;
}

std::tm brokenDown(const ReadTime& read) {
  std::tm t{};
  // Kept: a missing year means 1900.
  t.tm_year = read.year == -1 ? 0 : read.year - 1900;
  if (read.dayOfYear < 0) {
    t.tm_mday = read.day > 0 ? read.day : 1;
    t.tm_mon = orZero(read.month);
  } else {
    t.tm_yday = read.dayOfYear;
  }
  t.tm_hour = hourOfDay(read.marker, read.hour);
  t.tm_min = orZero(read.minute);
  t.tm_sec = orZero(read.second);
  return t;
}

}  // namespace

bool ReadTime::takeFieldsOf(long epochSeconds) {
  std::tm t{};
  if (!breakDownUtc(epochSeconds, t) || t.tm_year > INT_MAX - 1900) return false;
  year = t.tm_year + 1900;
  month = t.tm_mon;
  day = t.tm_mday;
  setHour24(t.tm_hour);
  minute = t.tm_min;
  second = t.tm_sec;
  return true;
}

bool ReadTime::takeCounts() {
  if (hasSeconds) {
    if (!takeFieldsOf(seconds)) return false;
    fractionMicros = 0;
  }
  if (hasMillis) {
    long count = millis;
    if (fractionMicros >= 0) {
      const long part = fractionMicros / kMicrosPerMilli;
      if (__builtin_add_overflow(count, count < 0 ? -part : part, &count)) return false;
    }
    if (!takeFieldsOf(count / kMillisPerSecond)) return false;
    fractionMicros = static_cast<int>(millis % kMillisPerSecond * kMicrosPerMilli);
  }
  return true;
}

// Kept: the offset of a zone that was read by name is added, the direction in which values are
// written.
bool ReadTime::shiftToNamedZone(long& shiftedSeconds, long& shiftedMicros) const {
  const Zone* zone = findZone(hasShortZone ? shortZone.c_str() : longZone.c_str());
  long unshifted = 0;
  if (zone == nullptr || __builtin_mul_overflow(shiftedSeconds, kMicrosPerSecond, &unshifted))
    return false;
  toTimeZone(unshifted, "UTC", zone->identifier().c_str(), shiftedMicros);
  shiftedSeconds = shiftedMicros / kMicrosPerSecond;
  return true;
}

bool ReadTime::toInstant(long unitsPerSecond, long& out) {
  const long microsPerUnit = kMicrosPerSecond / unitsPerSecond;
  if (hasMicros) {
    out = micros / microsPerUnit;
    return true;
  }
  if (!takeCounts()) return false;
  const std::tm t = brokenDown(*this);
  long whole = tm2sec(&t);
  const long fraction = unitsPerSecond == 1 ? 0 : orZero(fractionMicros) / microsPerUnit;
  long result = 0;
  if (hasShortZone || hasLongZone) {
    long shifted = 0;
    if (!shiftToNamedZone(whole, shifted)) return false;
    result = shifted / microsPerUnit;
  } else {
    if (hasZoneHours || hasZoneMinutes) whole += zoneOffsetSeconds;
    if (__builtin_mul_overflow(whole, unitsPerSecond, &result)) return false;
  }
  if (__builtin_add_overflow(result, fraction, &result)) return false;
  out = result;
  return true;
}

}  // namespace DataTypes
