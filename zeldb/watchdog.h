#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace zeldb {

// Ends the process when its time is over. First it asks, through Interrupt, so that the work in
// hand is rolled back; when nothing happens, because a driver is stuck within a call, it says what
// is committed and what is in doubt, and ends the process with kTimeout.
class Watchdog {
 public:
  // Watches from now on, for so many seconds; forever when they are 0.
  explicit Watchdog(double seconds);
  ~Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

 private:
  void watch();
  // Whether the time passes without the work being done.
  bool passes(std::chrono::duration<double> time);

  double seconds_;
  std::mutex mutex_;
  std::condition_variable done_;
  bool isDone_ = false;
  std::thread thread_;
};

}  // namespace zeldb
