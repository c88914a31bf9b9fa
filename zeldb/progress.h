#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zeldb {

// A line on the terminal that tells how far a load has come: a bar where the end is known, rows,
// rate and the time left, as much as the terminal's width allows. Silent when standard error is no
// terminal. One at a time.
class Progress {
 public:
  Progress();
  ~Progress() { clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Tells the rows committed and the bytes read of `totalBytes` (0: unknown). Draws at most ten
  // times a second.
  void update(std::uint64_t rows, std::uint64_t bytes, std::uint64_t totalBytes);

  // Removes the line.
  void clear() { giveWay(); }

  // Removes the line that is drawn by whomever, so that something else can be written. May be
  // called from any thread.
  static void giveWay();

  // The line for a terminal of so many columns, never longer. `done` is the part of the work that
  // is done, from 0 to 1, or negative when that is not known.
  static std::string line(double done, std::uint64_t rows, double seconds, std::size_t columns);

 private:
  using Clock = std::chrono::steady_clock;

  bool terminal_;
  Clock::time_point started_ = Clock::now();
  Clock::time_point lastDrawn_;
};

}  // namespace zeldb
