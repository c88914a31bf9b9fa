#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "zeldb/exit_code.h"

namespace zeldb {

// What the process's load has committed, for whoever has to end the process while the load cannot
// answer. May be called from any thread.
class RunStatus {
 public:
  // `rows` are committed, and nothing is on its way.
  static void committed(std::uint64_t rows);
  // The rows named are being committed.
  static void committing(const std::string& rows);
  // "; 1000 rows are committed; f.csv: rows of lines 1002 to 1501 are in doubt", or empty when
  // nothing is loaded.
  static std::string text();

  // What is to be done before the process is ended in the midst of its work; an empty function for
  // nothing.
  static void onAbandon(std::function<void(ExitCode)> action);
  static void abandon(ExitCode code);
};

}  // namespace zeldb
