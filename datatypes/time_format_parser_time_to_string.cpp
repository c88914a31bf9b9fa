#include "datatypes/time_format_parser_time_to_string.h"

#include "datatypes/calendar.h"
#include "datatypes/digits.h"
#include "datatypes/time_zones.h"
#include "datatypes/zone.h"

namespace DataTypes {
namespace {

constexpr long kMicrosPerSecond = 1000000;

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
  const char* zone = zone_ != nullptr && *zone_ != '\0' ? zone_ : nullptr;
  long shifted = 0;
  toTimeZone(micros, "UTC", zone, shifted);
  shiftedSeconds_ = shifted / kMicrosPerSecond;
  return breakDownUtc(shiftedSeconds_, time_);
}

void TimeFormatParser_TimeToString::number(long value, int width) {
  char text[kMaxNumberText];
  out_.append(text, printPadded(value, isFillMode() ? 0 : width, text));
}

void TimeFormatParser_TimeToString::name(const PictureName& text, unsigned width) {
  if (!isFillMode() && text.length < width) out_.append(width - text.length, ' ');
  out_.append(text.text, text.length);
}

void TimeFormatParser_TimeToString::fraction(long value, int width) {
  char text[kMaxNumberText];
  std::size_t length = printPadded(value, width, text);
  if (isFillMode())
    while (length > 1 && text[length - 1] == '0') --length;
  out_.append(text, length);
}

void TimeFormatParser_TimeToString::OnFieldAM(Case letterCase) {
  static constexpr const char* kMarkers[3][2] = {{"Am", "Pm"}, {"AM", "PM"}, {"am", "pm"}};
  out_ += kMarkers[letterCase][time_.tm_hour < 12 ? 0 : 1];
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
  constexpr int kMicrosDigits = 6;
  const int digits = digit - '0';
  long value = fractionMicros_;
  for (int i = digits; i < kMicrosDigits; ++i) value /= 10;
  for (int i = kMicrosDigits; i < digits; ++i) value *= 10;
  fraction(value, digits);
}

void TimeFormatParser_TimeToString::OnFieldSSSSS() {
  number((time_.tm_hour * 60L + time_.tm_min) * 60 + time_.tm_sec, 5);
}

bool TimeFormatParser_TimeToString::findZoneState(ZoneState& state) {
  constexpr long kMillisPerSecond = 1000;
  const Zone* zone = findZone(zone_ != nullptr && *zone_ != '\0' ? zone_ : nullptr);
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
  if (findZoneState(state)) out_ += state.zone->displayName(state.isDaylight, false);
}

void TimeFormatParser_TimeToString::OnFieldTZR() {
  ZoneState state{};
  if (findZoneState(state)) out_ += state.zone->displayName(state.isDaylight, true);
}

void TimeFormatParser_TimeToString::OnFieldTZH() {
  ZoneState state{};
  if (!findZoneState(state)) return;
  // The sign is the offset's, so that half an hour west of UTC is not shown as east of it.
  if (state.offsetSeconds < 0) out_ += '-';
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
