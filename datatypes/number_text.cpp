#include "datatypes/number_text.h"

#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "datatypes/characters.h"
#include "datatypes/settings.h"
#include "host/intl.h"

namespace DataTypes {
namespace {

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

NumberStatus parseInteger(const char* text, long& value) {
  return parseIntegerPlain(text, value);
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

NumberStatus parseDouble(const char* text, double& value) {
  return parseDoublePlain(text, value);
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

NumberStatus parseMoney(const char* text, unsigned decimals, long factor, long& value) {
  return parseMoneyPlain(text, decimals, factor, value);
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

void printMoney(long value, unsigned decimals, long factor, char* out, std::size_t outSize) {
  printMoneyPlain(value, decimals, factor, out, outSize);
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

void printDouble(double value, char* out, std::size_t outSize) {
  printDoublePlain(value, out, outSize);
}

}  // namespace DataTypes
