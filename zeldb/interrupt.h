#pragma once

#include <string>

#include "zeldb/exit_code.h"

namespace zeldb {

// Ctrl-C, the signal to terminate, and the end of the time given. Once watched, the first signal
// only raises a flag, so that the work in hand can be rolled back; the second one ends the process
// at once.
class Interrupt {
 public:
  // By the thread that works.
  static void watch();
  // Raises the flag for another reason, from any thread.
  static void request(ExitCode code);
  // Throws Failure with kInterrupted, or the code of the request, when the flag is raised.
  static void check();
};

}  // namespace zeldb
