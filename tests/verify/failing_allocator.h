#pragma once

#include <cstdint>

namespace verify {

// Makes the allocations of this process fail: those of the plug-in and of the server's stand-ins,
// by operator new and by malloc, but not those of the scripted ODBC, as a driver has its own. Only
// while armed; one at a time.
class FailingAllocator {
 public:
  // The `at`-th allocation from now on (from 1) fails, and with `fromThenOn` all later ones. 0 lets
  // all succeed and only counts.
  static void arm(std::uint64_t at, bool fromThenOn);
  // Ends it and returns how many allocations there were.
  static std::uint64_t disarm();
};

}  // namespace verify
