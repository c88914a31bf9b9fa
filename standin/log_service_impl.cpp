#include "host/log_service_impl.h"

#include <memory>
#include <mutex>
#include <utility>

#include "standin/log_sink.h"

namespace KORVEX::Zel {
namespace {

// The installed sink. The lock is held only to take a reference, so that a sink may log itself.
class SinkHolder {
 public:
  std::shared_ptr<const LogSink> current() {
    const std::lock_guard lock(mutex_);
    return sink_;
  }

  std::shared_ptr<const LogSink> exchange(std::shared_ptr<const LogSink> sink) {
    const std::lock_guard lock(mutex_);
    return std::exchange(sink_, std::move(sink));
  }

 private:
  std::mutex mutex_;
  std::shared_ptr<const LogSink> sink_;
};

SinkHolder& sinkHolder() {
  static SinkHolder holder;
  return holder;
}

std::string_view textOrEmpty(const char* text) {
  return text != nullptr ? std::string_view(text) : std::string_view();
}

}  // namespace

LogSink installLogSink(LogSink sink) {
  auto shared = sink ? std::make_shared<const LogSink>(std::move(sink)) : nullptr;
  const auto previous = sinkHolder().exchange(std::move(shared));
  return previous ? *previous : LogSink();
}

void LogServiceImpl::log(const char* key) noexcept {
  log(key, nullptr, nullptr);
}

void LogServiceImpl::log(const char* key, const char* text) noexcept {
  log(key, text, nullptr);
}

void LogServiceImpl::log(const char* key, const char* text1, const char* text2) noexcept {
  try {
    if (const auto sink = sinkHolder().current()) {
      (*sink)({textOrEmpty(key), textOrEmpty(text1), textOrEmpty(text2)});
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch)
    // A log that fails must not fail what is being logged.
  }
}

}  // namespace KORVEX::Zel
