#include "datatypes/decimal_text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "datatypes/characters.h"
#include "datatypes/digit_pairs.h"

namespace DataTypes {
namespace {

// Above this upper word another digit may not fit 128 bits.
constexpr std::uint64_t kLastHighWord = 0x0CCCCCCCCCCCCCCC;

// Digits that always fit 64 bits.
constexpr int kDigitsOfWord = 19;

class CoefficientReader {
 public:
  explicit CoefficientReader(const char* text) : at_(text) {}

  // Reads all digits; takes at most `limit` of them into the coefficient.
  bool readDigits(int limit, int& taken) {
    for (; isDigit(*at_); ++at_) {
      sawDigit_ = true;
      if (taken >= limit) continue;
      if (!append(static_cast<unsigned>(*at_ - '0'))) return false;
      ++taken;
    }
    return true;
  }

  bool append(unsigned digit) {
    if (digits_ < kDigitsOfWord) {
      word_ = word_ * 10 + digit;
      ++digits_;
      value_ = word_;
      return true;
    }
    if (highWord(value_) > kLastHighWord) return false;
    value_ = value_ * 10 + digit;
    return true;
  }

  void skipBlanks() {
    while (*at_ == ' ') ++at_;
  }

  // Reads an optional sign and returns whether it is "-".
  bool readSign() {
    const bool isMinus = *at_ == '-';
    if (isMinus || *at_ == '+') ++at_;
    return isMinus;
  }

  bool readPoint() {
    if (*at_ != '.' && *at_ != ',') return false;
    ++at_;
    return true;
  }

  bool isComplete() const { return sawDigit_ && *at_ == '\0'; }
  Uint128 value() const { return value_; }

 private:
  const char* at_;
  std::uint64_t word_ = 0;
  Uint128 value_ = 0;
  int digits_ = 0;
  bool sawDigit_ = false;
};

// Four digits at a time.
constexpr auto kFourDigits = [] {
  std::array<char, 40000> table{};
  for (unsigned i = 0; i < 10000; ++i) {
    table[i * 4] = static_cast<char>('0' + i / 1000);
    table[i * 4 + 1] = static_cast<char>('0' + i / 100 % 10);
    table[i * 4 + 2] = static_cast<char>('0' + i / 10 % 10);
    table[i * 4 + 3] = static_cast<char>('0' + i % 10);
  }
  return table;
}();

constexpr std::size_t kMaxDigits = 40;  // 39 of 2^127, in groups of four

// Writes sign, digits and point. Digits missing before the scale are zeros.
std::size_t placePoint(bool isNegative, const char* digits, std::size_t count, unsigned scale,
                       char* out) {
  char* at = out;
  if (isNegative) *at++ = '-';
  const std::size_t integerDigits = count > scale ? count - scale : 0;
  if (integerDigits == 0) *at++ = '0';
  at = std::copy_n(digits, integerDigits, at);
  if (scale == 0) return static_cast<std::size_t>(at - out);
  *at++ = '.';
  at = std::fill_n(at, scale - (count - integerDigits), '0');
  at = std::copy_n(digits + integerDigits, count - integerDigits, at);
  return static_cast<std::size_t>(at - out);
}

// Writes the digits of a magnitude without leading zeros, none for 0; returns how many.
std::size_t putDigits(Uint128 magnitude, char* out) {
  constexpr std::uint64_t kTen16 = 10000000000000000;
  constexpr std::uint64_t kTen19 = kTen16 * 1000;
  if (highWord(magnitude) == 0 && lowWord(magnitude) < kTen19) {
    const std::uint64_t word = lowWord(magnitude);
    return word != 0 ? static_cast<std::size_t>(putNumber(out, word) - out) : 0;
  }
  // Both parts of up to 2^127 fit a word.
  const auto upper = static_cast<std::uint64_t>(magnitude / kTen19);
  const std::uint64_t lower = lowWord(magnitude) - upper * kTen19;
  char* at = putNumber(out, upper);
  at = putFixed(at, lower / kTen16, 3);
  return static_cast<std::size_t>(putSixteen(at, lower % kTen16) - out);
}

// Reads eight digits at once; false when one of them is none. The first character is the lowest
// byte, so each step joins neighbours: digits to pairs, pairs to fours, fours to eight.
bool readEightDigits(const char* text, std::uint64_t& value) {
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, text, sizeof bytes);
  // The upper half of a digit is 3, and still is when 6 is added.
  constexpr std::uint64_t kUpperHalves = 0xF0F0F0F0F0F0F0F0;
  const std::uint64_t raised = bytes + 0x0606060606060606;
  if (((bytes & kUpperHalves) | (raised & kUpperHalves) >> 4) != 0x3333333333333333) return false;
  bytes = (bytes & 0x0F0F0F0F0F0F0F0F) * 2561 >> 8;
  bytes = (bytes & 0x00FF00FF00FF00FF) * 6553601 >> 16;
  value = (bytes & 0x0000FFFF0000FFFF) * 42949672960001 >> 32;
  return true;
}

// Appends digits to a value up to `end` or the first other character; returns where it stopped. The
// value must have room for them.
const char* accumulateDigits(const char* at, const char* end, Uint128& value) {
  constexpr std::uint64_t kEightDigits = 100000000;
  std::uint64_t group = 0;
  for (; end - at >= 8 && readEightDigits(at, group); at += 8) value = value * kEightDigits + group;
  std::uint64_t tail = 0;
  std::uint64_t power = 1;
  for (; at != end && isDigit(*at); ++at) {
    tail = tail * 10 + static_cast<unsigned>(*at - '0');
    power *= 10;
  }
  value = value * power + tail;
  return at;
}

}  // namespace

bool parseDecimalPlain(const char* text, int scale, Uint128& coefficient) {
  CoefficientReader reader(text);
  reader.skipBlanks();
  bool isMinus = reader.readSign();
  int integerDigits = 0;
  int decimals = 0;
  if (!reader.readDigits(INT32_MAX, integerDigits)) return false;
  if (reader.readPoint() && !reader.readDigits(scale, decimals)) return false;
  for (; decimals < scale; ++decimals)
    if (!reader.append(0)) return false;
  reader.skipBlanks();
  if (reader.readSign()) isMinus = !isMinus;
  reader.skipBlanks();
  if (!reader.isComplete()) return false;
  coefficient = isMinus ? -reader.value() : reader.value();
  return coefficient == 0 || signBit(coefficient) == isMinus;
}

// An optional sign, digits and at most one point, to the end of the text. With at most 38 digits at
// the given scale nothing can overflow, so that the order of the steps does not matter; everything
// else is for the plain form.
bool parseDecimal(const char* text, int scale, Uint128& coefficient) {
  constexpr long kMaxDigits = 38;
  const char* at = text + (*text == '-' || *text == '+' ? 1 : 0);
  const char* const end = at + std::strlen(at);
  const char* const begin = at;
  if (end - at > kMaxDigits + 1) return parseDecimalPlain(text, scale, coefficient);
  Uint128 value = 0;
  at = accumulateDigits(at, end, value);
  const long integerDigits = at - begin;
  int decimals = 0;
  if (integerDigits != 0 && (*at == '.' || *at == ',')) {
    const char* const fraction = ++at;
    const long room = std::min<long>(end - at, scale);
    if (integerDigits + scale > kMaxDigits) return parseDecimalPlain(text, scale, coefficient);
    at = accumulateDigits(at, at + room, value);
    decimals = static_cast<int>(at - fraction);
    while (isDigit(*at)) ++at;
  }
  if (integerDigits == 0 || integerDigits + scale > kMaxDigits || at != end)
    return parseDecimalPlain(text, scale, coefficient);
  if (decimals < scale) value *= kPowersOfTen[static_cast<unsigned>(scale - decimals) - 1];
  coefficient = *text == '-' ? -value : value;
  return true;
}

std::size_t printDecimalPlain(Uint128 coefficient, unsigned scale, char* out) {
  char digits[kMaxDigits];
  std::size_t first = kMaxDigits;
  for (Uint128 rest = magnitudeOf(coefficient); rest != 0; rest /= 10000) {
    first -= 4;
    std::memcpy(digits + first, &kFourDigits[static_cast<std::size_t>(rest % 10000) * 4], 4);
  }
  while (first < kMaxDigits && digits[first] == '0') ++first;
  return placePoint(signBit(coefficient), digits + first, kMaxDigits - first, scale, out);
}

std::size_t printDecimal(Uint128 coefficient, unsigned scale, char* out) {
  char digits[kMaxDigits];
  const std::size_t count = putDigits(magnitudeOf(coefficient), digits);
  return placePoint(signBit(coefficient), digits, count, scale, out);
}

}  // namespace DataTypes
