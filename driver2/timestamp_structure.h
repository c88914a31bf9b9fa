#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstdint>
#include <ctime>

#include "datatypes/calendar.h"
#include "datatypes/type_code.h"

namespace KORVEX::Zel::DB::ODBC {

// How a date type counts since 1970-01-01 00:00:00 UTC.
struct DateUnit {
  unsigned int typeNumber;
  long perSecond;
  unsigned int nanosPerUnit;  // 0: the type has no fraction
};

// The date types, for everything that binds or reads them.
inline constexpr DateUnit kDateUnits[] = {
    {DataTypes::kDate, 1, 0},
    {DataTypes::kTimestamp, 1000, 1'000'000},
    {DataTypes::kBigDateTime, 1'000'000, 1000},
};

// The unit of a type code (its low 8 bits count), or null for a type that is no date.
constexpr const DateUnit* dateUnitOf(unsigned int typeCode) {
  for (const DateUnit& unit : kDateUnits) {
    if (unit.typeNumber == DataTypes::typeNumber(typeCode)) return &unit;
  }
  return nullptr;
}

// A count as an ODBC timestamp. False, with `timestamp` left alone, when the year cannot be
// expressed in its 16 bits.
bool makeTimestamp(long count, const DateUnit& unit, TIMESTAMP_STRUCT& timestamp);

// How seconds since the epoch are told from a broken-down time: tm2sec, or tm2secUtc.
using SecondsOf = long (*)(const std::tm* time);

// The seconds of an ODBC timestamp; its fraction is left out.
long secondsOfPlain(const TIMESTAMP_STRUCT& timestamp, SecondsOf secondsOf);

// The same for a timestamp from 1970 on whose month is 1 to 12 and whose day is at least 1.
inline long secondsSince1970(const TIMESTAMP_STRUCT& t) {
  const long days = DataTypes::daysSince1970(static_cast<unsigned>(t.year), t.month, t.day);
  // Of any hours and minutes that the structure can hold: it fits the type.
  const unsigned seconds = t.hour * 3600U + t.minute * 60U + t.second;
  return days * 86400 + static_cast<long>(seconds);
}

// The same, without a broken-down time where both functions count alike: from the first day of 1970
// on, months within the year, no field is negative (those of the structure cannot be), so that no
// zone, carry or error comes in.
inline long secondsOfTimestamp(const TIMESTAMP_STRUCT& t, SecondsOf secondsOf) {
  const bool usual = t.year >= 1970 && t.month - 1U < 12 && t.day >= 1;
  return usual ? secondsSince1970(t) : secondsOfPlain(t, secondsOf);
}

// Seconds and a fraction in nanoseconds as a count. Digits of the fraction beyond the unit are cut,
// not rounded.
constexpr std::int64_t countOf(std::int64_t seconds, unsigned nanos, const DateUnit& unit) {
  // The same as below for the usual unit, without a division by a variable.
  if (unit.nanosPerUnit == 1000) return seconds * 1'000'000 + nanos / 1000;
  if (unit.nanosPerUnit == 0) return seconds;
  return seconds * unit.perSecond + nanos / unit.nanosPerUnit;
}

// An ODBC timestamp as a count.
inline std::int64_t countOfTimestamp(const TIMESTAMP_STRUCT& timestamp, const DateUnit& unit,
                                     SecondsOf secondsOf) {
  return countOf(secondsOfTimestamp(timestamp, secondsOf), timestamp.fraction, unit);
}

}  // namespace KORVEX::Zel::DB::ODBC
