#pragma once

#include <stdexcept>
#include <string>

#include "zeldb/exit_code.h"

namespace zeldb {

// Ends a verb: one line for the user, and the exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}

  ExitCode exitCode() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace zeldb
