#include "datatypes/digits.h"

#include <algorithm>
#include <cstring>

#include "datatypes/digit_words.h"
#include "host/intl.h"

namespace DataTypes {

std::size_t printPaddedPlain(long value, int width, char* out) {
  char text[kMaxNumberText + 1];
  KORVEX::Zel::intl_snprintf(text, sizeof text, "%0*lld", width, static_cast<long long>(value));
  return static_cast<std::size_t>(std::copy_n(text, std::strlen(text), out) - out);
}

// "%0*lld" writes the sign first and counts it in the width; the digits fill what is left, or what
// they need. Two digits are what pictures print most often, four are years.
std::size_t printPadded(long value, int width, char* out) {
  const auto number = static_cast<unsigned long>(value);  // of a negative one: very large
  if (width == 2 && number < 100) {
    putPair(out, static_cast<unsigned>(number));
    return 2;
  }
  if (width == 4 && number < 10000) {
    putPair(out, static_cast<unsigned>(number / 100));
    putPair(out + 2, static_cast<unsigned>(number % 100));
    return 4;
  }
  char* at = out;
  // Unsigned, so that the most negative number has a magnitude.
  auto magnitude = static_cast<unsigned long>(value);
  if (value < 0) {
    magnitude = 0 - magnitude;
    *at++ = '-';
    --width;
  }
  if (width <= 1) return static_cast<std::size_t>(putNumber(at, magnitude) - out);
  char text[kMaxNumberText];
  const auto count = static_cast<int>(putNumber(text, magnitude) - text);
  if (count < width) at = std::fill_n(at, width - count, '0');
  std::memcpy(at, text, static_cast<std::size_t>(count));
  return static_cast<std::size_t>(at + count - out);
}

}  // namespace DataTypes
