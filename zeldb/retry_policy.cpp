#include "zeldb/retry_policy.h"

#include <spdlog/spdlog.h>

#include <algorithm>
#include <thread>

#include "zeldb/interrupt.h"

namespace zeldb {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFirstPause(200);
constexpr milliseconds kLongestPause(30000);
constexpr milliseconds kSlice(20);  // how soon an interruption is noticed

}  // namespace

bool RetryPolicy::wait(std::string_view why) {
  if (tried_ == retries_) {
    return false;
  }
  ++tried_;
  const milliseconds time = pause();
  spdlog::warn("{}; trying again in {:.1f} s ({} of {})", why,
               std::chrono::duration<double>(time).count(), tried_, retries_);
  const auto until = std::chrono::steady_clock::now() + time;
  while (std::chrono::steady_clock::now() < until) {
    Interrupt::check();
    std::this_thread::sleep_for(kSlice);
  }
  return true;
}

milliseconds RetryPolicy::pause() {
  const milliseconds full = std::min(kFirstPause * (1 << std::min(tried_ - 1, 10U)), kLongestPause);
  return milliseconds(
      std::uniform_int_distribution<milliseconds::rep>(full.count() / 2, full.count())(random_));
}

}  // namespace zeldb
