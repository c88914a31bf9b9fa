#pragma once

#include <chrono>
#include <random>
#include <string_view>

namespace zeldb {

// How often something is tried again, and after how long: each pause is twice as long as the one
// before, up to half a minute, and shortened at random by up to a half, so that many that have
// failed together do not come back together.
class RetryPolicy {
 public:
  // Up to `retries` tries again between two successes.
  explicit RetryPolicy(unsigned retries) : retries_(retries) {}

  // Waits before the next try and returns true; returns false, at once, when none is left. `why`
  // is logged. Throws Failure when the user interrupts or time is up.
  bool wait(std::string_view why);

  // The next failure is the first one again.
  void succeeded() { tried_ = 0; }

 private:
  std::chrono::milliseconds pause();

  unsigned retries_;
  unsigned tried_ = 0;
  std::minstd_rand random_{std::random_device()()};
};

}  // namespace zeldb
