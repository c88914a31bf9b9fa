#pragma once

namespace zeldb {

// Ctrl-C. Once watched, the first one only raises a flag, so that the work in hand can be rolled
// back; the second one ends the process at once.
class Interrupt {
 public:
  static void watch();
  // Throws Failure with kInterrupted when the flag is raised.
  static void check();
};

}  // namespace zeldb
