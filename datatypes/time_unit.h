#pragma once

#include <string>

namespace DataTypes {

// Units of an interval. The values are fixed: functions test their range, and any number may come
// from outside.
enum TimeUnit : int {
  NONE = 0,
  INVALID = 1,
  MICROSECOND = 2,
  MILLISECOND = 3,
  SECOND = 4,
  MINUTE = 5,
  HOUR = 6,
  DAY = 7,
};

// The count as whole seconds, or -1: for a negative count, no unit, an amount below one second, or
// more seconds than an int holds.
int getSeconds(TimeUnit unit, int count);

// The count in microseconds. Returns false for no unit and when it does not fit 64 bits; `out` is
// left alone then.
bool getMicroSeconds(TimeUnit unit, long count, long& out);

// The unit's name, for instance "SECOND"; "UNKNOWN" for no unit. Empty when memory runs out.
std::string getTimeUnitStr(TimeUnit unit);

// The largest count of the unit whose microseconds fit 64 bits; 0 for no unit.
long getTimeUnitMax(TimeUnit unit);

// The largest count, and its negation, in decimal.
std::string getTimeUnitMaxStr(TimeUnit unit);
std::string getTimeUnitMinStr(TimeUnit unit);

// The unit of a name in capitals, singular, plural or short ("SEC", "HR"). NONE for null, INVALID
// for any other text.
TimeUnit getTimeUnit(const char* text);

}  // namespace DataTypes
