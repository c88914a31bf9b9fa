// The published figures of the value library, each as a ratio to the straightforward form in the
// same run, beside the libraries that do the same work. With a number as argument it instead counts
// differences between our text of that many random doubles and printf's.

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <bit>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "contest.h"
#include "datatypes/data_types.h"
#include "datatypes/decimal_text.h"
#include "datatypes/hex_codec.h"
#include "datatypes/instant_text.h"
#include "datatypes/number_text.h"
#include "datatypes/zone.h"

extern "C" {
#include <bid_conf.h>
#include <bid_functions.h>
}

namespace {

using namespace DataTypes;

constexpr std::size_t kBatch = 1024;
constexpr long kLast = 4102444800000;  // 2100, in milliseconds

std::mt19937_64 random64(1);

template <class Make>
auto batchOf(Make make) {
  std::vector<decltype(make())> values(kBatch);
  for (auto& value : values) value = make();
  return values;
}

template <class Values, class Work>
std::function<void()> forAll(const Values& values, Work work) {
  return [&values, work] {
    for (const auto& value : values) work(value);
  };
}

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

void printTimestampOurs(long value) {
  char out[64];
  DataValue cell;
  cell.int64 = value;
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

bool timestampContests() {
  const auto values = batchOf([] { return static_cast<long>(random64() % kLast); });
  bool isMet = run({"7",
                    "timestamp to text",
                    .045,
                    {{"gmtime_r + snprintf", forAll(values, printTimestampUsually)},
                     {"ours", forAll(values, printTimestampOurs)},
                     {"fmt", forAll(values, printTimestampFmt)}}});

  std::printf(
      "7   two threads against one                   target 1.0     ours %.3f  "
      "gmtime_r + snprintf %.3f  no memory at all %.3f\n",
      twoThreads(forAll(values, printTimestampOurs)),
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

bool doubleContests() {
  const auto values = batchOf([] {
    return std::ldexp(static_cast<double>(random64()), -static_cast<int>(40 + random64() % 30));
  });
  const bool isMet =
      run({"8",
           "double to \"%.6f\" text",
           .055,
           {{"snprintf", forAll(values,
                                [](double value) {
                                  char out[64];
                                  std::snprintf(out, sizeof out, "%.6f", value);
                                  keep(out);
                                })},
            {"ours", forAll(values,
                            [](double value) {
                              char out[64];
                              convertDoubleToString(value, out, sizeof out);
                              keep(out);
                            })},
            {"to_chars", forAll(values, [](double value) {
               char out[64];
               *std::to_chars(out, out + 63, value, std::chars_format::fixed, 6).ptr = '\0';
               keep(out);
             })}}});
  const auto texts =
      batchOf([] { return std::to_string(static_cast<double>(random64() >> 20) / 1e6); });
  const auto read = [](auto parse) {
    return [parse](const std::string& text) {
      double value = 0;
      parse(text.c_str(), value);
      keep(&value);
    };
  };
  run({"",
       "double from text",
       0,
       {{"strtod", forAll(texts, read(parseDoublePlain))},
        {"ours", forAll(texts, read(parseDouble))}}});
  return isMet;
}

// A coefficient of 34 digits at scale 4.
Uint128 coefficient() {
  return makeUint128(random64(), random64()) % kPowersOfTen[33];
}

bool decimalContests() {
  constexpr int kScale = 4;
  const auto values = batchOf(coefficient);
  const auto bids = [&values] {
    std::vector<::BID_UINT128> result;
    for (Uint128 value : values) {
      unsigned long long high = highWord(value);
      unsigned long long low = lowWord(value);
      DataTypes::BID_UINT128 bid;
      toBID128(high, low, kScale, bid);
      result.push_back(std::bit_cast<::BID_UINT128>(bid));
    }
    return result;
  }();
  const auto print = [](auto function) {
    return [function](Uint128 value) {
      char out[kMaxDecimalText];
      function(value, kScale, out);
      keep(out);
    };
  };
  bool isMet = run({"9",
                    "decimal(34,4) to text",
                    .31,
                    {{"four digits a division", forAll(values, print(printDecimalPlain))},
                     {"ours", forAll(values, print(printDecimal))},
                     {"Intel BID", forAll(bids, [](const ::BID_UINT128& value) {
                        char out[64];
                        _IDEC_flags flags = 0;
                        bid128_to_string(out, value, &flags);
                        keep(out);
                      })}}});

  std::vector<std::string> texts;
  for (Uint128 value : values) {
    char out[kMaxDecimalText];
    texts.emplace_back(out, printDecimal(value, kScale, out));
  }
  const auto read = [](auto parse) {
    return [parse](const std::string& text) {
      Uint128 value = 0;
      parse(text.c_str(), kScale, value);
      keep(&value);
    };
  };
  isMet &= run({"9",
                "decimal(34,4) from text",
                .40,
                {{"digit by digit", forAll(texts, read(parseDecimalPlain))},
                 {"ours", forAll(texts, read(parseDecimal))},
                 {"Intel BID", forAll(texts, [](const std::string& text) {
                    _IDEC_flags flags = 0;
                    const ::BID_UINT128 value =
                        bid128_from_string(const_cast<char*>(text.c_str()), 0, &flags);
                    keep(&value);
                  })}}});
  return isMet;
}

bool moneyContests() {
  constexpr unsigned kDecimals = 4;
  constexpr long kFactor = 10000;
  const auto values =
      batchOf([] { return static_cast<long>(random64()) >> (8 + random64() % 30); });
  std::vector<std::string> texts;
  for (const long value : values) {
    char out[64];
    printMoney(value, kDecimals, kFactor, out, sizeof out);
    texts.emplace_back(out);
  }
  const auto read = [](auto parse) {
    return [parse](const std::string& text) {
      long value = 0;
      parse(text.c_str(), kDecimals, kFactor, value);
      keep(&value);
    };
  };
  const bool isMet = run({"9",
                          "money from text",
                          .34,
                          {{"strtoll", forAll(texts, read(parseMoneyPlain))},
                           {"ours", forAll(texts, read(parseMoney))}}});
  const auto print = [](auto function) {
    return [function](long value) {
      char out[64];
      function(value, kDecimals, kFactor, out, sizeof out);
      keep(out);
    };
  };
  run({"",
       "money to text",
       0,
       {{"snprintf", forAll(values, print(printMoneyPlain))},
        {"ours", forAll(values, print(printMoney))}}});
  return isMet;
}

bool integerContests() {
  const auto values = batchOf([] { return static_cast<long>(random64()) >> (random64() % 60); });
  run({"",
       "64-bit integer to text",
       0,
       {{"snprintf", forAll(values,
                            [](long value) {
                              char out[32];
                              std::snprintf(out, sizeof out, "%ld", value);
                              keep(out);
                            })},
        {"ours", forAll(values,
                        [](long value) {
                          char out[32];
                          DataValue cell;
                          cell.int64 = value;
                          convertToString(kLong, false, false, cell, out, sizeof out);
                          keep(out);
                        })},
        {"to_chars", forAll(values,
                            [](long value) {
                              char out[32];
                              *std::to_chars(out, out + 31, value).ptr = '\0';
                              keep(out);
                            })},
        {"fmt", forAll(values, [](long value) {
           const fmt::format_int out(value);
           keep(out.c_str());
         })}}});
  std::vector<std::string> texts;
  for (const long value : values) texts.push_back(std::to_string(value));
  const auto read = [](auto parse) {
    return [parse](const std::string& text) {
      long value = 0;
      parse(text.c_str(), value);
      keep(&value);
    };
  };
  run({"",
       "64-bit integer from text",
       0,
       {{"strtoll", forAll(texts, read(parseIntegerPlain))},
        {"ours", forAll(texts, read(parseInteger))}}});
  return true;
}

bool pictureContests() {
  constexpr const char* kPicture = "YYYY-MM-DD HH24:MI:SS.FF3";
  constexpr const char* kZone = "Europe/Paris";
  const auto values = batchOf([] { return static_cast<long>(random64() % kLast); });
  // What the library does, with each of its zones made for the one call.
  const auto withNewZones = [](long value) {
    std::string out;
    long shifted = 0;
    if (Zone(kZone).isKnown() && toTimeZonePlain(value / 1000 * 1000000, "UTC", kZone, shifted))
      TimestampToString(shifted / 1000 + value % 1000, kPicture, nullptr, out);
    keep(out.data());
  };
  const auto ours = [](const char* zone) {
    return [zone](long value) {
      std::string out;
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
                        icu::UnicodeString out;
                        format->format(static_cast<UDate>(value), out);
                        keep(out.getBuffer());
                      })}}});
  return isMet;
}

// Decoding by a table of nibbles, without a check for room.
bool decodeByTable(const char* text, unsigned char* out) {
  static const auto table = [] {
    std::array<signed char, 256> nibbles{};
    nibbles.fill(-1);
    for (int i = 0; i < 10; ++i)
      nibbles[static_cast<std::size_t>('0' + i)] = static_cast<signed char>(i);
    for (int i = 0; i < 6; ++i)
      nibbles[static_cast<std::size_t>('A' + i)] = nibbles[static_cast<std::size_t>('a' + i)] =
          static_cast<signed char>(10 + i);
    return nibbles;
  }();
  for (; *text != '\0'; text += 2) {
    const int high = table[static_cast<unsigned char>(text[0])];
    const int low = table[static_cast<unsigned char>(text[1])];
    if (high < 0 || low < 0) return false;
    *out++ = static_cast<unsigned char>(high << 4 | low);
  }
  return true;
}

bool hexContests() {
  constexpr std::size_t kBytes = 1024;
  static std::array<unsigned char, kBytes> data;
  for (auto& byte : data) byte = static_cast<unsigned char>(random64());
  static std::array<char, kBytes * 2 + 1> text;
  encodeHex(data.data(), kBytes, text.data());
  static std::array<unsigned char, kBytes> out;
  bool isMet =
      run({"11",
           "hex of 1 KB, encode",
           .075,
           {{"nibble table",
             [] {
               encodeHexPlain(data.data(), kBytes, text.data());
               keep(text.data());
             }},
            {"ours", [] {
               const char* message = nullptr;
               convertBinaryToHexString(text.size(), data.data(), kBytes, text.data(), message);
               keep(text.data());
             }}}});
  isMet &= run({"11",
                "hex of 1 KB, decode",
                .08,
                {{"nibble table",
                  [] {
                    decodeByTable(text.data(), out.data());
                    keep(out.data());
                  }},
                 {"ours", [] {
                    const char* message = nullptr;
                    convertBinaryFromHexString(text.data(), out.data(), kBytes, message);
                    keep(out.data());
                  }}}});
  return isMet;
}

// Random doubles of every magnitude that is not left to printf: any bits of a number below 2^63,
// and decimal numbers, whose digits lie close to ties.
int countDifferences(long count) {
  long differences = 0;
  for (long i = 0; i < count; ++i) {
    const auto number = static_cast<double>(static_cast<long>(random64()));
    const double value = i % 2 == 0
                             ? std::ldexp(number, -static_cast<int>(random64() % 100))
                             : std::trunc(std::ldexp(number, -(static_cast<int>(i) & 31))) / 1e7;
    char ours[400];
    char plain[400];
    printDouble(value, ours, sizeof ours);
    printDoublePlain(value, plain, sizeof plain);
    if (std::strcmp(ours, plain) != 0) ++differences;
  }
  std::printf("8   %ld differences in %ld doubles\n", differences, count);
  return differences == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) return countDifferences(std::strtol(argv[1], nullptr, 10));
  int missed = 0;
  for (const auto contest : {timestampContests, doubleContests, decimalContests, moneyContests,
                             integerContests, pictureContests, hexContests})
    missed += contest() ? 0 : 1;
  std::printf(missed == 0 ? "all targets met\n" : "targets missed in %d groups\n", missed);
  return EXIT_SUCCESS;
}
