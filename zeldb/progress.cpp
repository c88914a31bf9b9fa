#include "zeldb/progress.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace zeldb {
namespace {

constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr std::size_t kUsualColumns = 80;

std::size_t terminalColumns() {
  winsize size = {};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                         : kUsualColumns;
}

}  // namespace

Progress::Progress() : terminal_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (drawn_) {
    std::fputs("\r\x1b[K", stderr);
  }
}

void Progress::update(std::uint64_t rows, std::uint64_t bytes, std::uint64_t totalBytes) {
  const auto now = Clock::now();
  if (!terminal_ || now - lastDrawn_ < kInterval) {
    return;
  }
  lastDrawn_ = now;
  drawn_ = true;
  const double seconds = std::chrono::duration<double>(now - started_).count();
  std::string line = fmt::format("{} rows, {:.0f} rows/s", rows,
                                 static_cast<double>(rows) / std::max(seconds, 0.001));
  if (totalBytes > 0 && bytes > 0) {
    const double done = static_cast<double>(bytes) / static_cast<double>(totalBytes);
    line =
        fmt::format("{:3.0f} %  {}, {:.0f} s left", 100 * done, line, seconds * (1 - done) / done);
  }
  line.resize(std::min(line.size(), terminalColumns() - 1));
  std::fprintf(stderr, "\r%s\x1b[K", line.c_str());
}

}  // namespace zeldb
