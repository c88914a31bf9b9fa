// Each fast form against the plain form beside it: the same bytes and the same results on boundary
// values and on random ones.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "datatypes/calendar.h"
#include "datatypes/decimal_text.h"
#include "datatypes/digits.h"
#include "datatypes/hex_codec.h"
#include "datatypes/instant_text.h"
#include "datatypes/number_text.h"
#include "datatypes/picture_text.h"
#include "datatypes/settings.h"
#include "datatypes/short_number.h"
#include "datatypes/time_format_parser_time_to_string.h"
#include "datatypes/time_text.h"
#include "datatypes/type_code.h"
#include "datatypes/zone.h"
#include "scoped_time_zone.h"

namespace DataTypes {
namespace {

// Optimised builds take millions; under sanitizers they would take minutes.
#ifdef ZEL_ROUNDS
constexpr int kRounds = ZEL_ROUNDS;
#elif defined __SANITIZE_ADDRESS__
constexpr int kRounds = 300000;
#else
constexpr int kRounds = 4000000;
#endif

class FastPaths : public testing::Test {
 protected:
  std::uint64_t next() { return random_(); }
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  // Any length of number.
  long number() { return static_cast<long>(random_()) >> (random_() % 64); }

  // A text of the alphabet, or a valid text with one character changed, cut or added.
  std::string mutate(std::string text, const std::string& alphabet) {
    switch (below(8)) {
      case 0:
        text.insert(static_cast<std::size_t>(below(static_cast<int>(text.size()) + 1)), 1,
                    character(alphabet));
        break;
      case 1:
        if (!text.empty()) text[position(text)] = character(alphabet);
        break;
      case 2:
        if (!text.empty()) text.erase(position(text), 1);
        break;
      default:
        break;
    }
    return text;
  }
  std::string digits(int most) {
    std::string text;
    for (int count = below(most + 1); count > 0; --count) text += character("0123456789");
    return text;
  }
  char character(const std::string& alphabet) { return alphabet[position(alphabet)]; }

 private:
  std::size_t position(const std::string& text) { return random_() % text.size(); }
  std::mt19937_64 random_{99};
};

void expectSamePadded(long value, int width) {
  char fast[kMaxNumberText];
  char plain[kMaxNumberText];
  const std::size_t length = printPaddedPlain(value, width, plain);
  ASSERT_EQ(std::string(fast, printPadded(value, width, fast)), std::string(plain, length))
      << value << " width " << width;
}

TEST_F(FastPaths, PaddedNumbers) {
  for (const long value : {0L, 9L, 10L, 99L, 100L, 9999L, 10000L, -1L, -9L, -10L, -99L, LONG_MAX,
                           LONG_MIN, 999999999999999999L, 1000000000000000000L})
    for (int width = 0; width <= 20; ++width) expectSamePadded(value, width);
  for (int i = 0; i < kRounds / 4; ++i) expectSamePadded(number(), below(20));
}

// Byte for byte: zeros of either sign differ, and so does what a value leaves unset.
template <class Value>
bool isSameInMemory(const Value& one, const Value& other) {
  using Bytes = std::array<unsigned char, sizeof(Value)>;
  return std::bit_cast<Bytes>(one) == std::bit_cast<Bytes>(other);
}

// Two readers with the same result for the same arguments, and the same effect on the value.
template <class Value, class Reader, class... Arguments>
void expectSameRead(const std::string& what, Reader fast, Reader plain, Arguments... arguments) {
  Value fastValue = 77;
  Value plainValue = 77;
  ASSERT_EQ(fast(arguments..., fastValue), plain(arguments..., plainValue)) << what;
  ASSERT_TRUE(isSameInMemory(fastValue, plainValue)) << what;
}

TEST_F(FastPaths, IntegersFromText) {
  for (int i = 0; i < kRounds / 2; ++i) {
    const std::string text =
        mutate(below(2) == 0 ? std::to_string(number()) : digits(22), "0123456789+- .x");
    ASSERT_NO_FATAL_FAILURE(
        expectSameRead<long>(text, parseInteger, parseIntegerPlain, text.c_str()));
  }
}

TEST_F(FastPaths, DoublesFromText) {
  for (int i = 0; i < kRounds / 2; ++i) {
    char printed[64];
    std::snprintf(printed, sizeof printed, below(2) == 0 ? "%.17g" : "%.4f",
                  std::bit_cast<double>(next()));
    const std::string text = mutate(
        below(3) == 0 ? printed : digits(20) + "." + digits(25) + (below(2) == 0 ? "" : "e-3"),
        "0123456789+-.eExnaifp ");
    ASSERT_NO_FATAL_FAILURE(
        expectSameRead<double>(text, parseDouble, parseDoublePlain, text.c_str()));
  }
}

TEST_F(FastPaths, MoneyFromAndToText) {
  long factor = 1;
  for (unsigned decimals = 0; decimals <= 18; ++decimals, factor *= decimals <= 18 ? 10 : 1) {
    for (int i = 0; i < kRounds / 20; ++i) {
      const std::string text =
          mutate((below(2) == 0 ? "-" : "") + digits(20) + (below(3) == 0 ? "" : ".") + digits(20),
                 "0123456789+-.  x");
      ASSERT_NO_FATAL_FAILURE(
          expectSameRead<long>(text, parseMoney, parseMoneyPlain, text.c_str(), decimals, factor));

      const long value = i < 3 ? LONG_MIN + i : number();
      const auto size = static_cast<std::size_t>(below(4) == 0 ? below(24) : 30);
      char fastText[32];
      char plainText[32];
      std::memset(fastText, '#', sizeof fastText);
      std::memset(plainText, '#', sizeof plainText);
      printMoney(value, decimals, factor, fastText, size);
      printMoneyPlain(value, decimals, factor, plainText, size);
      ASSERT_EQ(std::memcmp(fastText, plainText, sizeof fastText), 0) << value << " size " << size;
    }
  }
}

// The same text, and nothing behind the limit. Between them a fast form may leave other bytes.
void expectSameText(const char* fast, const char* plain, std::size_t size, std::size_t bytes) {
  if (size != 0) {
    ASSERT_STREQ(fast, plain);
  }
  ASSERT_EQ(std::memcmp(fast + size, plain + size, bytes - size), 0) << fast << " size " << size;
}

void expectSameDouble(double value, std::size_t size) {
  char fast[400];
  char plain[400];
  std::memset(fast, '#', sizeof fast);
  std::memset(plain, '#', sizeof plain);
  printDouble(value, fast, size);
  printDoublePlain(value, plain, size);
  SCOPED_TRACE(std::to_string(std::bit_cast<std::uint64_t>(value)) + " with " +
               std::to_string(g_decimalSize) + " decimals");
  expectSameText(fast, plain, size, sizeof fast);
}

TEST_F(FastPaths, DoublesToText) {
  constexpr double kEdges[] = {
      // clang-format off
      0.0, 0.5, 1.5, 2.5, 0.125, 0.375, 1e-5, 4.9e-324, 9.2e18, 9223372036854775807.0, 1e22, 1e79,
      1e80, 1.1e80, 9007199254740993.0, 0.9999999999999999, 999999.9999995, HUGE_VAL, NAN,
      // clang-format on
  };
  for (std::size_t decimals = 0; decimals <= 20; ++decimals) {
    setDecimalSize(decimals);
    expectSameDouble(g_tolerance, 399);
    for (const double edge : kEdges) {
      for (const double value : {edge, -edge, std::nextafter(edge, 0), std::nextafter(edge, 1e300)})
        for (const std::size_t size : {399U, 12U, 1U, 0U}) expectSameDouble(value, size);
      ASSERT_FALSE(HasFatalFailure());
    }
    for (int i = 0; i < kRounds / 50; ++i) {
      expectSameDouble(std::bit_cast<double>(next()), 399);
      // Decimal numbers, whose digits lie close to ties, and exact ties.
      expectSameDouble(static_cast<double>(number()) / 1e6, 399);
      expectSameDouble(std::ldexp(static_cast<double>(number() % 1000001), -below(24)), 399);
      ASSERT_FALSE(HasFatalFailure());
    }
  }
  setDecimalSize(6);
}

TEST_F(FastPaths, DecimalsFromText) {
  for (int i = 0; i < kRounds; ++i) {
    const std::string text =
        mutate((below(2) == 0 ? "-" : "") + digits(40) + (below(3) == 0 ? "" : ".") + digits(20),
               "0123456789+-.,  x\x80");
    const int scale = below(64);
    Uint128 fast = 0;
    Uint128 plain = 0;
    const bool isFastOk = parseDecimal(text.c_str(), scale, fast);
    ASSERT_EQ(isFastOk, parseDecimalPlain(text.c_str(), scale, plain)) << text << " " << scale;
    if (isFastOk) {
      ASSERT_TRUE(fast == plain) << text << " scale " << scale;
    }
  }
}

TEST_F(FastPaths, DecimalsToText) {
  for (int i = 0; i < kRounds / 2; ++i) {
    Uint128 value = makeUint128(next(), next()) >> below(128);
    // The quotients of whole groups of digits, and those just below.
    if (below(4) == 0) value -= value % kPowersOfTen[15] + static_cast<unsigned>(below(2));
    if (below(2) == 0) value = -value;
    if (i < 76) value = kPowersOfTen[static_cast<unsigned>(i) / 2] - static_cast<unsigned>(i % 2);
    const auto scale = static_cast<unsigned>(below(4) == 0 ? below(256) : below(40));
    char fast[kMaxDecimalText + 45];
    char plain[kMaxDecimalText + 45];
    const std::size_t length = printDecimalPlain(value, scale, plain);
    ASSERT_EQ(std::string(fast, printDecimal(value, scale, fast)), std::string(plain, length));
  }
}

void expectSameInstantTexts(long value) {
  using Print = std::size_t (*)(long, bool, char*);
  const auto print = [value](Print function, bool withZone) {
    char text[kMaxInstantText];
    return std::string(text, function(value, withZone, text));
  };
  for (const bool withZone : {false, true}) {
    ASSERT_EQ(print(printDate, withZone), print(printDatePlain, withZone)) << value;
    ASSERT_EQ(print(printTimeOfDay, withZone), print(printTimeOfDayPlain, withZone)) << value;
    for (const InstantUnit* unit : {&kTimestampUnit, &kBigDateTimeUnit}) {
      char plain[kMaxInstantText];
      const std::size_t length = printInstantPlain(value, *unit, withZone, plain);
      ASSERT_EQ(print(unit == &kTimestampUnit ? printTimestamp : printBigDateTime, withZone),
                std::string(plain, length))
          << value;
    }
  }
}

TEST_F(FastPaths, InstantsToText) {
  for (const long edge : {LONG_MIN, LONG_MAX - 1, 0L, -1L, -62167219201L, -62167219200L,
                          253402300799L, 253402300800L, -62167219200001L, 253402300799999L})
    for (const long value : {edge, edge + 1}) expectSameInstantTexts(value);
  for (long day = -719600; day < 2932960; day += 61) expectSameInstantTexts(day * 86400 - 1);
  for (int i = 0; i < kRounds / 20; ++i) expectSameInstantTexts(number());
}

TEST_F(FastPaths, InstantsFromText) {
  const ScopedTimeZone zone("EST5");  // years before 1970 follow it
  const char* const formats[] = {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%d %H:%M:%S", "%Y-%m-%dT%H:%M", "%s",
                                 "%Y"};
  const InstantUnit* const units[] = {&kTimestampUnit, &kBigDateTimeUnit};
  for (int i = 0; i < kRounds / 2; ++i) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d%c%02d:%02d:%02d", 1965 + below(200), below(14),
                  below(33), below(2) == 0 ? 'T' : ' ', below(25), below(61), below(63));
    const std::string source =
        mutate(text + (below(2) == 0 ? "." + digits(8) : ""), "0123456789.-: Tx\t");
    const char* format = formats[below(8) == 0 ? below(5) : below(2)];
    const InstantUnit& unit = *units[below(2)];
    ASSERT_NO_FATAL_FAILURE(expectSameRead<long>(source, parseInstant, parseInstantPlain,
                                                 source.c_str(), unit, format));
    ASSERT_NO_FATAL_FAILURE(
        expectSameRead<long>(source, parseSeconds, parseSecondsPlain, source.c_str(), format));
  }
}

TEST_F(FastPaths, Hex) {
  for (int i = 0; i < kRounds / 20; ++i) {
    std::vector<unsigned char> data(static_cast<std::size_t>(below(300)));
    for (auto& byte : data) byte = static_cast<unsigned char>(next());
    std::string fastText(data.size() * 2, '#');
    std::string plainText = fastText;
    encodeHex(data.data(), data.size(), fastText.data());
    encodeHexPlain(data.data(), data.size(), plainText.data());
    ASSERT_EQ(fastText, plainText);

    for (char& c : fastText)
      if (below(3) == 0 && c >= 'A') c = static_cast<char>(c + 32);
    const std::string text = mutate(mutate(fastText, " \t\r\n09afAF"), "gG@`/: \n\x80\x16");
    const std::size_t room = below(3) == 0 ? static_cast<std::size_t>(below(300)) : 300;
    std::vector<unsigned char> plain(302, '#');
    const HexResult plainResult = decodeHexPlain(text.c_str(), plain.data(), room);
    for (const HexUnit unit : {HexUnit::kNone, HexUnit::kAvx2, HexUnit::kAvx512}) {
      if (unit > hexUnit()) break;
      std::vector<unsigned char> fast(302, '#');
      const HexResult fastResult = decodeHex(text.c_str(), fast.data(), room, unit);
      ASSERT_EQ(fastResult.status, plainResult.status) << text;
      ASSERT_EQ(fastResult.bytes, plainResult.bytes) << text;
      ASSERT_EQ(fast, plain) << text;
    }
  }
}

// A short form either gives what the general one gives, or leaves the text to it.
void expectSameShortDecimal(const std::string& text, int precision, int scale) {
  char padded[64] = {};
  text.copy(padded, sizeof padded - 1);
  FixedDecimalValue fast;
  if (!readShortDecimal(padded, text.size(), createFixedDecimal(precision, scale), fast)) return;
  FixedDecimalValue plain;
  ASSERT_TRUE(plain.setDecimalValue(precision, scale, padded)) << text;
  ASSERT_TRUE(isSameInMemory(fast, plain))
      << '"' << text << "\" as decimal(" << precision << ',' << scale << ')';
}

TEST_F(FastPaths, ShortDecimals) {
  constexpr const char* kTexts[] = {
      // clang-format off
      "", "-", "+", ".", "-.5", "0", "-0", "-0.00", "+7", "9", "10", "99.99", "-99.99", "100.00",
      "1,25", "1.2.3", "12-", " 1", "1 ", "0x1", "1e5", "1234567890123456", "12345678901234567",
      "-123456789012345.6",
      // clang-format on
  };
  FixedDecimalValue value;
  EXPECT_TRUE(readShortDecimal("-12.50   ", 6, createFixedDecimal(5, 2), value));
  EXPECT_TRUE(readShortDecimal("-12.5    ", 5, createFixedDecimal(6, 4), value));
  EXPECT_EQ(static_cast<std::int64_t>(value.low), -125000);
  for (const char* text : kTexts)
    for (int scale = 0; scale <= 15; ++scale) expectSameShortDecimal(text, 16, scale);
  for (int round = 0; round < kRounds; ++round) {
    const int scale = below(16);
    const int precision = 1 + below(38);
    const std::string sign = below(3) == 0 ? "-" : below(9) == 0 ? "+" : "";
    std::string fraction;
    const int behind = std::max(0, scale - below(5));
    for (int i = 0; i < behind; ++i) fraction += character("0123456789");
    const std::string text = (sign + digits(16)).append(scale > 0 ? "." : "").append(fraction);
    ASSERT_NO_FATAL_FAILURE(
        expectSameShortDecimal(mutate(text, "0123456789.,-+ e/:"), precision, scale));
  }
}

TEST_F(FastPaths, ShortIntegers) {
  std::int64_t value = 0;
  for (const char* refused : {"", "-", "+1", "12345678901234567", "-12345678901234567", "1 "})
    EXPECT_FALSE(
        readShortInteger((std::string(refused) + "        ").c_str(), std::strlen(refused), value))
        << refused;
  EXPECT_TRUE(readShortInteger("1234567890123456", 16, value));
  EXPECT_TRUE(readShortInteger("-1234567890123456", 17, value));
  EXPECT_EQ(value, -1234567890123456);
  for (int round = 0; round < kRounds; ++round) {
    const std::string text = mutate(std::to_string(number()), "0123456789-+ ./:");
    char padded[64] = {};
    text.copy(padded, sizeof padded - 1);
    std::int64_t fast = 0;
    if (!readShortInteger(padded, text.size(), fast)) continue;
    char* end = nullptr;
    ASSERT_EQ(fast, std::strtoll(padded, &end, 10)) << text;
    ASSERT_EQ(*end, '\0') << text;
  }
}

TEST_F(FastPaths, DaysSince1970) {
  for (unsigned year = 1970; year <= 32767; ++year) {
    for (unsigned month = 1; month <= 12; ++month) {
      const auto day = static_cast<unsigned>(1 + below(65535));
      std::tm t{};
      t.tm_year = static_cast<int>(year) - 1900;
      t.tm_mon = static_cast<int>(month) - 1;
      t.tm_mday = static_cast<int>(day);
      const long seconds = daysSince1970(year, month, day) * 86400L;
      ASSERT_EQ(seconds, tm2sec(&t)) << year << '-' << month << '-' << day;
      ASSERT_EQ(seconds, tm2secUtc(&t)) << year << '-' << month << '-' << day;
    }
  }
}

std::string printPlainly(long value, const std::string& picture, const Zone* zone) {
  std::string out;
  TimeFormatParser_TimeToString printer(value, zone, out);
  if (!printer.prepare() || !printer.Parse(picture.data(), picture.size())) out.clear();
  return out;
}

TEST_F(FastPaths, FixedPictures) {
  constexpr const char* kTokens[] = {"YYYY", "MM",  "DD",  "HH24", "MI",  "SS",  "FF",  "FF1",
                                     "FF3",  "FF2", "FF4", "FF5",  "FF7", "FF8", "FF6", "FF9",
                                     "-",    " ",   ":",   ".",    "/",   "T",   "MON", "FM",
                                     "FX",   "Q",   "YY",  "MS",   "\"",  "x"};
  constexpr const char* kZones[] = {nullptr, "Europe/Paris", "America/St_Johns", "Asia/Kathmandu"};
  constexpr long kEdges[] = {0, 999, -1, -86400000, 253402300799999, 253402300800000, LONG_MAX};
  for (int round = 0; round < kRounds / 100; ++round) {
    std::string picture = below(4) == 0 ? "YYYY-MM-DD HH24:MI:SS.FF3" : "";
    for (int count = below(9); count > 0; --count) picture += kTokens[below(std::size(kTokens))];
    const char* name = kZones[below(std::size(kZones))];
    const Zone* zone = name == nullptr ? nullptr : findZone(name);
    for (int i = 0; i < 8; ++i) {
      const long value = i == 0 ? kEdges[below(std::size(kEdges))] : number() >> below(24);
      std::string out;
      TimestampToString(value, picture.c_str(), name, out);
      ASSERT_EQ(out, printPlainly(value, picture, zone)) << value << ' ' << picture;
    }
  }
}

}  // namespace
}  // namespace DataTypes
