#pragma once

#include <ctime>
#include <string>
#include <string_view>

#include "datatypes/time_format_parser.h"

namespace DataTypes {

class Zone;

// Prints a timestamp by a picture. Handlers append to the caller's string and may throw when memory
// runs out.
class TimeFormatParser_TimeToString : public TimeFormatParser {
 public:
  // Milliseconds since the epoch; a null zone means UTC. `zone` and `out` must outlive the parser.
  TimeFormatParser_TimeToString(long value, const Zone* zone, std::string& out)
      : TimeFormatParser_TimeToString(value, 1000, zone, out) {}

  // Shifts the value to the zone and breaks it down. Returns false when it is too far from 1970 for
  // 64-bit microseconds.
  bool prepare();

  bool IsDone() override { return true; }
  void OnChar(char c) override { *reserve(1) = c; }
  void OnFieldAM(Case letterCase) override;
  void OnFieldPM(Case letterCase) override { OnFieldAM(letterCase); }
  void OnFieldD() override { number(time_.tm_wday + 1, 1); }
  void OnFieldDD() override { number(time_.tm_mday, 2); }
  void OnFieldDDD() override { number(time_.tm_yday + 1, 3); }
  void OnFieldDAY(Case letterCase) override { name(kWeekdayNames[letterCase][time_.tm_wday], 0); }
  void OnFieldDY(Case letterCase) override;
  void OnFieldHH() override { OnFieldHH12(); }
  void OnFieldHH12() override;
  void OnFieldHH24() override { number(time_.tm_hour, 2); }
  void OnFieldMI() override { number(time_.tm_min, 2); }
  void OnFieldMIC() override { number(valueMicros_, 16); }
  void OnFieldMM() override { number(time_.tm_mon + 1, 2); }
  void OnFieldMON(Case letterCase) override;
  void OnFieldMONTH(Case letterCase) override { name(kMonthNames[letterCase][time_.tm_mon], 9); }
  void OnFieldMS() override;
  void OnFieldRM(Case letterCase) override { name(kRomanMonthNames[letterCase][time_.tm_mon], 0); }
  void OnFieldQ() override { number(time_.tm_mon / 3 + 1, 1); }
  void OnFieldSS() override { number(time_.tm_sec, 2); }
  void OnFieldSE() override { number(shiftedSeconds_, 0); }
  void OnFieldFF() override;
  void OnFieldFFn(char digit) override;
  void OnFieldSSSSS() override;
  void OnFieldTZD() override;
  void OnFieldTZH() override;
  void OnFieldTZM() override;
  void OnFieldTZR() override;
  void OnFieldW() override { number((time_.tm_mday - 1) / 7 + 1, 1); }
  void OnFieldWW() override { number(time_.tm_yday / 7 + 1, 2); }
  void OnFieldY() override { number(year() % 10, 1); }
  void OnFieldYY() override { number(year() % 100, 2); }
  void OnFieldYYY() override { number(year() % 1000, 3); }
  void OnFieldYYYY() override { number(year(), 4); }
  void OnEndOfParse() override { flush(); }

 protected:
  TimeFormatParser_TimeToString(long value, long unitsPerSecond, const Zone* zone, std::string& out)
      : value_(value), unitsPerSecond_(unitsPerSecond), zone_(zone), out_(out) {}

 private:
  // The zone at the value's instant.
  struct ZoneState {
    const Zone* zone;
    bool isDaylight;
    long offsetSeconds;
  };

  static constexpr std::size_t kBufferBytes = 128;

  // The year as the printed 16-bit number.
  short year() const { return static_cast<short>(time_.tm_year + 1900L); }

  // Room for `count` more characters, which become part of the text.
  char* reserve(std::size_t count) {
    if (bufferUsed_ + count > kBufferBytes) flush();
    char* const room = buffer_ + bufferUsed_;
    bufferUsed_ += count;
    return room;
  }
  // Moves what has been printed to the caller's string.
  void flush();
  void text(std::string_view characters);
  // Appends a number padded with zeros to `width`, unless fill mode is on.
  void number(long value, int width);
  // Appends a name right-aligned in `width` columns, unless fill mode is on.
  void name(const PictureName& text, unsigned width);
  // Appends the digits of a fraction; in fill mode without trailing zeros.
  void fraction(long value, int width);
  // Whether the zone's state could be told; refuses when not.
  bool findZoneState(ZoneState& state);

  long value_;
  long unitsPerSecond_;
  const Zone* zone_;
  std::string& out_;
  std::tm time_{};
  long seconds_ = 0;         // of the value, UTC
  long shiftedSeconds_ = 0;  // as the zone's clock shows them
  long valueMicros_ = 0;     // before the shift
  int fractionMicros_ = 0;   // negative for values before 1970
  bool isFractionInMillis_ = false;
  std::size_t bufferUsed_ = 0;
  char buffer_[kBufferBytes];
};

}  // namespace DataTypes
