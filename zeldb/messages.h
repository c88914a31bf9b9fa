#pragma once

#include <string>
#include <string_view>

#include "zeldb/exit_code.h"

namespace zeldb {

// What goes to standard error: texts for people or, for programs, a JSON object a line. Secrets are
// masked in all of it.
enum class MessageFormat { kText, kJson };

// Sends the log there as well, from the level on: "debug", "info", "warning" or "error".
void startMessages(const std::string& level, MessageFormat format);

// Says something that the user has to know, whatever the level is.
void tell(std::string_view text);

// Says why the program ends, and returns the exit code's number.
int complain(ExitCode code, std::string_view text);

}  // namespace zeldb
