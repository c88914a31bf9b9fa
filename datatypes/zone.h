#pragma once

#include <array>
#include <memory>
#include <string>

namespace DataTypes {

// A time zone by name. Zones are cached per thread, so that a conversion neither makes one nor
// takes a lock; one thread only uses an object.
class Zone {
 public:
  // Never fails: an unknown name gives the zone that takes its place. Throws only when memory runs
  // out.
  explicit Zone(const char* name);
  ~Zone();
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;

  const std::string& name() const { return name_; }

  // Whether the zone is known under exactly its name.
  bool isKnown() const { return isKnown_; }

  // The identifier that the zone itself reports.
  const std::string& identifier() const { return identifier_; }

  // The offset from UTC without daylight saving, in milliseconds.
  long rawOffsetMillis() const;

  // What daylight saving adds when it is in effect, in milliseconds.
  long daylightSavingsMillis() const;

  // Whether daylight saving is in effect at an instant in milliseconds since the epoch. Sets
  // `failed` when that cannot be told.
  bool isDaylightTime(long utcMillis, bool& failed) const;

  // What the wall clock shows more than UTC at an instant in milliseconds, in milliseconds. Sets
  // `failed` when daylight saving cannot be told.
  long offsetMillis(long utcMillis, bool& failed) const;

  // Wall-clock microseconds of an instant in milliseconds, or the nearest that fit 64 bits;
  // `failed` is set when they do not.
  long wallClockMicros(long utcMillis, bool& failed) const;

  // The long or short display name, for standard or daylight time, in the default locale of the
  // time it was first asked for. Throws only when memory runs out.
  const std::string& displayName(bool isDaylight, bool isLong) const;

 private:
  struct Icu;

  // A stretch of time that daylight saving changes in at most once.
  struct Season {
    bool isKnown = false;
    bool isDaylightBefore = false;
    bool isDaylightAfter = false;
    long transition = 0;  // milliseconds
  };

  void refreshOffsets() const;
  bool askDaylightTime(long utcMillis, bool& failed) const;
  bool readSeason(long begin, Season& season) const;

  std::unique_ptr<Icu> icu_;
  std::string name_;
  std::string identifier_;
  bool isKnown_ = false;
  mutable long offsetsSince_ = -60;  // the second of the clock at which their minute began
  mutable long rawOffsetMillis_ = 0;
  mutable long daylightSavingsMillis_ = 0;
  mutable std::unique_ptr<Season[]> seasons_;  // from 1970 on, filled when they are asked for
  mutable std::array<std::string, 4> displayNames_;
};

// This thread's zone of a name; null means UTC. Null only when memory runs out. The object stays
// valid until the thread has asked for several dozen other zones.
const Zone* findZone(const char* name);

// toTimeZone as it is defined, with zones made for the one call and asked directly.
bool toTimeZonePlain(long micros, const char* fromZone, const char* toZone, long& out);

}  // namespace DataTypes
