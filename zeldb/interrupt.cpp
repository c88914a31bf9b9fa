#include "zeldb/interrupt.h"

#include <atomic>
#include <csignal>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

// An exit code; 0 as long as nothing is raised. The first one holds.
std::atomic<int> raised = 0;
static_assert(std::atomic<int>::is_always_lock_free, "signal handlers may use it");

void raise(ExitCode code) {
  int none = 0;
  raised.compare_exchange_strong(none, static_cast<int>(code));
}

void onSignal(int) {
  raise(ExitCode::kInterrupted);
}

}  // namespace

void Interrupt::watch() {
  struct sigaction action = {};
  action.sa_handler = onSignal;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

void Interrupt::request(ExitCode code) {
  raise(code);
}

void Interrupt::check() {
  if (const int code = raised; code != 0) {
    throw Failure(static_cast<ExitCode>(code), static_cast<ExitCode>(code) == ExitCode::kTimeout
                                                   ? "the time given is over"
                                                   : "interrupted");
  }
}

}  // namespace zeldb
