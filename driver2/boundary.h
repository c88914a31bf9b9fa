#pragma once

#include <utility>

#include "driver2/db_error2_odbc.h"

namespace KORVEX::Zel::DB {

// Runs the body of an operation that the server calls and turns any exception (in practice: no
// memory left) into `failure`. The server's code is not built to catch what this library throws.
// Inlined by force, here and below: operations that are called for each value stand in it.
template <typename Result, typename Body>
[[gnu::always_inline]] inline Result guarded(Result failure, Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return failure;
  }
}

namespace ODBC {

// The same for the second generation: -1, and the error record says why.
template <typename Body>
[[gnu::always_inline]] inline int guardedAccess(DBError* error, Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return failAccess(error, "memory allocation");
  }
}

}  // namespace ODBC
}  // namespace KORVEX::Zel::DB
