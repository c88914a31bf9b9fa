#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zeldb/exit_code.h"

namespace zeldb {

// What the driver says about a failure: "[state][native][message]" taken apart.
struct Diagnostic {
  std::string state;  // SQLSTATE, five characters
  std::string native;
  std::string message;  // without line breaks

  // Nothing when the text has no such form.
  static std::optional<Diagnostic> parse(std::string_view text);

  // The same for the text of an error record, "[return code][SQLSTATE]message".
  static std::optional<Diagnostic> fromRecord(std::string_view text, int native);

  // The exit code that the SQLSTATE stands for.
  ExitCode exitCode() const;

  // "message (SQLSTATE 42S02, native 1146)"
  std::string toString() const;
};

}  // namespace zeldb
