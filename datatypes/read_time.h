#pragma once

#include <string>

namespace DataTypes {

// What a picture read from a text. Numbers are -1 while absent.
struct ReadTime {
  // The half of the day of a 12-hour clock.
  enum Marker { kNoMarker = 0, kAm = 1, kPm = 2 };

  int year = -1;
  int month = -1;  // 0 to 11
  int day = -1;
  int dayOfYear = -1;
  int marker = kNoMarker;
  int hour = -1;  // on the 12-hour clock, 1 to 12
  int minute = -1;
  int second = -1;
  int fractionMicros = -1;
  long seconds = 0;  // counts since the epoch
  long millis = 0;
  long micros = 0;
  bool hasSeconds = false;
  bool hasMillis = false;
  bool hasMicros = false;
  bool hasShortZone = false;  // TZD
  bool hasLongZone = false;   // TZR
  bool hasZoneHours = false;
  bool hasZoneMinutes = false;
  std::string shortZone;
  std::string longZone;
  int zoneOffsetSeconds = 0;

  // Sets hour and marker from an hour of 0 to 23.
  void setHour24(int hour24) {
    marker = hour24 < 12 ? kAm : kPm;
    hour = hour24 % 12 == 0 ? 12 : hour24 % 12;
  }

  bool hasTimeOfDay() const {
    return marker != kNoMarker || hour >= 0 || minute >= 0 || second >= 0;
  }

  bool hasField() const {
    return year >= 0 || month >= 0 || day >= 0 || dayOfYear >= 0 || hasTimeOfDay() ||
           fractionMicros >= 0;
  }

  // The instant in units of 1/unitsPerSecond since the epoch. Returns false when it does not fit 64
  // bits; `out` is left alone then. Changes the fields.
  bool toInstant(long unitsPerSecond, long& out);

 private:
  bool takeFieldsOf(long epochSeconds);
  bool takeCounts();
  bool shiftToNamedZone(long& seconds, long& micros) const;
};

}  // namespace DataTypes
