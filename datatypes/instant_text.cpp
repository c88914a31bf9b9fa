#include "datatypes/instant_text.h"

#include <array>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "datatypes/calendar.h"
#include "datatypes/characters.h"
#include "datatypes/digit_words.h"
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

constexpr long kSecondsPerDay = 86400;
constexpr long kFirstSecond = -62167219200;  // 0000-01-01 00:00:00
constexpr long kLastSecond = 253402300799;   // 9999-12-31 23:59:59

constexpr unsigned long kSpan = kLastSecond - kFirstSecond + 1;
constexpr std::size_t kDateTimeLength = 19;

// "-MM-DD " for each day of a year that begins on 1 March, so that the leap day is the last one.
constexpr auto kMonthAndDay = [] {
  std::array<std::uint64_t, 366> words{};
  for (unsigned day = 0; day < words.size(); ++day) {
    const unsigned marchMonth = (5 * day + 2) / 153;
    const unsigned month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
    const unsigned dayOfMonth = day - (153 * marchMonth + 2) / 5 + 1;
    const char text[] = {
        '-', static_cast<char>('0' + month / 10),      static_cast<char>('0' + month % 10),
        '-', static_cast<char>('0' + dayOfMonth / 10), static_cast<char>('0' + dayOfMonth % 10),
        ' '};
    for (unsigned i = 0; i < sizeof text; ++i)
      words[day] |= std::uint64_t{static_cast<unsigned char>(text[i])} << i * 8;
  }
  return words;
}();

// Writes "YYYY-MM-DD " of a day counted from 0000-01-01. All divisions are by constants and become
// multiplications; 2939745/2^32 is 4/1461 exactly enough for the days of a century.
inline void putDate(unsigned day, char* out) {
  constexpr unsigned kDaysOf400Years = 146097;
  constexpr unsigned kDaysBeforeMarch = 60;
  constexpr unsigned kFirstDayOfJanuary = 306;
  // One cycle more, for January and February of year 0.
  const unsigned quarters = 4 * (day + kDaysOf400Years - kDaysBeforeMarch) + 3;
  const unsigned century = quarters / kDaysOf400Years;
  const std::uint64_t years = std::uint64_t{quarters % kDaysOf400Years | 3U} * 2939745;
  const unsigned dayOfYear = static_cast<unsigned>(years) / 2939745 / 4;
  const unsigned year = century * 100 - 400 + static_cast<unsigned>(years >> 32) +
                        (dayOfYear >= kFirstDayOfJanuary ? 1 : 0);
  putPair(out, year / 100);
  putPair(out + 2, year % 100);
  putWord(out + 4, kMonthAndDay[dayOfYear]);
}

// "00:" to "59:".
constexpr auto kPairAndColon = [] {
  std::array<char, 240> texts{};
  for (std::size_t i = 0; i < 60; ++i) {
    texts[i * 4] = static_cast<char>('0' + i / 10);
    texts[i * 4 + 1] = static_cast<char>('0' + i % 10);
    texts[i * 4 + 2] = ':';
  }
  return texts;
}();

// Writes "HH:MM:SS". Each step writes over the fourth byte of the one before.
inline void putTime(unsigned secondOfDay, char* out) {
  const unsigned minuteOfDay = secondOfDay / 60;
  const unsigned hour = minuteOfDay / 60;
  std::memcpy(out, &kPairAndColon[std::size_t{hour} * 4], 4);
  std::memcpy(out + 3, &kPairAndColon[std::size_t{minuteOfDay - hour * 60} * 4], 4);
  putPair(out + 6, secondOfDay - minuteOfDay * 60);
}

// Writes a value with a four-digit year; 0 for any other. The unit is a constant, so that no
// division remains.
template <unsigned long UnitsPerSecond, unsigned FractionDigits>
std::size_t putInstant(long value, char* out) {
  constexpr unsigned long kUnitsPerDay = UnitsPerSecond * kSecondsPerDay;
  const auto sinceYear0 =
      static_cast<unsigned long>(value) - static_cast<unsigned long>(kFirstSecond) * UnitsPerSecond;
  if (sinceYear0 >= kSpan * UnitsPerSecond) return 0;
  const unsigned long seconds = sinceYear0 / UnitsPerSecond;
  const unsigned long day = sinceYear0 / kUnitsPerDay;
  putDate(static_cast<unsigned>(day), out);
  putTime(static_cast<unsigned>(seconds - day * kSecondsPerDay), out + 11);
  const auto fraction = static_cast<unsigned>(sinceYear0 - seconds * UnitsPerSecond);
  if (UnitsPerSecond == 1000) putPointAndThree(out + kDateTimeLength, fraction);
  if (UnitsPerSecond == 1000000) putPointAndSix(out + kDateTimeLength, fraction);
  return kDateTimeLength + (FractionDigits != 0 ? 1 + FractionDigits : 0);
}

std::size_t addZone(std::size_t length, bool withZone, char* out) {
  constexpr std::size_t kZoneLength = 3;
  if (!withZone) return length;
  std::memcpy(out + length, "+00", kZoneLength);
  return length + kZoneLength;
}

// The two formats that nearly all dates are read by; they differ in one character.
bool isUsualFormat(const char* format) {
  return std::strncmp(format, "%Y-%m-%d", 8) == 0 && (format[8] == 'T' || format[8] == ' ') &&
         std::strcmp(format + 9, "%H:%M:%S") == 0;
}

// Two digits, or a number above 99.
unsigned pairAt(const char* text) {
  const auto tens = static_cast<unsigned char>(text[0] - '0');
  const auto ones = static_cast<unsigned char>(text[1] - '0');
  return tens <= 9 && ones <= 9 ? tens * 10U + ones : 100U;
}

// Reads a date and time with all its digits, from 1970 on and within the ranges of the conversions:
// strptime reads the same numbers from it and tm2sec counts the same seconds. Returns what follows,
// or null for the plain form.
const char* readUsualDateTime(const char* text, char separator, long& seconds) {
  constexpr std::size_t kLength = 19;
  constexpr unsigned kFirstYear = 1970;
  if (strnlen(text, kLength) < kLength) return nullptr;
  const unsigned century = pairAt(text);
  const unsigned yearOfCentury = pairAt(text + 2);
  const unsigned month = pairAt(text + 5);
  const unsigned day = pairAt(text + 8);
  const unsigned hour = pairAt(text + 11);
  const unsigned minute = pairAt(text + 14);
  const unsigned second = pairAt(text + 17);
  const unsigned year = century * 100 + yearOfCentury;
  const bool isInRange = century <= 99 && yearOfCentury <= 99 && year >= kFirstYear &&
                         month - 1 < 12 && day - 1 < 31 && hour < 24 && minute < 60 && second < 62;
  // Another digit would belong to the seconds: leading zeros do not count.
  const bool isInShape = !isDigit(text[kLength]) && text[4] == '-' && text[7] == '-' &&
                         text[10] == separator && text[13] == ':' && text[16] == ':';
  if (!isInRange || !isInShape) return nullptr;
  seconds =
      ((daysFromCivil(year, static_cast<int>(month), day) * 24 + hour) * 60 + minute) * 60 + second;
  return text + kLength;
}

// Reads "." and digits to the end of the text, keeping `count` of them; also the empty text.
bool readFraction(const char* text, int count, long& fraction) {
  fraction = 0;
  const bool hasPoint = *text == '.';
  if (hasPoint) ++text;
  for (int i = 0; i < count; ++i) fraction = fraction * 10 + (isDigit(*text) ? *text++ - '0' : 0);
  while (hasPoint && isDigit(*text)) ++text;
  return *text == '\0';
}

}  // namespace

std::size_t printDatePlain(long seconds, bool withZone, char* out) {
  const std::tm t = brokenDown(seconds);
  char text[kMaxInstantText + 1];
  const int length = KORVEX::Zel::intl_snprintf(
      text, sizeof text, "%04ld-%02d-%02d %02d:%02d:%02d%s", t.tm_year + 1900L, t.tm_mon + 1,
      t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, withZone ? "+00" : "");
  std::memcpy(out, text, static_cast<std::size_t>(length));
  return static_cast<std::size_t>(length);
}

std::size_t printDate(long seconds, bool withZone, char* out) {
  const std::size_t length = putInstant<1, 0>(seconds, out);
  return length != 0 ? addZone(length, withZone, out) : printDatePlain(seconds, withZone, out);
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

std::size_t printTimestamp(long value, bool withZone, char* out) {
  const std::size_t length = putInstant<1000, 3>(value, out);
  return length != 0 ? addZone(length, withZone, out)
                     : printInstantPlain(value, kTimestampUnit, withZone, out);
}

std::size_t printBigDateTime(long value, bool withZone, char* out) {
  const std::size_t length = putInstant<1000000, 6>(value, out);
  return length != 0 ? addZone(length, withZone, out)
                     : printInstantPlain(value, kBigDateTimeUnit, withZone, out);
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
  const auto sinceYear0 =
      static_cast<unsigned long>(seconds) - static_cast<unsigned long>(kFirstSecond);
  if (sinceYear0 >= kSpan) return printTimeOfDayPlain(seconds, withZone, out);
  putTime(static_cast<unsigned>(sinceYear0 % kSecondsPerDay), out);
  return addZone(8, withZone, out);
}

InstantStatus parseSecondsPlain(const char* text, const char* format, long& seconds) {
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

InstantStatus parseSeconds(const char* text, const char* format, long& seconds) {
  if (isUsualFormat(format) && readUsualDateTime(text, format[8], seconds) != nullptr)
    return InstantStatus::kOk;
  return parseSecondsPlain(text, format, seconds);
}

InstantStatus parseInstantPlain(const char* text, const InstantUnit& unit, const char* format,
                                long& value) {
  char* whole = nullptr;
  char* fraction = nullptr;
  if (!unit.split(text, whole, fraction)) return InstantStatus::kNoSplit;
  long seconds = 0;
  const InstantStatus status = parseSecondsPlain(whole, format, seconds);
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
  long seconds = 0;
  long fraction = 0;
  const char* rest = isUsualFormat(format) ? readUsualDateTime(text, format[8], seconds) : nullptr;
  if (rest == nullptr || !readFraction(rest, unit.fractionDigits, fraction))
    return parseInstantPlain(text, unit, format, value);
  value = seconds * unit.unitsPerSecond + fraction;
  return InstantStatus::kOk;
}

}  // namespace DataTypes
