#include "datatypes/instant_text.h"

#include <climits>
#include <cstdlib>
#include <cstring>

#include "datatypes/calendar.h"
#include "datatypes/time_text.h"
#include "host/intl.h"

namespace DataTypes {

const InstantUnit kTimestampUnit = {1000, 3, splitTimestamp, LONG_MAX / 1000};
const InstantUnit kBigDateTimeUnit = {1000000, 6, splitBigdatetime, LONG_MAX / 1000000};

namespace {

std::tm brokenDown(long seconds) {
  std::tm t{};
  if (!breakDownUtc(seconds, t)) breakDownUtc(0, t);
  return t;
}

// Seconds and a fraction that is never negative.
void splitInstant(long value, long unitsPerSecond, long& seconds, long& fraction) {
  seconds = value / unitsPerSecond;
  fraction = value % unitsPerSecond;
  if (fraction >= 0) return;
  fraction += unitsPerSecond;
  --seconds;
}

}  // namespace

std::size_t printDatePlain(long seconds, bool withZone, char* out) {
  const std::tm t = brokenDown(seconds);
  char text[kMaxInstantText + 1];
  const int length = KORVEX::Zel::intl_snprintf(
      text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d%s", t.tm_year + 1900, t.tm_mon + 1,
      t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, withZone ? "+00" : "");
  std::memcpy(out, text, static_cast<std::size_t>(length));
  return static_cast<std::size_t>(length);
}

std::size_t printDate(long seconds, bool withZone, char* out) {
  return printDatePlain(seconds, withZone, out);
}

std::size_t printInstantPlain(long value, const InstantUnit& unit, bool withZone, char* out) {
  long seconds = 0;
  long fraction = 0;
  splitInstant(value, unit.unitsPerSecond, seconds, fraction);
  char text[kMaxInstantText + 1];
  std::size_t length = printDatePlain(seconds, false, text);
  const int tail = KORVEX::Zel::intl_snprintf(text + length, sizeof text - length, ".%0*ld%s",
                                              unit.fractionDigits, fraction, withZone ? "+00" : "");
  length += static_cast<std::size_t>(tail);
  std::memcpy(out, text, length);
  return length;
}

std::size_t printInstant(long value, const InstantUnit& unit, bool withZone, char* out) {
  return printInstantPlain(value, unit, withZone, out);
}

std::size_t printTimeOfDayPlain(long seconds, bool withZone, char* out) {
  const std::tm t = brokenDown(seconds);
  char text[kMaxInstantText + 1];
  const int length = KORVEX::Zel::intl_snprintf(text, sizeof text, "%02d:%02d:%02d%s", t.tm_hour,
                                                t.tm_min, t.tm_sec, withZone ? "+00" : "");
  std::memcpy(out, text, static_cast<std::size_t>(length));
  return static_cast<std::size_t>(length);
}

std::size_t printTimeOfDay(long seconds, bool withZone, char* out) {
  return printTimeOfDayPlain(seconds, withZone, out);
}

InstantStatus parseSeconds(const char* text, const char* format, long& seconds) {
  if (std::strcmp(format, "%s") == 0) {
    char* end = nullptr;
    const long number = std::strtol(text, &end, 10);
    if (end == text) return InstantStatus::kNoMatch;
    seconds = number;
    return InstantStatus::kOk;
  }
  std::tm t{};
  if (DataTypes::strptime(text, format, &t) == nullptr) return InstantStatus::kNoMatch;
  seconds = tm2sec(&t);
  return InstantStatus::kOk;
}

InstantStatus parseInstantPlain(const char* text, const InstantUnit& unit, const char* format,
                                long& value) {
  char* whole = nullptr;
  char* fraction = nullptr;
  if (!unit.split(text, whole, fraction)) return InstantStatus::kNoSplit;
  long seconds = 0;
  const InstantStatus status = parseSeconds(whole, format, seconds);
  const long part = std::strtol(fraction, nullptr, 10);
  std::free(whole);
  std::free(fraction);
  if (status != InstantStatus::kOk) return status;
  if (seconds > unit.maxSeconds || seconds < -unit.maxSeconds) return InstantStatus::kOverflow;
  // At the bound the fraction may still leave 64 bits.
  long result = 0;
  if (__builtin_add_overflow(seconds * unit.unitsPerSecond, part, &result))
    return InstantStatus::kOverflow;
  value = result;
  return InstantStatus::kOk;
}

InstantStatus parseInstant(const char* text, const InstantUnit& unit, const char* format,
                           long& value) {
  return parseInstantPlain(text, unit, format, value);
}

}  // namespace DataTypes
