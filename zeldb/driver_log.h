#pragma once

#include <optional>
#include <string>

#include "standin/log_sink.h"
#include "zeldb/diagnostic.h"
#include "zeldb/failure.h"

namespace zeldb {

// Receives what the driver logs while it lives, so that a failing operation can be explained. The
// last one made is the first to go; all of them receive everything. For one thread.
class DriverLog {
 public:
  DriverLog();
  ~DriverLog();
  DriverLog(const DriverLog&) = delete;
  DriverLog& operator=(const DriverLog&) = delete;

  // Forgets what has been logged so far; called before an operation.
  void clear();

  // The first diagnostic logged since clear(), or null.
  const Diagnostic* diagnostic() const { return diagnostic_ ? &*diagnostic_ : nullptr; }

  // The exit code that the failure stands for.
  ExitCode exitCode() const;

  // Why the operation failed, in one line: the diagnostic, or the key of the first message.
  std::string explanation() const;

  // A failure with the diagnostic's SQLSTATE and number, where there is one.
  Failure failure(ExitCode code, const std::string& text) const;

 private:
  void receive(const KORVEX::Zel::LogMessage& message);

  KORVEX::Zel::LogSink previous_;
  std::string firstKey_;
  std::optional<Diagnostic> diagnostic_;
};

}  // namespace zeldb
