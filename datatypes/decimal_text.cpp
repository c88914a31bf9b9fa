#include "datatypes/decimal_text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "datatypes/characters.h"

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

bool parseDecimal(const char* text, int scale, Uint128& coefficient) {
  return parseDecimalPlain(text, scale, coefficient);
}

std::size_t printDecimalPlain(Uint128 coefficient, unsigned scale, char* out) {
  char digits[kMaxDigits];
  std::size_t first = kMaxDigits;
  for (Uint128 rest = magnitudeOf(coefficient); rest != 0; rest /= 10000) {
    first -= 4;
    std::memcpy(digits + first, &kFourDigits[static_cast<std::size_t>(rest % 10000) * 4], 4);
  }
  while (first < kMaxDigits && digits[first] == '0') ++first;
  const std::size_t count = kMaxDigits - first;

  char* at = out;
  if (signBit(coefficient)) *at++ = '-';
  const std::size_t integerDigits = count > scale ? count - scale : 0;
  if (integerDigits == 0) *at++ = '0';
  at = std::copy_n(digits + first, integerDigits, at);
  if (scale == 0) return static_cast<std::size_t>(at - out);
  *at++ = '.';
  at = std::fill_n(at, scale - (count - integerDigits), '0');
  at = std::copy_n(digits + first + integerDigits, count - integerDigits, at);
  return static_cast<std::size_t>(at - out);
}

std::size_t printDecimal(Uint128 coefficient, unsigned scale, char* out) {
  return printDecimalPlain(coefficient, scale, out);
}

}  // namespace DataTypes
