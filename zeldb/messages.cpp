#include "zeldb/messages.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>

#include "zeldb/json_writer.h"
#include "zeldb/progress.h"
#include "zeldb/secrets.h"

namespace zeldb {
namespace {

std::atomic<MessageFormat> messageFormat = MessageFormat::kText;

std::string utcTime() {
  const auto now = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
  const auto seconds = std::chrono::floor<std::chrono::seconds>(now);
  return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z",
                     fmt::gmtime(std::chrono::system_clock::to_time_t(seconds)),
                     (now - seconds).count());
}

// The only way to standard error. `head` stands before a text for people, `more` within the object.
void write(std::string_view level, std::string_view head, std::string_view text,
           const std::string& more = {}) {
  const std::string masked = Secrets::masked(text);
  const std::string line =
      messageFormat == MessageFormat::kText
          ? fmt::format("{}{}\n", head, masked)
          : fmt::format("{{\"time\":\"{}\",\"level\":\"{}\",\"message\":{}{}}}\n", utcTime(), level,
                        jsonString(masked), more);
  Progress::giveWay();
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

class MessageSink : public spdlog::sinks::base_sink<std::mutex> {
 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    const auto name = spdlog::level::to_string_view(message.level);
    const std::string level(name.data(), name.size());
    write(level, level + ": ", {message.payload.data(), message.payload.size()});
  }
  void flush_() override {}
};

}  // namespace

void startMessages(const std::string& level, MessageFormat format) {
  messageFormat = format;
  spdlog::set_default_logger(
      std::make_shared<spdlog::logger>("zeldb", std::make_shared<MessageSink>()));
  spdlog::set_level(spdlog::level::from_str(level));
}

void tell(std::string_view text) {
  write("notice", "", text);
}

int complain(ExitCode code, std::string_view text) {
  const int number = static_cast<int>(code);
  write("error", "zeldb: ", text, fmt::format(",\"exit_code\":{}", number));
  return number;
}

}  // namespace zeldb
