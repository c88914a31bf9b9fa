#pragma once

#include <string>

#include "host/export.h"

namespace KORVEX::Zel {

// The server's log. A message is a key of the form "8010NN-S_TEXT" (S: 3 the operation fails, 4 it
// goes on) and up to two texts. Null texts count as empty. Never throws.
class ZEL_EXPORT LogServiceImpl {
 public:
  static void log(const char* key) noexcept;
  static void log(const char* key, const char* text) noexcept;
  static void log(const char* key, const char* text1, const char* text2) noexcept;

  // The decimal text of a number, for use as a log text.
  template <typename Number>
  static std::string toString(Number number) {
    return std::to_string(number);
  }
};

}  // namespace KORVEX::Zel
