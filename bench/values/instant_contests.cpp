#include <fmt/chrono.h>
#include <fmt/format.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "contest.h"
#include "contests.h"
#include "datatypes/data_types.h"
#include "datatypes/instant_text.h"
#include "datatypes/zone.h"
#include "random_batch.h"

using namespace DataTypes;

namespace {

// The usual way: break down, print.
void printTimestampUsually(long value) {
  const std::time_t seconds = value / 1000;
  std::tm t{};
  gmtime_r(&seconds, &t);
  char out[64];
  std::snprintf(out, sizeof out, "%04d-%02d-%02d %02d:%02d:%02d.%03d", t.tm_year + 1900,
                t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec,
                static_cast<int>(value % 1000));
  keep(out);
}

// From a cell, as values are kept: what fills it is not a part of this.
void printTimestampOurs(DataValue& cell) {
  char out[64];
  convertToString(kTimestamp, false, false, cell, out, sizeof out);
  keep(out);
}

void printTimestampFmt(long value) {
  char out[64];
  const auto t = fmt::gmtime(value / 1000);
  *fmt::format_to(out, "{:%Y-%m-%d %H:%M:%S}.{:03}", t, value % 1000) = '\0';
  keep(out);
}

// What the time of some work grows to when another thread does the same.
double twoThreads(const std::function<void()>& work) {
  if (countsInsteadOfTiming()) return 1;
  const auto many = [&work] {
    for (int i = 0; i < 200; ++i) work();
  };
  const double alone = medianNanoseconds(many);
  const double together = medianNanoseconds([&many] {
    std::thread other(many);
    many();
    other.join();
  });
  return together / alone;
}

}  // namespace

bool timestampContests() {
  const auto values = batchOf([] { return static_cast<long>(random64() % kLast); });
  std::vector<DataValue> cells;
  for (const long value : values) cells.emplace_back().int64 = value;
  bool isMet = run({"7",
                    "timestamp to text",
                    .045,
                    {{"gmtime_r + snprintf", forAll(values, printTimestampUsually)},
                     {"ours", forAll(cells, printTimestampOurs)},
                     {"fmt", forAll(values, printTimestampFmt)}}});

  std::printf(
      "7   two threads against one                   target 1.0     ours %.3f  "
      "gmtime_r + snprintf %.3f  no memory at all %.3f\n",
      twoThreads(forAll(cells, printTimestampOurs)),
      twoThreads(forAll(values, printTimestampUsually)), twoThreads([] {
        for (volatile int i = 0; i < 20000;) i = i + 1;
      }));

  const auto texts = batchOf([] {
    char out[64];
    std::snprintf(out, sizeof out, "2%03d-%02d-%02dT%02d:%02d:%02d.%03d",
                  static_cast<int>(random64() % 100), static_cast<int>(random64() % 12 + 1),
                  static_cast<int>(random64() % 28 + 1), static_cast<int>(random64() % 24),
                  static_cast<int>(random64() % 60), static_cast<int>(random64() % 60),
                  static_cast<int>(random64() % 1000));
    return std::string(out);
  });
  const auto read = [](auto parse) {
    return [parse](const std::string& text) {
      long value = 0;
      parse(text.c_str(), kTimestampUnit, "%Y-%m-%dT%H:%M:%S", value);
      keep(&value);
    };
  };
  run({"",
       "timestamp from text",
       0,
       {{"split, strptime, tm2sec", forAll(texts, read(parseInstantPlain))},
        {"ours", forAll(texts, read(parseInstant))}}});
  return isMet;
}

bool pictureContests() {
  static constexpr const char* kPicture = "YYYY-MM-DD HH24:MI:SS.FF3";
  constexpr const char* kZone = "Europe/Paris";
  const auto values = batchOf([] { return static_cast<long>(random64() % kLast); });
  // The caller's text, which all of them are given and keep the memory of.
  static std::string out;
  // What the library does, with each of its zones made for the one call.
  const auto withNewZones = [](long value) {
    long shifted = 0;
    if (Zone(kZone).isKnown() && toTimeZonePlain(value / 1000 * 1000000, "UTC", kZone, shifted))
      TimestampToString(shifted / 1000 + value % 1000, kPicture, nullptr, out);
    keep(out.data());
  };
  const auto ours = [](const char* zone) {
    return [zone](long value) {
      TimestampToString(value, kPicture, zone, out);
      keep(out.data());
    };
  };
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_shared<icu::SimpleDateFormat>(
      icu::UnicodeString("yyyy-MM-dd HH:mm:ss.SSS"), status);
  format->adoptTimeZone(icu::TimeZone::createTimeZone(kZone));
  bool isMet = run({"10",
                    "picture print with a named zone",
                    .01,
                    {{"zones made each call", forAll(values, withNewZones)},
                     {"ours", forAll(values, ours(kZone))},
                     {"ours in UTC", forAll(values, ours(nullptr))},
                     {"ICU, formatter kept", forAll(values, [format](long value) {
                        static icu::UnicodeString text;
                        text.remove();
                        format->format(static_cast<UDate>(value), text);
                        keep(text.getBuffer());
                      })}}});
  return isMet;
}
