#include "zeldb/run_status.h"

#include <fmt/format.h>

#include <mutex>
#include <optional>
#include <utility>

namespace zeldb {
namespace {

struct Status {
  std::mutex mutex;
  std::optional<std::uint64_t> committed;
  std::string committing;
  std::function<void(ExitCode)> action;
};

Status& status() {
  static Status holder;
  return holder;
}

}  // namespace

void RunStatus::committed(std::uint64_t rows) {
  const std::lock_guard lock(status().mutex);
  status().committed = rows;
  status().committing.clear();
}

void RunStatus::committing(const std::string& rows) {
  const std::lock_guard lock(status().mutex);
  status().committing = rows;
}

std::string RunStatus::text() {
  const std::lock_guard lock(status().mutex);
  const auto committed = status().committed;
  if (!committed) {
    return {};
  }
  std::string text = fmt::format("; {} rows are committed", *committed);
  if (!status().committing.empty()) {
    text += fmt::format("; {} are in doubt", status().committing);
  }
  return text;
}

void RunStatus::onAbandon(std::function<void(ExitCode)> action) {
  const std::lock_guard lock(status().mutex);
  status().action = std::move(action);
}

void RunStatus::abandon(ExitCode code) {
  const std::lock_guard lock(status().mutex);
  if (status().action) {
    status().action(code);
  }
}

}  // namespace zeldb
