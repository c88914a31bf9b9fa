#include <fmt/format.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "contest.h"
#include "contests.h"
#include "datatypes/data_types.h"
#include "datatypes/decimal_text.h"
#include "datatypes/number_text.h"
#include "random_batch.h"

extern "C" {
#include <bid_conf.h>
#include <bid_functions.h>
}

using namespace DataTypes;

namespace {

// A coefficient of 34 digits at scale 4.
Uint128 coefficient() {
  return makeUint128(random64(), random64()) % kPowersOfTen[33];
}

}  // namespace

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
  texts.reserve(values.size());
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
  texts.reserve(values.size());
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
