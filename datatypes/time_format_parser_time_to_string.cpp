#include "datatypes/time_format_parser_time_to_string.h"

#include "datatypes/calendar.h"
#include "datatypes/digits.h"
#include "datatypes/zone.h"

namespace DataTypes {
namespace {

constexpr long kMicrosPerSecond = 1000000;
constexpr long kMicrosPerMilli = 1000;

}  // namespace

bool TimeFormatParser_TimeToString::prepare() {
  const long part = value_ % unitsPerSecond_;
  const long microsPerUnit = kMicrosPerSecond / unitsPerSecond_;
  seconds_ = (value_ - part) / unitsPerSecond_;
  fractionMicros_ = static_cast<int>(part * microsPerUnit);
  long micros = 0;
  if (__builtin_mul_overflow(seconds_, kMicrosPerSecond, &micros) ||
      __builtin_mul_overflow(value_, microsPerUnit, &valueMicros_))
    return false;
  bool failed = false;  // the display does not depend on it
  const long shifted =
      zone_ != nullptr ? zone_->wallClockMicros(micros / kMicrosPerMilli, failed) : micros;
  shiftedSeconds_ = shifted / kMicrosPerSecond;
  return breakDownUtc(shiftedSeconds_, time_);
}

void TimeFormatParser_TimeToString::flush() {
  out_.append(buffer_, bufferUsed_);
  bufferUsed_ = 0;
}

void TimeFormatParser_TimeToString::text(std::string_view characters) {
  flush();
  out_.append(characters);
}

void TimeFormatParser_TimeToString::number(long value, int width) {
  char* const room = reserve(kMaxNumberText);
  const std::size_t length = printPadded(value, isFillMode() ? 0 : width, room);
  bufferUsed_ -= kMaxNumberText - length;
}

void TimeFormatParser_TimeToString::name(const PictureName& picture, unsigned width) {
  if (!isFillMode())
    for (unsigned length = picture.length; length < width; ++length) OnChar(' ');
  text({picture.text, picture.length});
}

void TimeFormatParser_TimeToString::fraction(long value, int width) {
  char* const room = reserve(kMaxNumberText);
  std::size_t length = printPadded(value, width, room);
  if (isFillMode())
    while (length > 1 && room[length - 1] == '0') --length;
  bufferUsed_ -= kMaxNumberText - length;
}

void TimeFormatParser_TimeToString::OnFieldAM(Case letterCase) {
  static constexpr const char* kMarkers[3][2] = {{"Am", "Pm"}, {"AM", "PM"}, {"am", "pm"}};
  text(kMarkers[letterCase][time_.tm_hour < 12 ? 0 : 1]);
}

void TimeFormatParser_TimeToString::OnFieldDY(Case letterCase) {
  name(kShortWeekdayNames[letterCase][time_.tm_wday], 3);
}

void TimeFormatParser_TimeToString::OnFieldMON(Case letterCase) {
  name(kShortMonthNames[letterCase][time_.tm_mon], 0);
}

void TimeFormatParser_TimeToString::OnFieldHH12() {
  const int hour = time_.tm_hour % 12;
  number(hour == 0 ? 12 : hour, 2);
}

void TimeFormatParser_TimeToString::OnFieldMS() {
  number(shiftedSeconds_ * 1000 + fractionMicros_ / 1000, 0);
  isFractionInMillis_ = true;
}

void TimeFormatParser_TimeToString::OnFieldFF() {
  if (isFractionInMillis_)
    fraction(fractionMicros_ / 1000, 3);
  else
    fraction(fractionMicros_, 6);
}

void TimeFormatParser_TimeToString::OnFieldFFn(char digit) {
  // What turns microseconds into one to nine digits of a second.
  static constexpr int kDivisors[] = {100000, 10000, 1000, 100, 10, 1, 1, 1, 1};
  static constexpr int kFactors[] = {1, 1, 1, 1, 1, 1, 10, 100, 1000};
  const int digits = digit - '0';
  fraction(long{fractionMicros_} / kDivisors[digits - 1] * kFactors[digits - 1], digits);
}

void TimeFormatParser_TimeToString::OnFieldSSSSS() {
  number((time_.tm_hour * 60L + time_.tm_min) * 60 + time_.tm_sec, 5);
}

bool TimeFormatParser_TimeToString::findZoneState(ZoneState& state) {
  constexpr long kMillisPerSecond = 1000;
  const Zone* zone = zone_ != nullptr ? zone_ : findZone(nullptr);
  if (zone == nullptr) {
    refuse();
    return false;
  }
  bool failed = false;
  const bool isDaylight = zone->isDaylightTime(seconds_ * kMillisPerSecond, failed);
  const long offset = zone->rawOffsetMillis() + (isDaylight ? zone->daylightSavingsMillis() : 0);
  state = {zone, isDaylight, offset / kMillisPerSecond};
  return true;
}

void TimeFormatParser_TimeToString::OnFieldTZD() {
  ZoneState state{};
  if (findZoneState(state)) text(state.zone->displayName(state.isDaylight, false));
}

void TimeFormatParser_TimeToString::OnFieldTZR() {
  ZoneState state{};
  if (findZoneState(state)) text(state.zone->displayName(state.isDaylight, true));
}

void TimeFormatParser_TimeToString::OnFieldTZH() {
  ZoneState state{};
  if (!findZoneState(state)) return;
  // The sign is the offset's, so that half an hour west of UTC is not shown as east of it.
  if (state.offsetSeconds < 0) OnChar('-');
  const long hours = state.offsetSeconds / 3600;
  number(hours < 0 ? -hours : hours, 2);
}

void TimeFormatParser_TimeToString::OnFieldTZM() {
  ZoneState state{};
  if (!findZoneState(state)) return;
  const long minutes = state.offsetSeconds / 60 % 60;
  number(minutes < 0 ? -minutes : minutes, 2);
}

}  // namespace DataTypes
