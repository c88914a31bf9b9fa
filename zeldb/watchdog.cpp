#include "zeldb/watchdog.h"

#include <fmt/format.h>
#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "zeldb/interrupt.h"
#include "zeldb/messages.h"
#include "zeldb/run_status.h"

namespace zeldb {
namespace {

constexpr std::chrono::duration<double> kGrace(0.5);

}  // namespace

Watchdog::Watchdog(double seconds) : seconds_(seconds) {
  if (seconds_ > 0) {
    // Signals are for the thread that works.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread_ = std::thread([this] { watch(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }
}

Watchdog::~Watchdog() {
  if (thread_.joinable()) {
    {
      const std::lock_guard lock(mutex_);
      isDone_ = true;
    }
    done_.notify_all();
    thread_.join();
  }
}

void Watchdog::watch() {
  if (!passes(std::chrono::duration<double>(seconds_))) {
    return;
  }
  Interrupt::request(ExitCode::kTimeout);
  if (passes(kGrace)) {
    RunStatus::abandon(ExitCode::kTimeout);
    _exit(complain(ExitCode::kTimeout, fmt::format("{} s are over, the driver does not answer{}",
                                                   seconds_, RunStatus::text())));
  }
}

bool Watchdog::passes(std::chrono::duration<double> time) {
  std::unique_lock lock(mutex_);
  return !done_.wait_for(lock, time, [this] { return isDone_; });
}

}  // namespace zeldb
