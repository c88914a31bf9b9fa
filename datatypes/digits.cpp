#include "datatypes/digits.h"

#include <array>
#include <cstring>

#include "host/intl.h"

namespace DataTypes {
namespace {

// "00" to "99".
constexpr auto kPairs = [] {
  std::array<char, 200> pairs{};
  for (unsigned i = 0; i < 100; ++i) {
    pairs[i * 2] = static_cast<char>('0' + i / 10);
    pairs[i * 2 + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

}  // namespace

std::size_t printPaddedPlain(long value, int width, char* out) {
  char text[kMaxNumberText + 1];
  KORVEX::Zel::intl_snprintf(text, sizeof text, "%0*lld", width, static_cast<long long>(value));
  const std::size_t length = std::strlen(text);
  std::memcpy(out, text, length);
  return length;
}

std::size_t printPadded(long value, int width, char* out) {
  char text[kMaxNumberText];
  std::size_t first = kMaxNumberText;
  // Unsigned, so that the most negative number has a magnitude.
  auto rest = static_cast<unsigned long>(value);
  if (value < 0) rest = 0 - rest;
  for (; rest >= 100; rest /= 100) {
    first -= 2;
    std::memcpy(text + first, &kPairs[rest % 100 * 2], 2);
  }
  if (rest >= 10) {
    first -= 2;
    std::memcpy(text + first, &kPairs[rest * 2], 2);
  } else {
    text[--first] = static_cast<char>('0' + rest);
  }
  const std::size_t digitWidth = static_cast<std::size_t>(width) - (value < 0 && width > 0 ? 1 : 0);
  while (kMaxNumberText - first < digitWidth) text[--first] = '0';
  char* at = out;
  if (value < 0) *at++ = '-';
  std::memcpy(at, text + first, kMaxNumberText - first);
  return static_cast<std::size_t>(at - out) + kMaxNumberText - first;
}

}  // namespace DataTypes
