#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "zeldb/exit_code.h"

namespace zeldb {

// Ends a verb: one line for the user, and the exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& text, std::string state = {})
      : std::runtime_error(text), code_(code), state_(std::move(state)) {}

  ExitCode exitCode() const { return code_; }
  // The SQLSTATE; empty when the failure has none.
  const std::string& state() const { return state_; }

 private:
  ExitCode code_;
  std::string state_;
};

}  // namespace zeldb
