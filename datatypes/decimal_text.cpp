#include "datatypes/decimal_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "datatypes/characters.h"
#include "datatypes/digit_words.h"

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
  for (std::size_t i = 0; i < 10000; ++i) {
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

// Writes the 40 last digits of a magnitude, with leading zeros.
void putForty(Uint128 magnitude, char* out) {
  constexpr std::uint64_t kTen8 = 100000000;
  constexpr std::uint64_t kTen16 = kTen8 * kTen8;
  if (magnitude < kTen16) {  // most decimals: nothing to divide
    std::memset(out, '0', kMaxDigits - 16);
    putSixteen(out + kMaxDigits - 16, lowWord(magnitude));
    return;
  }
  // The reciprocal's quotient can be one too high.
  Uint128 upper = wideProduct(magnitude, kReciprocals[15]).high;
  if (upper * kTen16 > magnitude) --upper;
  const std::uint64_t lower = lowWord(magnitude) - lowWord(upper) * kTen16;
  // The quotient of 2^127 exceeds a word; that of 34 digits does not.
  const std::uint64_t top =
      highWord(upper) == 0 ? lowWord(upper) / kTen16 : static_cast<std::uint64_t>(upper / kTen16);
  putEight(out, static_cast<std::uint32_t>(top));
  putSixteen(out + 8, lowWord(upper) - top * kTen16);
  putSixteen(out + 24, lower);
}

// The index of the first digit that is not 0, up to 40.
std::size_t firstDigit(const char* digits) {
  std::size_t at = 0;
  while (at < kMaxDigits && wordAt(digits + at) == kEightZeros) at += 8;
  if (at == kMaxDigits) return at;
  return at + static_cast<std::size_t>(std::countr_zero(wordAt(digits + at) ^ kEightZeros)) / 8;
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

// An optional sign, digits and a point where the scale wants it, to the end of the text. With at
// most 38 digits nothing can overflow, so that the order of the steps does not matter; everything
// else, short texts too, is for the plain form.
bool parseDecimal(const char* text, int scale, Uint128& coefficient) {
  constexpr std::size_t kMinLength = 8;
  constexpr std::size_t kMaxDigits128 = 38;
  const char* const begin = text + (*text == '-' || *text == '+' ? 1 : 0);
  const std::size_t length = std::strlen(begin);
  const char* const end = begin + length;
  const auto decimals = static_cast<std::size_t>(scale);
  const std::size_t behindInteger = decimals != 0 ? decimals + 1 : 0;
  if (length < kMinLength || length <= behindInteger || length > kMaxDigits128)
    return parseDecimalPlain(text, scale, coefficient);
  const std::size_t integerDigits = length - behindInteger;
  const bool hasPoint = decimals == 0 || begin[integerDigits] == '.' || begin[integerDigits] == ',';
  Uint128 value = 0;
  if (!hasPoint || !readDigits(begin, end, static_cast<unsigned>(decimals), value))
    return parseDecimalPlain(text, scale, coefficient);
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

// With a digit before the point, both parts are moved in blocks of fixed size; what they bring too
// much is overwritten or lies behind the text.
std::size_t printDecimal(Uint128 coefficient, unsigned scale, char* out) {
  char digits[kMaxDigits * 2] = {};
  putForty(magnitudeOf(coefficient), digits);
  const std::size_t first = firstDigit(digits);
  const std::size_t count = kMaxDigits - first;
  if (count <= scale) return placePoint(signBit(coefficient), digits + first, count, scale, out);
  char* at = out;
  if (signBit(coefficient)) *at++ = '-';
  std::memcpy(at, digits + first, kMaxDigits);
  at += count - scale;
  if (scale == 0) return static_cast<std::size_t>(at - out);
  *at++ = '.';
  std::memcpy(at, digits + kMaxDigits - scale, kMaxDigits);
  return static_cast<std::size_t>(at - out) + scale;
}

}  // namespace DataTypes
