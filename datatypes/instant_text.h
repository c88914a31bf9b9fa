#pragma once

// Dates and times as fixed text, and read by strptime formats. Each fast form gives the result of
// the plain form beside it.

#include <cstddef>

namespace DataTypes {

// A type of instants: its unit and the digits of its fraction.
struct InstantUnit {
  long unitsPerSecond;
  int fractionDigits;
  bool (*split)(const char* text, char*& whole, char*& fraction);
  long maxSeconds;  // magnitude
};

extern const InstantUnit kTimestampUnit;
extern const InstantUnit kBigDateTimeUnit;

// The longest text that the functions below write, without the terminator.
inline constexpr std::size_t kMaxInstantText = 48;

// Each writes a text without a terminator and returns its length; `out` has room for
// kMaxInstantText characters. Seconds that have no calendar date are written as the epoch.
std::size_t printDatePlain(long seconds, bool withZone, char* out);
std::size_t printDate(long seconds, bool withZone, char* out);
std::size_t printInstantPlain(long value, const InstantUnit& unit, bool withZone, char* out);
std::size_t printTimestamp(long value, bool withZone, char* out);
std::size_t printBigDateTime(long value, bool withZone, char* out);
std::size_t printTimeOfDayPlain(long seconds, bool withZone, char* out);
std::size_t printTimeOfDay(long seconds, bool withZone, char* out);

enum class InstantStatus { kOk, kNoSplit, kNoMatch, kOverflow };

// Seconds since the epoch by a format; the format "%s" reads them as a number.
InstantStatus parseSecondsPlain(const char* text, const char* format, long& seconds);
InstantStatus parseSeconds(const char* text, const char* format, long& seconds);

// The same with a fraction behind the last point.
InstantStatus parseInstantPlain(const char* text, const InstantUnit& unit, const char* format,
                                long& value);
InstantStatus parseInstant(const char* text, const InstantUnit& unit, const char* format,
                           long& value);

}  // namespace DataTypes
