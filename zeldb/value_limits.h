#pragma once

#include <cstddef>
#include <optional>

namespace zeldb {

// What a column holds less of than its type's values: what is beyond would be cut in silence, or
// become NULL.
struct ValueLimits {
  std::optional<int> secondDigits{};            // digits of a second's fraction
  std::optional<unsigned> significantDigits{};  // of decimals
  std::optional<unsigned> fractionDigits{};     // of decimals without a precision
  std::optional<std::size_t> characters{};      // of texts; bytes of binaries
  bool daysOnly = false;                        // dates without a time of day
  bool infinity = true;
  bool notANumber = true;
};

}  // namespace zeldb
