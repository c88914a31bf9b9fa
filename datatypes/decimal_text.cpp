#include "datatypes/decimal_text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "datatypes/characters.h"
#include "datatypes/digit_windows.h"
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

constexpr std::uint64_t kTen16 = 10'000'000'000'000'000;

// Magnitudes below 2^114 = 2.07 x 10^34 need no division. t = m / 2^50 fits a word. t x floor(2^114
// / 10^16) / 2^64 is below m / 10^16 by less than 2^50 / 10^16 = 0.12 for what t lacks and 0.42 for
// what the constant lacks: the quotient, or one less.
constexpr unsigned kDirectBits = 114;

std::uint64_t splitBySixteen(Uint128 magnitude, std::uint64_t& lower) {
  constexpr std::uint64_t kReciprocal =
      static_cast<std::uint64_t>((Uint128{1} << kDirectBits) / kTen16);
  const auto top = static_cast<std::uint64_t>(magnitude >> (kDirectBits - 64));
  std::uint64_t upper = highWord(Uint128{top} * kReciprocal);
  lower = lowWord(magnitude) - upper * kTen16;
  if (lower >= kTen16) {
    lower -= kTen16;
    ++upper;
  }
  return upper;
}

// Any number of digits, and of decimals.
[[gnu::noinline]] std::size_t printAnyDecimal(bool isNegative, Uint128 magnitude, unsigned scale,
                                              char* out) {
  constexpr std::size_t kDigits = kWindow * 3;
  char digits[kDigits];
  std::size_t end = kDigits;
  for (; end != 0; magnitude /= kTen16)
    putWindow(digits + (end -= kWindow),
              sixteenDigits(static_cast<std::uint64_t>(magnitude % kTen16)));
  const auto first = static_cast<std::size_t>(
      std::find_if(digits, digits + kDigits, [](char c) { return c != '0'; }) - digits);
  return placePoint(isNegative, digits + first, kDigits - first, scale, out);
}

// Below 10^16, with a digit before the point. Here and below, up to 16 characters behind the text
// are written.
std::size_t printShortDecimal(bool isNegative, std::uint64_t magnitude, unsigned scale, char* out) {
  const __m128i digits = sixteenDigits(magnitude);
  const unsigned zeros = leadingZeros(digits);
  const unsigned count = kWindow - zeros;
  if (count <= scale) return printAnyDecimal(isNegative, magnitude, scale, out);
  *out = '-';
  char* const at = out + (isNegative ? 1 : 0);
  putWithPoint(at, withoutFirst(digits, zeros), count - scale);
  return static_cast<std::size_t>(at - out) + count + (scale != 0 ? 1 : 0);
}

// From 10^16 on and below 2^114, with up to 15 decimals.
std::size_t printLongDecimal(bool isNegative, Uint128 magnitude, unsigned scale, char* out) {
  std::uint64_t lower = 0;
  const std::uint64_t upper = splitBySixteen(magnitude, lower);
  const std::uint64_t top = upper / kTen16;
  const __m128i middle = sixteenDigits(upper - top * kTen16);
  *out = '-';
  char* at = out + (isNegative ? 1 : 0);
  if (top != 0) {
    at = putUpToThree(at, static_cast<unsigned>(top));
    putWindow(at, middle);
    at += kWindow;
  } else {
    const unsigned zeros = leadingZeros(middle);
    putWindow(at, withoutFirst(middle, zeros));
    at += kWindow - zeros;
  }
  putWithPoint(at, sixteenDigits(lower), kWindow - scale);
  return static_cast<std::size_t>(at - out) + kWindow + (scale != 0 ? 1 : 0);
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

// The words of a text of 17 to 38 characters, from its end: sixteen around the point, sixteen
// before those, and what is left. At most 38 digits fit 128 bits, so that nothing can overflow.
static bool parseLongDecimal(const char* text, std::size_t length, unsigned scale, Uint128& value) {
  constexpr std::uint64_t kTen15 = 1'000'000'000'000'000;
  const char* const end = text + length;
  const __m128i last = windowAt(end - kWindow);
  std::uint64_t tail = 0;
  if (!readSixteen(scale == 0 ? last : withoutPoint(last, scale), tail)) return false;
  std::size_t left = length - kWindow;
  Uint128 upper = 0;
  std::uint64_t group = 0;
  if (left > kWindow) {
    left -= kWindow;
    std::uint64_t middle = 0;
    if (!readSixteen(paddedWindow(text, left), group) ||
        !readSixteen(windowAt(text + left), middle)) {
      return false;
    }
    upper = Uint128{group} * kTen16 + middle;
  } else {
    if (!readSixteen(paddedWindow(text, left), group)) return false;
    upper = group;
  }
  value = upper * (scale == 0 ? kTen16 : kTen15) + tail;
  return true;
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
  const bool isLong = length > kWindow && decimals < kWindow;
  Uint128 value = 0;
  if (!hasPoint ||
      !(isLong ? parseLongDecimal(begin, length, static_cast<unsigned>(decimals), value)
               : readDigits(begin, end, static_cast<unsigned>(decimals), value)))
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

std::size_t printDecimal(Uint128 coefficient, unsigned scale, char* out) {
  const bool isNegative = signBit(coefficient);
  const Uint128 magnitude = magnitudeOf(coefficient);
  if (magnitude < kTen16) return printShortDecimal(isNegative, lowWord(magnitude), scale, out);
  return magnitude >> kDirectBits == 0 && scale < kWindow
             ? printLongDecimal(isNegative, magnitude, scale, out)
             : printAnyDecimal(isNegative, magnitude, scale, out);
}

}  // namespace DataTypes
