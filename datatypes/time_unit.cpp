#include "datatypes/time_unit.h"

#include <array>
#include <climits>
#include <cstddef>
#include <new>
#include <string_view>

#include "host/intl.h"

namespace DataTypes {
namespace {

struct UnitRow {
  TimeUnit unit;
  const char* name;
  const char* shortName;
  const char* plural;
  long micros;
};

constexpr std::array<UnitRow, 6> kUnits = {{
    {MICROSECOND, "MICROSECOND", "MICROS", "MICROSECONDS", 1},
    {MILLISECOND, "MILLISECOND", "MILLIS", "MILLISECONDS", 1000},
    {SECOND, "SECOND", "SEC", "SECONDS", 1000000},
    {MINUTE, "MINUTE", "MIN", "MINUTES", 60000000},
    {HOUR, "HOUR", "HR", "HOURS", 3600000000},
    {DAY, "DAY", "DAY", "DAYS", 86400000000},
}};

constexpr std::array<long, kUnits.size()> kUnitMaxima = [] {
  std::array<long, kUnits.size()> maxima{};
  for (std::size_t i = 0; i < maxima.size(); ++i) maxima[i] = LONG_MAX / kUnits[i].micros;
  return maxima;
}();

std::size_t indexOf(TimeUnit unit) {
  return static_cast<std::size_t>(unit - MICROSECOND);
}

const UnitRow* unitRow(TimeUnit unit) {
  return unit >= MICROSECOND && unit <= DAY ? &kUnits[indexOf(unit)] : nullptr;
}

std::string toText(long number) {
  char text[50];
  KORVEX::Zel::intl_snprintf(text, sizeof text, "%lld", static_cast<long long>(number));
  return text;  // at most 20 characters
}

}  // namespace

int getSeconds(TimeUnit unit, int count) {
  const UnitRow* row = unitRow(unit);
  if (row == nullptr || count < 0) return -1;
  constexpr long kMicrosPerSecond = 1000000;
  if (row->micros < kMicrosPerSecond) {
    // An amount below a second is refused, not rounded to 0.
    const long seconds = count / (kMicrosPerSecond / row->micros);
    return seconds > 0 ? static_cast<int>(seconds) : -1;
  }
  const long seconds = count * (row->micros / kMicrosPerSecond);
  return seconds <= INT_MAX ? static_cast<int>(seconds) : -1;
}

bool getMicroSeconds(TimeUnit unit, long count, long& out) {
  const UnitRow* row = unitRow(unit);
  if (row == nullptr) return false;
  // Unsigned, so that the most negative count has a magnitude.
  const unsigned long magnitude =
      count < 0 ? 0UL - static_cast<unsigned long>(count) : static_cast<unsigned long>(count);
  const auto limit = static_cast<unsigned long>(getTimeUnitMax(unit));
  if (unit != MICROSECOND && magnitude > limit) return false;
  const unsigned long micros = magnitude * static_cast<unsigned long>(row->micros);
  out = static_cast<long>(count < 0 ? 0UL - micros : micros);
  return true;
}

std::string getTimeUnitStr(TimeUnit unit) {
  const UnitRow* row = unitRow(unit);
  return row != nullptr ? row->name : "UNKNOWN";  // short enough to need no storage
}

long getTimeUnitMax(TimeUnit unit) {
  return unitRow(unit) != nullptr ? kUnitMaxima[indexOf(unit)] : 0;
}

std::string getTimeUnitMaxStr(TimeUnit unit) {
  try {
    return toText(getTimeUnitMax(unit));
  } catch (const std::bad_alloc&) {
    return {};
  }
}

std::string getTimeUnitMinStr(TimeUnit unit) {
  try {
    return toText(-getTimeUnitMax(unit));
  } catch (const std::bad_alloc&) {
    return {};
  }
}

TimeUnit getTimeUnit(const char* text) {
  if (text == nullptr) return NONE;
  const std::string_view name = text;
  for (const UnitRow& row : kUnits)
    if (name == row.shortName || name == row.name || name == row.plural) return row.unit;
  return INVALID;
}

}  // namespace DataTypes
