#include "datatypes/time_format_parser_time_from_string.h"

#include <climits>
#include <ctime>
#include <initializer_list>

#include "datatypes/calendar.h"
#include "datatypes/characters.h"
#include "datatypes/time_zones.h"

namespace DataTypes {
namespace {

constexpr int kSecondsPerHour = 3600;

int currentYear() {
  std::tm now{};
  breakDownUtc(std::time(nullptr), now);
  return now.tm_year + 1900;
}

}  // namespace

struct TimeFormatParser_TimeFromString::NumberRow {
  int width;
  int min;
  int max;
  int ReadTime::* field;
  int offset;  // added to the number
};

using Reader = TimeFormatParser_TimeFromString;
constexpr Reader::NumberRow Reader::kDay = {2, 1, 31, &ReadTime::day, 0};
constexpr Reader::NumberRow Reader::kHour = {2, 1, 12, &ReadTime::hour, 0};
constexpr Reader::NumberRow Reader::kMinute = {2, 0, 59, &ReadTime::minute, 0};
constexpr Reader::NumberRow Reader::kSecond = {2, 0, 59, &ReadTime::second, 0};
constexpr Reader::NumberRow Reader::kMonth = {2, 1, 12, &ReadTime::month, -1};
constexpr Reader::NumberRow Reader::kYear = {4, 0, 9999, &ReadTime::year, 0};

bool Reader::beginNumber() {
  skipWhiteSpace();
  if (!isAtEnd() && !read_.hasMicros && !read_.hasSeconds) return true;
  refuse();
  return false;
}

bool Reader::digits(int width, int& value, int& count) {
  value = 0;
  count = 0;
  for (; count < width && !isAtEnd() && isDigit(current()); ++count) {
    value = value * 10 + (current() - '0');
    advance(1);
  }
  const bool isFull = count == width || !isExactMode() || isFillMode();
  if (count != 0 && isFull) return true;
  refuse();
  return false;
}

bool Reader::digits(int width, int& value) {
  int count = 0;
  return digits(width, value, count);
}

void Reader::field(const NumberRow& row) {
  int value = 0;
  if (!beginNumber()) return;
  if (read_.*row.field >= 0) return refuse();
  if (!digits(row.width, value)) return;
  if (value < row.min || value > row.max) return refuse();
  read_.*row.field = value + row.offset;
}

void Reader::OnFieldDD() {
  field(kDay);
}

void Reader::OnFieldHH12() {
  field(kHour);
}

void Reader::OnFieldMI() {
  field(kMinute);
}

void Reader::OnFieldSS() {
  field(kSecond);
}

void Reader::OnFieldMM() {
  field(kMonth);
}

void Reader::OnFieldYYYY() {
  field(kYear);
}

void Reader::OnFieldHH24() {
  int hour = 0;
  if (!beginNumber()) return;
  if (read_.hour >= 0 || read_.marker != ReadTime::kNoMarker) return refuse();
  if (!digits(2, hour)) return;
  if (hour > 23) return refuse();
  read_.setHour24(hour);
}

void Reader::OnFieldSSSSS() {
  constexpr int kLastSecondOfDay = 86399;
  int seconds = 0;
  if (!beginNumber()) return;
  if (read_.hasTimeOfDay()) return refuse();
  if (!digits(5, seconds)) return;
  if (seconds > kLastSecondOfDay) return refuse();
  read_.setHour24(seconds / kSecondsPerHour);
  read_.minute = seconds / 60 % 60;
  read_.second = seconds % 60;
}

void Reader::shortYear(int width, int unit) {
  int year = 0;
  if (!beginNumber()) return;
  if (read_.year >= 0) return refuse();
  if (digits(width, year)) read_.year = currentYear() / unit * unit + year;
}

void Reader::OnFieldRR() {
  int year = 0;
  if (!beginNumber()) return;
  if (read_.year >= 0) return refuse();
  if (!digits(2, year)) return;
  const int now = currentYear();
  const int century = now / 100 * 100;
  const bool isSecondHalf = now - century > 49;
  if (year > 49 && !isSecondHalf)
    read_.year = century - 100 + year;
  else if (year <= 49 && isSecondHalf)
    read_.year = now + (now / 100 + 1) * 100;  // Kept: the digits do not count here
  else
    read_.year = century + year;
}

void Reader::OnFieldFF() {
  constexpr int kDigits = 6;
  int value = 0;
  int read = 0;
  if (!beginNumber()) return;
  if (read_.fractionMicros >= 0) return refuse();
  if (!digits(kDigits, value, read)) return;
  // .5 is half a second
  for (; read < kDigits; ++read) value *= 10;
  read_.fractionMicros = value;
}

bool Reader::count(int width, long& value) {
  const bool isNegative = !isAtEnd() && current() == '-';
  if (isNegative) advance(1);
  long result = 0;
  int read = 0;
  for (; read < width && !isAtEnd() && isDigit(current()); ++read) {
    const long digit = current() - '0';
    // Counted downwards when negative, so that the most negative number can be read.
    if (__builtin_mul_overflow(result, 10L, &result) ||
        __builtin_add_overflow(result, isNegative ? -digit : digit, &result))
      return false;
    advance(1);
  }
  value = result;
  return read != 0;
}

void Reader::epochCount(int width, bool isExcluded, bool& isGiven, long& value) {
  if (!beginNumber()) return;
  if (isExcluded || isGiven || read_.hasField() || !count(width, value)) return refuse();
  isGiven = true;
}

void Reader::OnFieldSE() {
  constexpr int kMaxDigits = 20;
  epochCount(kMaxDigits, read_.hasMillis, read_.hasSeconds, read_.seconds);
}

void Reader::OnFieldMS() {
  epochCount(INT_MAX, false, read_.hasMillis, read_.millis);
}

void Reader::OnFieldMIC() {
  epochCount(INT_MAX, read_.hasMillis, read_.hasMicros, read_.micros);
}

void Reader::OnFieldAM(Case letterCase) {
  static constexpr const char* kMarkers[3][2] = {{"Am", "Pm"}, {"AM", "PM"}, {"am", "pm"}};
  skipWhiteSpace();
  if (read_.marker != ReadTime::kNoMarker) return refuse();
  for (const int marker : {ReadTime::kAm, ReadTime::kPm}) {
    if (!rest().starts_with(kMarkers[letterCase][marker - ReadTime::kAm])) continue;
    advance(2);
    read_.marker = marker;
    return;
  }
  refuse();
}

// The index of the longest name that the text goes on with, or -1 after refusing.
template <std::size_t Count>
int Reader::readName(const PictureName (&names)[Count]) {
  skipWhiteSpace();
  const PictureName* longest = nullptr;
  for (const PictureName& name : names)
    if (rest().starts_with(std::string_view(name.text, name.length)) &&
        (longest == nullptr || name.length > longest->length))
      longest = &name;
  if (longest == nullptr) {
    refuse();
    return -1;
  }
  advance(longest->length);
  return static_cast<int>(longest - names);
}

void Reader::monthName(const PictureName (&names)[12]) {
  if (!beginNumber()) return;
  if (read_.month >= 0) return refuse();
  read_.month = readName(names);
}

void Reader::OnFieldMONTH(Case letterCase) {
  monthName(kMonthNames[letterCase]);
}

void Reader::OnFieldMON(Case letterCase) {
  monthName(kShortMonthNames[letterCase]);
}

void Reader::OnFieldRM(Case letterCase) {
  monthName(kRomanMonthNames[letterCase]);
}

// Weekdays are checked for their spelling only.
void Reader::OnFieldDAY(Case letterCase) {
  readName(kWeekdayNames[letterCase]);
}

void Reader::OnFieldDY(Case letterCase) {
  readName(kShortWeekdayNames[letterCase]);
}

bool Reader::zoneNumber(bool isGiven, int& value) {
  if (!read_.hasShortZone && !isGiven) return digits(2, value);
  refuse();
  return false;
}

void Reader::OnFieldTZH() {
  int hours = 0;
  if (!beginNumber()) return;
  const bool isNegative = current() == '-';
  if (isNegative || current() == '+') advance(1);
  if (!zoneNumber(read_.hasZoneHours, hours)) return;
  read_.zoneOffsetSeconds += (isNegative ? -hours : hours) * kSecondsPerHour;
  read_.hasZoneHours = true;
}

void Reader::OnFieldTZM() {
  int minutes = 0;
  if (!beginNumber() || !zoneNumber(read_.hasZoneMinutes, minutes)) return;
  read_.zoneOffsetSeconds += (read_.zoneOffsetSeconds < 0 ? -minutes : minutes) * 60;
  read_.hasZoneMinutes = true;
}

void Reader::zoneName(bool& isGiven, std::string& name) {
  skipWhiteSpace();
  if (isGiven) return refuse();
  name = rest();
  advance(name.size());
  isGiven = true;
  // Kept: both tokens check the name of TZD.
  if (!isValidTimezone(read_.shortZone.c_str())) refuse();
}

void Reader::OnFieldTZD() {
  zoneName(read_.hasShortZone, read_.shortZone);
}

void Reader::OnFieldTZR() {
  zoneName(read_.hasLongZone, read_.longZone);
}

}  // namespace DataTypes
