#include "datatypes/number_text.h"

#include <locale.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "datatypes/characters.h"
#include "datatypes/digit_windows.h"
#include "datatypes/digit_words.h"
#include "datatypes/digits.h"
#include "datatypes/int128.h"
#include "datatypes/settings.h"
#include "host/intl.h"

namespace DataTypes {
namespace {

// Digits of any number that fits a long.
constexpr long kSafeDigits = 18;

bool isSign(char c) {
  return c == '-' || c == '+';
}

// strtod reads the decimal point of the process's locale; values are written with a point.
double toDouble(const char* text, char** end) {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale != nullptr ? strtod_l(text, end, locale) : std::strtod(text, end);
}

// The first `decimals` digits of the fraction, filled up with zeros. Returns the character behind
// all its digits.
const char* readFraction(const char* text, unsigned decimals, long& fraction) {
  fraction = 0;
  for (unsigned i = 0; i < decimals; ++i)
    fraction = fraction * 10 + (isDigit(*text) ? *text++ - '0' : 0);
  while (isDigit(*text)) ++text;
  return text;
}

// value / 2^shift, rounded half to even.
std::uint64_t roundedShift(Uint128 value, int shift) {
  const auto quotient = static_cast<std::uint64_t>(value >> shift);
  const Uint128 dropped = value - (Uint128{quotient} << shift);
  const Uint128 half = Uint128{1} << (shift - 1);
  const bool isUp = dropped > half || (dropped == half && quotient % 2 != 0);
  return quotient + (isUp ? 1 : 0);
}

// The fraction of a magnitude below 2^63 in units of 1/power, rounded half to even, and its whole
// part. The fraction can round up to `power` itself.
std::uint64_t roundedFraction(double magnitude, std::uint64_t power, std::uint64_t& whole) {
  constexpr int kMantissaBits = 52;
  constexpr int kExponentBias = 1075;
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  const auto biased = static_cast<int>(bits >> kMantissaBits);
  const std::uint64_t mantissa =
      (bits & ((1ULL << kMantissaBits) - 1)) | (biased != 0 ? 1ULL << kMantissaBits : 0);
  // magnitude = mantissa / 2^shift
  const int shift = kExponentBias - (biased != 0 ? biased : 1);
  if (shift <= 0) {
    whole = mantissa << -shift;
    return 0;
  }
  if (shift >= 64) {
    whole = 0;
    return shift < 128 ? roundedShift(Uint128{mantissa} * power, shift) : 0;
  }
  // The usual case: what is shifted out lies within a word.
  whole = mantissa >> shift;
  const Uint128 scaled = Uint128{mantissa - (whole << shift)} * power;
  const auto digits = static_cast<std::uint64_t>(scaled >> shift);
  const std::uint64_t dropped = lowWord(scaled) << (64 - shift);
  constexpr std::uint64_t kHalf = 1ULL << 63;
  return digits + (dropped > kHalf || (dropped == kHalf && digits % 2 != 0) ? 1 : 0);
}

}  // namespace

void copyText(const char* text, std::size_t length, char* out, std::size_t outSize) {
  if (outSize == 0) return;
  const std::size_t count = std::min(length, outSize - 1);
  std::memcpy(out, text, count);
  out[count] = '\0';
}

NumberStatus parseIntegerPlain(const char* text, long& value) {
  if (!isSign(*text) && !isDigit(*text)) return NumberStatus::kBadBegin;
  char* end = nullptr;
  errno = 0;
  const long number = std::strtol(text, &end, 10);
  if (end == text || *end != '\0') return NumberStatus::kBadEnd;
  if (errno == ERANGE) return NumberStatus::kOutOfRange;
  value = number;
  return NumberStatus::kOk;
}

// Up to 18 digits behind an optional sign cannot overflow, and strtol reads them as they are; all
// else is for the plain form.
NumberStatus parseInteger(const char* text, long& value) {
  const char* const begin = text + (isSign(*text) ? 1 : 0);
  const char* at = begin;
  long number = 0;
  for (; isDigit(*at); ++at) {
    if (at - begin == kSafeDigits) return parseIntegerPlain(text, value);
    number = number * 10 + (*at - '0');
  }
  if (at == begin || *at != '\0') return parseIntegerPlain(text, value);
  value = *text == '-' ? -number : number;
  return NumberStatus::kOk;
}

NumberStatus parseDoublePlain(const char* text, double& value) {
  if (!isSign(*text) && *text != '.' && !isDigit(*text)) return NumberStatus::kBadBegin;
  char* end = nullptr;
  const double number = toDouble(text, &end);
  if (end == text || *end != '\0') return NumberStatus::kBadEnd;
  if (std::fabs(number) == HUGE_VAL) return NumberStatus::kOutOfRange;
  value = number;
  return NumberStatus::kOk;
}

// A decimal number that from_chars reads whole and finds in range is what strtod reads, both round
// correctly. "+", words, hexadecimal digits and numbers out of range are for the plain form.
NumberStatus parseDouble(const char* text, double& value) {
  const char* const digits = text + (*text == '-' ? 1 : 0);
  if (!isDigit(*digits) && *digits != '.') return parseDoublePlain(text, value);
  const char* const end = digits + std::strlen(digits);
  double number = 0;
  const auto [rest, error] = std::from_chars(text, end, number);
  if (error != std::errc() || rest != end) return parseDoublePlain(text, value);
  value = number;
  return NumberStatus::kOk;
}

NumberStatus parseMoneyPlain(const char* text, unsigned decimals, long factor, long& value) {
  const char* at = text;
  while (isWhiteSpace(*at)) ++at;
  const char* number = at;
  if (isSign(*at)) ++at;
  if (*at != '.' && !isDigit(*at)) return NumberStatus::kBadBegin;

  long whole = 0;
  errno = 0;
  if (*at != '.') {
    char* end = nullptr;
    whole = std::strtol(number, &end, 10);
    at = end;
  }
  const bool isWholeOutOfRange = errno == ERANGE;
  long fraction = 0;
  if (*at == '.') {
    ++at;
    if (!isDigit(*at)) return NumberStatus::kBadFraction;
    at = readFraction(at, decimals, fraction);
  }
  if (*at != '\0') return NumberStatus::kBadEnd;

  long amount = 0;
  if (isWholeOutOfRange || __builtin_mul_overflow(whole, factor, &amount) ||
      __builtin_add_overflow(amount, *text == '-' ? -fraction : fraction, &amount))
    return NumberStatus::kOutOfRange;
  value = amount;
  return NumberStatus::kOk;
}

// An optional sign, digits and a point where the decimals want it, to the end of the text: the last
// sixteen characters, and one or two before them. Up to 17 digits cannot overflow, and the sign of
// the amount is the sign of its fraction. Everything else, short texts too, is for the plain form.
NumberStatus parseMoney(const char* text, unsigned decimals, long factor, long& value) {
  constexpr std::size_t kMinLength = 8;
  constexpr std::uint64_t kTen15 = 1'000'000'000'000'000;
  const char* const begin = text + (isSign(*text) ? 1 : 0);
  const std::size_t length = std::strlen(begin);
  if (length < kMinLength || length > kSafeDigits || decimals - 1 >= kWindow - 1 ||
      length <= decimals + 1 || begin[length - decimals - 1] != '.')
    return parseMoneyPlain(text, decimals, factor, value);
  const bool fitsWindow = length <= kWindow;
  const __m128i window =
      fitsWindow ? paddedWindow(begin, length) : windowAt(begin + length - kWindow);
  std::uint64_t amount = 0;
  std::uint64_t front = 0;
  if (!readSixteen(withoutPoint(window, decimals), amount) ||
      (!fitsWindow && !readEight(leadingWord(begin, length - kWindow), front)))
    return parseMoneyPlain(text, decimals, factor, value);
  const auto magnitude = static_cast<long>(front * kTen15 + amount);
  value = *text == '-' ? -magnitude : magnitude;
  return NumberStatus::kOk;
}

void printMoneyPlain(long value, unsigned decimals, long factor, char* out, std::size_t outSize) {
  if (outSize == 0) return;
  // Unsigned, so that the most negative amount has a magnitude.
  auto magnitude = static_cast<unsigned long>(value);
  if (value < 0) {
    magnitude = 0 - magnitude;
    *out++ = '-';
  }
  const auto unit = static_cast<unsigned long>(factor);
  KORVEX::Zel::intl_snprintf(
      out, outSize, "%llu.%0*llu", static_cast<unsigned long long>(magnitude / unit),
      static_cast<int>(decimals), static_cast<unsigned long long>(magnitude % unit));
}

// The same digits as the two numbers of the plain form; the magnitude is cut after the sign, as
// there. Without decimals the plain form prints one.
void printMoney(long value, unsigned decimals, long factor, char* out, std::size_t outSize) {
  if (decimals == 0) return printMoneyPlain(value, decimals, factor, out, outSize);
  if (outSize == 0) return;
  auto magnitude = static_cast<unsigned long>(value);
  if (value < 0) {
    magnitude = 0 - magnitude;
    *out++ = '-';
  }
  const auto unit = static_cast<unsigned long>(factor);
  char text[kMaxNumberText];
  char* at = putNumber(text, magnitude / unit);
  *at++ = '.';
  at = putFixed(at, magnitude % unit, decimals);
  copyText(text, static_cast<std::size_t>(at - text), out, outSize);
}

void printDoublePlain(double value, char* out, std::size_t outSize) {
  constexpr double kLargestFixed = 1e80;
  const double magnitude = std::fabs(value);
  if (magnitude < g_tolerance) value = 0.0;
  if (magnitude > kLargestFixed)
    KORVEX::Zel::intl_snprintf(out, outSize, "%0.25g", value);
  else
    KORVEX::Zel::intl_snprintf(out, outSize, "%0.*f", static_cast<int>(g_decimalSize), value);
}

namespace {

constexpr std::size_t kMaxDecimals = 17;
constexpr std::size_t kMaxDoubleText = kMaxNumberText + kMaxDecimals;

// A double is m x 2^e with m below 2^53. Below 2^63 its whole part fits a word, and with up to 17
// decimals the fraction times 10^decimals fits 128 bits exactly: shifting it right gives the
// digits, and the bits shifted out tell how printf rounds them, half to even. Returns the length.
inline std::size_t putDouble(double value, unsigned decimals, char* out) {
  const auto power = static_cast<std::uint64_t>(kPowersOfTen[decimals - 1]);
  std::uint64_t whole = 0;
  std::uint64_t fraction = roundedFraction(std::fabs(value), power, whole);
  if (fraction == power) {
    fraction = 0;
    ++whole;
  }
  char* at = out;
  if (std::signbit(value)) *at++ = '-';
  at = putNumber(at, whole);
  if (decimals == 6) {
    at = putPointAndSix(at, static_cast<unsigned>(fraction));
  } else {
    *at++ = '.';
    at = putFixed(at, fraction, decimals);
  }
  return static_cast<std::size_t>(at - out);
}

// A function of its own: one with a buffer is guarded against its overflow, which costs.
[[gnu::noinline]] void printCutDouble(double value, unsigned decimals, char* out,
                                      std::size_t outSize) {
  char text[kMaxDoubleText];
  copyText(text, putDouble(value, decimals, text), out, outSize);
}

}  // namespace

// Numbers from 2^63 on, infinities and NaNs are for the plain form.
void printDouble(double value, char* out, std::size_t outSize) {
  constexpr double kLimit = 9.2e18;
  if (std::fabs(value) < g_tolerance) value = 0.0;
  if (!(std::fabs(value) < kLimit) || g_decimalSize == 0 || g_decimalSize > kMaxDecimals)
    return printDoublePlain(value, out, outSize);
  const auto decimals = static_cast<unsigned>(g_decimalSize);
  if (outSize > kMaxDoubleText)
    out[putDouble(value, decimals, out)] = '\0';
  else
    printCutDouble(value, decimals, out, outSize);
}

}  // namespace DataTypes
