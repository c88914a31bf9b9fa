#include "datatypes/digits.h"

#include <algorithm>
#include <cstring>

#include "datatypes/digit_words.h"
#include "host/intl.h"

namespace DataTypes {

std::size_t printPaddedPlain(long value, int width, char* out) {
  char text[kMaxNumberText + 1];
  KORVEX::Zel::intl_snprintf(text, sizeof text, "%0*lld", width, static_cast<long long>(value));
  const std::size_t length = std::strlen(text);
  std::memcpy(out, text, length);
  return length;
}

// "%0*lld" writes the sign first and counts it in the width; the digits fill what is left, or what
// they need. Pictures print two digits most often.
std::size_t printPadded(long value, int width, char* out) {
  if (width == 2 && value >= 0 && value < 100) {
    putPair(out, static_cast<unsigned>(value));
    return 2;
  }
  char* at = out;
  // Unsigned, so that the most negative number has a magnitude.
  auto magnitude = static_cast<unsigned long>(value);
  if (value < 0) {
    magnitude = 0 - magnitude;
    *at++ = '-';
    --width;
  }
  char text[kMaxNumberText];
  const auto count = static_cast<int>(putNumber(text, magnitude) - text);
  if (count < width) at = std::fill_n(at, width - count, '0');
  std::memcpy(at, text, static_cast<std::size_t>(count));
  return static_cast<std::size_t>(at + count - out);
}

}  // namespace DataTypes
