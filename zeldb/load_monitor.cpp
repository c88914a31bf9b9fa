#include "zeldb/load_monitor.h"

#include <fmt/format.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <iostream>

#include "zeldb/failure.h"
#include "zeldb/run_status.h"

namespace zeldb {

LoadMonitor::LoadMonitor(const std::string& verb, const std::string& service,
                         const std::string& table, const LoadOptions& options)
    : metrics_(options.metrics, verb, service, table, counts_) {
  RunStatus::onAbandon([this](ExitCode code) { writeLast(code); });
}

LoadMonitor::~LoadMonitor() {
  RunStatus::onAbandon({});
}

void LoadMonitor::watch(const std::function<void()>& load) {
  try {
    load();
  } catch (const Failure& failure) {
    progress_.clear();
    writeLast(failure.exitCode());
    throw;
  }
  progress_.clear();
  metrics_.write(ExitCode::kOk);
}

void LoadMonitor::update(std::uint64_t rows, std::uint64_t bytesRead, std::uint64_t totalBytes) {
  progress_.update(rows, bytesRead, totalBytes);
  metrics_.refresh();
}

void LoadMonitor::summarize(std::uint64_t rows, const std::string& what) {
  progress_.clear();
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - started_;
  const std::uint64_t rejected = counts_.rowsRejected;
  std::cout << fmt::format(
      "{} row{} {}{} in {:.1f} s, {:.0f} rows/s\n", rows, rows == 1 ? "" : "s", what,
      rejected > 0 ? fmt::format(", {} rejected,", rejected) : "", taken.count(),
      static_cast<double>(counts_.rowsCommitted) / std::max(taken.count(), 0.001));
}

// Another failure has more to say.
void LoadMonitor::writeLast(ExitCode code) const noexcept {
  try {
    metrics_.write(code);
  } catch (const std::exception& failure) {
    spdlog::warn("metrics: {}", failure.what());
  }
}

}  // namespace zeldb
