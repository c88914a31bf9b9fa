#pragma once

#include <chrono>
#include <cstdint>

namespace zeldb {

// A line on the terminal that tells how far a load has come. Silent when standard error is no
// terminal.
class Progress {
 public:
  Progress();
  ~Progress();  // removes the line
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Tells the rows committed and the bytes read of `totalBytes` (0: unknown). Draws at most ten
  // times a second.
  void update(std::uint64_t rows, std::uint64_t bytes, std::uint64_t totalBytes);

 private:
  using Clock = std::chrono::steady_clock;

  bool terminal_;
  bool drawn_ = false;
  Clock::time_point started_ = Clock::now();
  Clock::time_point lastDrawn_;
};

}  // namespace zeldb
