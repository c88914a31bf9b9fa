#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "zeldb/exit_code.h"

namespace zeldb {

// Ends a verb: one line for the user, and the exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& text, std::string state = {}, std::string native = {})
      : std::runtime_error(text),
        code_(code),
        state_(std::move(state)),
        native_(std::move(native)) {}

  ExitCode exitCode() const { return code_; }
  // The SQLSTATE and the database's own number; empty when the failure has none.
  const std::string& state() const { return state_; }
  const std::string& native() const { return native_; }

  // The same failure in other words.
  Failure retold(const std::string& text) const { return {code_, text, state_, native_}; }

 private:
  ExitCode code_;
  std::string state_;
  std::string native_;
};

}  // namespace zeldb
