#pragma once

#include <string>
#include <utility>
#include <vector>

#include "standin/log_sink.h"

namespace KORVEX::Zel {

// Collects the log of the process while it lives, a line "key|text1|text2" a message; the NUL that
// ends a diagnostic text is left out.
class LogRecorder {
 public:
  LogRecorder() : previous_(installLogSink([this](const LogMessage& message) { add(message); })) {}
  ~LogRecorder() { installLogSink(std::move(previous_)); }
  LogRecorder(const LogRecorder&) = delete;
  LogRecorder& operator=(const LogRecorder&) = delete;

  std::vector<std::string> take() { return std::exchange(lines_, {}); }

 private:
  void add(const LogMessage& message) {
    std::string line;
    for (const auto text : {message.key, message.text1, message.text2}) {
      if (!line.empty()) line += '|';
      line += text;
    }
    lines_.push_back(std::move(line));
  }

  std::vector<std::string> lines_;
  LogSink previous_;
};

}  // namespace KORVEX::Zel
