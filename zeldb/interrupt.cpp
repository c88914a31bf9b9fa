#include "zeldb/interrupt.h"

#include <pthread.h>

#include <atomic>
#include <csignal>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

// Ends a call of the system that waits.
constexpr int kWakeSignal = SIGALRM;

pthread_t watched;  // the thread that works

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
  watched = pthread_self();
  struct sigaction action = {};
  action.sa_handler = onSignal;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  struct sigaction wake = {};
  wake.sa_handler = [](int) {};
  sigaction(kWakeSignal, &wake, nullptr);
}

void Interrupt::request(ExitCode code) {
  raise(code);
  pthread_kill(watched, kWakeSignal);
}

void Interrupt::check() {
  if (const int code = raised; code != 0) {
    throw Failure(static_cast<ExitCode>(code), static_cast<ExitCode>(code) == ExitCode::kTimeout
                                                   ? "the time given is over"
                                                   : "interrupted");
  }
}

}  // namespace zeldb
