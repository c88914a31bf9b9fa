#include "host/intl.h"

#include <locale.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace KORVEX::Zel {
namespace {

// The "C" locale for the calling thread while the guard lives.
class CLocaleGuard {
 public:
  CLocaleGuard() : previous_(uselocale(cLocale())) {}
  ~CLocaleGuard() { uselocale(previous_); }
  CLocaleGuard(const CLocaleGuard&) = delete;
  CLocaleGuard& operator=(const CLocaleGuard&) = delete;

 private:
  // Made once and never freed: a thread may still format while the process ends.
  static locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
  }

  locale_t previous_;
};

}  // namespace

int intl_snprintf(char* out, unsigned long size, const char* format, ...) {
  const CLocaleGuard guard;
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(out, size, format, arguments);
  va_end(arguments);
  return length;
}

std::size_t intl_strlcpy(char* out, const char* text, unsigned long size) {
  const std::size_t length = std::strlen(text);
  if (size > 0) {
    const std::size_t kept = std::min<std::size_t>(length, size - 1);
    std::memcpy(out, text, kept);
    out[kept] = '\0';
  }
  return length;
}

}  // namespace KORVEX::Zel
