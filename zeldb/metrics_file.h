#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "zeldb/exit_code.h"
#include "zeldb/load_counts.h"

namespace zeldb {

// The counts of a load as a file in Prometheus' text form, for a collector of text files. The file
// is there whole or not at all.
class MetricsFile {
 public:
  using Clock = std::chrono::steady_clock;

  // `counts` must outlive this. Nothing is written when the path is empty.
  MetricsFile(std::string path, const std::string& verb, const std::string& service,
              const std::string& table, const LoadCounts& counts);

  // Writes the file; with the exit code when the load has ended. Throws Failure.
  void write(std::optional<ExitCode> ended) const;
  // Writes it when the last time is some seconds ago. Throws Failure.
  void refresh();

 private:
  std::string path_;
  std::string labels_;
  const LoadCounts& counts_;
  Clock::time_point started_ = Clock::now();
  Clock::time_point written_ = started_;
};

}  // namespace zeldb
