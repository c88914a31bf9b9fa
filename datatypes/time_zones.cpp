#include "datatypes/time_zones.h"

#include <unicode/basictz.h>
#include <unicode/timezone.h>
#include <unicode/tztrans.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <ctime>
#include <exception>
#include <new>
#include <vector>

#include "datatypes/zone.h"

namespace DataTypes {
namespace {

constexpr const char* kUtc = "UTC";
constexpr long kMicrosPerMilli = 1000;

// Seasons are 2^32 milliseconds, 50 days, and reach from 1970 to 2100.
constexpr unsigned kSeasonShift = 32;
constexpr unsigned long kSeasons = 956;

std::unique_ptr<icu::TimeZone> createZone(const char* name) {
  return std::unique_ptr<icu::TimeZone>(
      icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
}

std::string toUtf8(const icu::UnicodeString& text) {
  std::string utf8;
  text.toUTF8String(utf8);
  return utf8;
}

std::string identifierOf(const icu::TimeZone& zone) {
  icu::UnicodeString identifier;
  return toUtf8(zone.getID(identifier));
}

bool isUtc(const char* name) {
  return name == nullptr || std::strcmp(name, kUtc) == 0;
}

// Milliseconds as microseconds, or the nearest that fits.
bool toMicros(long millis, long& micros) {
  if (!__builtin_mul_overflow(millis, kMicrosPerMilli, &micros)) return true;
  micros = millis < 0 ? LONG_MIN : LONG_MAX;
  return false;
}

}  // namespace

struct Zone::Icu {
  std::unique_ptr<icu::TimeZone> zone;
  const icu::BasicTimeZone* rules;  // the same zone, when it can tell its transitions
};

Zone::Zone(const char* name) : icu_(new Icu{createZone(name), nullptr}), name_(name) {
  if (icu_->zone == nullptr) throw std::bad_alloc();
  icu_->rules = dynamic_cast<const icu::BasicTimeZone*>(icu_->zone.get());
  identifier_ = identifierOf(*icu_->zone);
  isKnown_ = identifier_ == name_;
}

Zone::~Zone() = default;

// ICU's offsets are those of the present, which costs it a look at the clock and at its rules each
// time. Zones change on whole minutes.
void Zone::refreshOffsets() const {
  const long now = std::time(nullptr);  // no system call
  if (static_cast<unsigned long>(now - offsetsSince_) < 60) return;
  offsetsSince_ = now - now % 60;
  rawOffsetMillis_ = icu_->zone->getRawOffset();
  daylightSavingsMillis_ = icu_->zone->getDSTSavings();
}

long Zone::rawOffsetMillis() const {
  refreshOffsets();
  return rawOffsetMillis_;
}

long Zone::daylightSavingsMillis() const {
  refreshOffsets();
  return daylightSavingsMillis_;
}

bool Zone::askDaylightTime(long utcMillis, bool& failed) const {
  UErrorCode status = U_ZERO_ERROR;
  const bool isDaylight = icu_->zone->inDaylightTime(static_cast<UDate>(utcMillis), status) != 0;
  if (U_SUCCESS(status)) return isDaylight;
  failed = true;
  return false;
}

// Daylight time only changes at transitions, so two answers and the transition between them hold
// for a whole season. Times before 1970 or after 2100, and zones that change twice within a season,
// are asked for each time.
bool Zone::isDaylightTime(long utcMillis, bool& failed) const {
  const auto index = static_cast<unsigned long>(utcMillis) >> kSeasonShift;
  if (index < kSeasons && seasons_ == nullptr) seasons_.reset(new (std::nothrow) Season[kSeasons]);
  if (index >= kSeasons || seasons_ == nullptr) return askDaylightTime(utcMillis, failed);
  Season& season = seasons_[index];
  if (!season.isKnown && !readSeason(static_cast<long>(index << kSeasonShift), season))
    return askDaylightTime(utcMillis, failed);
  return utcMillis < season.transition ? season.isDaylightBefore : season.isDaylightAfter;
}

// Fills a season that begins at `begin`; false when it cannot be told by one transition.
bool Zone::readSeason(long begin, Season& season) const {
  if (icu_->rules == nullptr) return false;
  const auto end = static_cast<UDate>(begin + (1L << kSeasonShift));
  Season found;
  bool failed = false;
  icu::TimeZoneTransition transition;
  found.isDaylightBefore = askDaylightTime(begin, failed);
  found.isDaylightAfter = found.isDaylightBefore;
  if (icu_->rules->getNextTransition(static_cast<UDate>(begin), false, transition) &&
      transition.getTime() < end) {
    found.transition = static_cast<long>(transition.getTime());
    found.isDaylightAfter = askDaylightTime(found.transition, failed);
    if (icu_->rules->getNextTransition(transition.getTime(), false, transition) &&
        transition.getTime() < end)
      return false;
  }
  if (failed) return false;
  found.isKnown = true;
  season = found;
  return true;
}

long Zone::offsetMillis(long utcMillis, bool& failed) const {
  const bool isDaylight = isDaylightTime(utcMillis, failed);
  refreshOffsets();
  return rawOffsetMillis_ + (isDaylight ? daylightSavingsMillis_ : 0);
}

long Zone::wallClockMicros(long utcMillis, bool& failed) const {
  long micros = 0;
  if (!toMicros(utcMillis + offsetMillis(utcMillis, failed), micros)) failed = true;
  return micros;
}

const std::string& Zone::displayName(bool isDaylight, bool isLong) const {
  std::string& name = displayNames_[(isDaylight ? 2U : 0U) + (isLong ? 1U : 0U)];
  if (name.empty()) {
    icu::UnicodeString text;
    icu_->zone->getDisplayName(isDaylight, isLong ? icu::TimeZone::LONG : icu::TimeZone::SHORT,
                               text);
    name = toUtf8(text);
  }
  return name;
}

namespace {

// The first of the zones below, which most calls ask for. Beside them, since what has a destructor
// is checked for being made at each use.
constinit thread_local const Zone* lastZone = nullptr;

const Zone* findOtherZone(const char* name) {
  constexpr std::size_t kMaxZones = 64;
  // Most recently used first; the last one gives way.
  thread_local std::vector<std::unique_ptr<Zone>> zones;
  for (std::size_t i = 0; i < zones.size(); ++i) {
    if (zones[i]->name() != name) continue;
    if (i != 0)
      std::rotate(zones.begin(), zones.begin() + static_cast<long>(i),
                  zones.begin() + static_cast<long>(i) + 1);
    return zones.front().get();
  }
  try {
    auto zone = std::make_unique<Zone>(name);
    if (zones.size() == kMaxZones) zones.pop_back();
    zones.insert(zones.begin(), std::move(zone));
    return zones.front().get();
  } catch (const std::exception&) {
    return nullptr;
  }
}

}  // namespace

const Zone* findZone(const char* name) {
  if (name == nullptr) name = kUtc;
  if (lastZone == nullptr || std::strcmp(lastZone->name().c_str(), name) != 0)
    lastZone = findOtherZone(name);
  return lastZone;
}

bool isValidTimezone(const char* name) {
  if (name == nullptr || *name == '\0' || isUtc(name)) return true;
  const Zone* zone = findZone(name);
  return zone != nullptr && zone->isKnown();
}

bool toTimeZone(long micros, const char* fromZone, const char* toZone, long& out) {
  const long millis = micros / kMicrosPerMilli;
  // UTC has no offset and no daylight saving: the shift is the identity.
  if (isUtc(fromZone) && isUtc(toZone)) return toMicros(millis, out);
  const Zone* from = isUtc(fromZone) ? nullptr : findZone(fromZone);
  const Zone* to = findZone(toZone);
  if ((from == nullptr && !isUtc(fromZone)) || to == nullptr) {
    toMicros(millis, out);
    return false;
  }
  bool failed = !to->isKnown();
  long utc = millis;
  if (from != nullptr) {
    failed = failed || !from->isKnown();
    utc -= from->rawOffsetMillis();
    if (from->isDaylightTime(utc, failed)) utc -= from->daylightSavingsMillis();
  }
  out = to->wallClockMicros(utc, failed);
  return !failed;
}

bool toTimeZonePlain(long micros, const char* fromZone, const char* toZone, long& out) {
  const auto from = createZone(fromZone != nullptr ? fromZone : kUtc);
  const auto to = createZone(toZone != nullptr ? toZone : kUtc);
  bool isKnown = fromZone == nullptr || identifierOf(*from) == fromZone;
  isKnown = (toZone == nullptr || identifierOf(*to) == toZone) && isKnown;
  UErrorCode status = U_ZERO_ERROR;
  const long millis = micros / kMicrosPerMilli;
  long utc = millis - from->getRawOffset();
  if (from->inDaylightTime(static_cast<UDate>(utc), status)) utc -= from->getDSTSavings();
  if (to->inDaylightTime(static_cast<UDate>(utc), status)) utc += to->getDSTSavings();
  return toMicros(utc + to->getRawOffset(), out) && isKnown && U_SUCCESS(status);
}

}  // namespace DataTypes
