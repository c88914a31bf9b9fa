#include "zeldb/progress.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>

namespace zeldb {
namespace {

constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr std::size_t kUsualColumns = 80;
// For the terminal's echo of Ctrl-C, and the last one: behind it may come another line.
constexpr std::size_t kFreeColumns = 3;
constexpr std::size_t kLongestBar = 40;
constexpr std::size_t kShortestBar = 8;

std::atomic<bool> drawn = false;

// Looked up for each drawing: windows change their size.
std::size_t terminalColumns() {
  winsize size = {};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                         : kUsualColumns;
}

std::string timeText(double seconds) {
  const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
  return whole < 3600 ? fmt::format("{}:{:02}", whole / 60, whole % 60)
                      : fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string bar(double done, std::size_t columns) {
  const auto full = static_cast<std::size_t>(done * static_cast<double>(columns));
  return fmt::format(" [{}{}]", std::string(full, '#'), std::string(columns - full, '.'));
}

}  // namespace

Progress::Progress() : terminal_(isatty(STDERR_FILENO) == 1) {}

void Progress::giveWay() {
  if (drawn.exchange(false)) {
    std::fputs("\r\x1b[K", stderr);
  }
}

void Progress::update(std::uint64_t rows, std::uint64_t bytes, std::uint64_t totalBytes) {
  const auto now = Clock::now();
  if (!terminal_ || now - lastDrawn_ < kInterval) {
    return;
  }
  lastDrawn_ = now;
  const double seconds = std::chrono::duration<double>(now - started_).count();
  const double done = totalBytes > 0 ? static_cast<double>(std::min(bytes, totalBytes)) /
                                           static_cast<double>(totalBytes)
                                     : -1;
  const std::size_t columns = std::max(terminalColumns(), kFreeColumns) - kFreeColumns;
  std::fprintf(stderr, "\r%s\x1b[K", line(done, rows, seconds, columns).c_str());
  drawn = true;
}

std::string Progress::line(double done, std::uint64_t rows, double seconds, std::size_t columns) {
  const double rate = static_cast<double>(rows) / std::max(seconds, 0.001);
  std::string text = done < 0 ? "" : fmt::format("{:3.0f} %", 100 * done);
  std::string details = fmt::format("  {} rows  {:.0f} rows/s", rows, rate);
  if (done > 0) {
    details += fmt::format("  {} left", timeText(seconds * (1 - done) / done));
  }
  // The bar takes what the rest leaves.
  const std::size_t needed = text.size() + details.size() + 3;
  if (done >= 0 && columns >= needed + kShortestBar) {
    text += bar(done, std::min(columns - needed, kLongestBar));
  }
  text += details;
  text.resize(std::min(text.size(), columns));
  return text;
}

}  // namespace zeldb
