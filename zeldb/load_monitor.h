#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "zeldb/load_counts.h"
#include "zeldb/load_options.h"
#include "zeldb/metrics_file.h"
#include "zeldb/progress.h"

namespace zeldb {

// What people and collectors see of a load while it runs and when it has ended.
class LoadMonitor {
 public:
  // Throws Failure when the file for metrics cannot be written.
  LoadMonitor(const std::string& verb, const std::string& service, const std::string& table,
              const LoadOptions& options);
  ~LoadMonitor();
  LoadMonitor(const LoadMonitor&) = delete;
  LoadMonitor& operator=(const LoadMonitor&) = delete;

  LoadCounts& counts() { return counts_; }

  // Does the load, which may throw Failure, and writes the metrics with what it has ended with.
  void watch(const std::function<void()>& load);

  // `rows` of the load are done; called after each batch.
  void update(std::uint64_t rows, std::uint64_t bytesRead, std::uint64_t totalBytes);

  // Writes the line of the end to standard output: "3 rows loaded into t, ...".
  void summarize(std::uint64_t rows, const std::string& what);

 private:
  void writeLast(ExitCode code) const noexcept;

  LoadCounts counts_;
  MetricsFile metrics_;
  Progress progress_;
  std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

}  // namespace zeldb
