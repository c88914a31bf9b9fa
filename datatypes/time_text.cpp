#include "datatypes/time_text.h"

#include <cstdlib>
#include <cstring>

#include "datatypes/characters.h"
#include "host/intl.h"

namespace DataTypes {

const char* g_date_format = "%Y-%m-%dT%H:%M:%S";
const char* g_time_format = "%H:%M:%S";
unsigned char g_date_format_allocated = 0;

namespace {

bool splitFraction(const char* text, const char* zeros, char*& whole, char*& fraction) {
  const char* point = std::strrchr(text, '.');
  const std::size_t wholeLength =
      point != nullptr ? static_cast<std::size_t>(point - text) : std::strlen(text);
  whole = static_cast<char*>(std::malloc(wholeLength + 1));
  fraction = ::strdup(zeros);
  if (whole == nullptr || fraction == nullptr) {
    std::free(whole);
    std::free(fraction);
    whole = fraction = nullptr;
    return false;
  }
  KORVEX::Zel::intl_strlcpy(whole, text, wholeLength + 1);
  if (point == nullptr) return true;
  // Kept: nothing checks that these are digits.
  char* digit = fraction;
  for (const char* at = point + 1; *at != '\0' && *digit != '\0'; ++at)
    if (!isWhiteSpace(*at)) *digit++ = *at;
  return true;
}

}  // namespace

void setDateFormat(char* format) {
  if (format == nullptr) return;
  char* copy = ::strdup(format);
  if (copy == nullptr) return;
  // The flag says that the text is this library's own allocation.
  if (g_date_format_allocated != 0) std::free(const_cast<char*>(g_date_format));
  g_date_format = copy;
  g_date_format_allocated = 1;
}

bool splitTimestamp(const char* text, char*& whole, char*& fraction) {
  return splitFraction(text, "000", whole, fraction);
}

bool splitBigdatetime(const char* text, char*& whole, char*& fraction) {
  return splitFraction(text, "000000", whole, fraction);
}

}  // namespace DataTypes
