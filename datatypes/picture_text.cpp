#include "datatypes/picture_text.h"

#include <cstring>
#include <exception>

#include "datatypes/big_date_time_format_parser_time_to_string.h"
#include "datatypes/date_format_parser_date_to_string.h"
#include "datatypes/fixed_picture.h"
#include "datatypes/time_format_parser_time_from_string.h"
#include "datatypes/time_format_parser_time_to_string.h"
#include "datatypes/zone.h"

namespace DataTypes {
namespace {

constexpr long kSeconds = 1;
constexpr long kMillis = 1000;
constexpr long kMicros = 1000000;

// Prints by a picture that is made of fixed fields, where the value's year has four digits before
// and after the shift to the zone; false leaves the value to the printer. Fractions and remainders
// of such values are not negative, so that all fields are what the printer's are. May throw when
// memory runs out.
template <long UnitsPerSecond>
bool printFixed(long value, const char* text, const Zone* zone, std::string& out) {
  constexpr long kMicrosPerUnit = kMicros / UnitsPerSecond;
  if (value < 0 || value > kLastFixedMicros / kMicrosPerUnit) return false;
  const FixedPicture& picture = FixedPicture::of(text);
  if (!picture.isFixed()) return false;
  const long seconds = value / UnitsPerSecond;
  bool failed = false;  // the display does not depend on it
  const long millis = seconds * kMillis;
  const long shifted =
      zone == nullptr ? seconds : (millis + zone->offsetMillis(millis, failed)) / kMillis;
  const long micros = shifted * kMicros + value % UnitsPerSecond * kMicrosPerUnit;
  if (shifted < 0 || micros > kLastFixedMicros) return false;
  picture.print(micros, out);
  return true;
}

// Any picture, token by token. A function of its own, since its printer needs much of the stack.
template <class Printer>
[[gnu::noinline]] void printTokens(long value, const char* picture, const Zone* zone,
                                   std::string& out) {
  const std::size_t length = std::strlen(picture);
  out.reserve(length + 1);
  Printer printer(value, zone, out);
  if (!printer.prepare() || !printer.Parse(picture, length)) out.clear();
}

// Handlers throw only when memory runs out; nothing may leave the library.
template <class Printer, long UnitsPerSecond>
void print(long value, const char* picture, const char* zone, std::string& out) {
  out.clear();
  const bool isUtc =
      zone == nullptr || *zone == '\0' || (*zone == 'U' && std::strcmp(zone, "UTC") == 0);
  const Zone* known = isUtc ? nullptr : findZone(zone);
  if (picture == nullptr || (!isUtc && (known == nullptr || !known->isKnown()))) return;
  try {
    if (!printFixed<UnitsPerSecond>(value, picture, known, out))
      printTokens<Printer>(value, picture, known, out);
  } catch (const std::exception&) {
    out.clear();
  }
}

bool read(const char* text, const char* picture, long unitsPerSecond, long& out) {
  if (text == nullptr || picture == nullptr) return false;
  try {
    TimeFormatParser_TimeFromString reader(text);
    return reader.Parse(picture, std::strlen(picture)) &&
           reader.result().toInstant(unitsPerSecond, out);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

void TimestampToString(long value, const char* picture, const char* zone, std::string& out) {
  print<TimeFormatParser_TimeToString, kMillis>(value, picture, zone, out);
}

void DateToString(long value, const char* picture, const char* zone, std::string& out) {
  print<DateFormatParser_DateToString, kSeconds>(value, picture, zone, out);
}

void BigDateTimeToString(long value, const char* picture, const char* zone, std::string& out) {
  print<BigDateTimeFormatParser_TimeToString, kMicros>(value, picture, zone, out);
}

bool TimestampFromString(const char* text, const char* picture, long& out) {
  return read(text, picture, kMillis, out);
}

bool DateFromString(const char* text, const char* picture, long& out) {
  return read(text, picture, kSeconds, out);
}

bool TimeFromString(const char* text, const char* picture, long& out) {
  return read(text, picture, kSeconds, out);
}

bool BigDateTimeFromString(const char* text, const char* picture, long& out) {
  return read(text, picture, kMicros, out);
}

}  // namespace DataTypes
