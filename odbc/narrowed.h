#pragma once

#include <algorithm>
#include <limits>

namespace KORVEX::Zel::DB::ODBC {

// A 64-bit number that ODBC gave, in a narrower field: numbers beyond its range become the nearest
// that it has.
template <typename Narrow, typename Wide>
constexpr Narrow narrowed(Wide value) {
  using Limits = std::numeric_limits<Narrow>;
  if constexpr (std::numeric_limits<Wide>::is_signed) {
    return static_cast<Narrow>(std::clamp<Wide>(value, static_cast<Wide>(Limits::min()),
                                                static_cast<Wide>(Limits::max())));
  } else {
    return static_cast<Narrow>(std::min<Wide>(value, static_cast<Wide>(Limits::max())));
  }
}

}  // namespace KORVEX::Zel::DB::ODBC
