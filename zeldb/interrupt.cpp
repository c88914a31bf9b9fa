#include "zeldb/interrupt.h"

#include <csignal>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void raiseFlag(int) {
  interrupted = 1;
}

}  // namespace

void Interrupt::watch() {
  struct sigaction action = {};
  action.sa_handler = raiseFlag;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
}

void Interrupt::check() {
  if (interrupted != 0) {
    throw Failure(ExitCode::kInterrupted, "interrupted");
  }
}

}  // namespace zeldb
