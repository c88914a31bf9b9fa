#include "zeldb/driver_log.h"

#include <spdlog/spdlog.h>

#include <utility>

namespace zeldb {

DriverLog::DriverLog()
    : previous_(KORVEX::Zel::installLogSink(
          [this](const KORVEX::Zel::LogMessage& message) { receive(message); })) {}

DriverLog::~DriverLog() {
  KORVEX::Zel::installLogSink(std::move(previous_));
}

void DriverLog::clear() {
  firstKey_.clear();
  diagnostic_.reset();
}

ExitCode DriverLog::exitCode() const {
  return diagnostic_ ? diagnostic_->exitCode() : ExitCode::kSql;
}

std::string DriverLog::explanation() const {
  if (diagnostic_) {
    return diagnostic_->toString();
  }
  return firstKey_.empty() ? "the driver gives no reason" : firstKey_;
}

Failure DriverLog::failure(ExitCode code, const std::string& text) const {
  const Diagnostic why = diagnostic_.value_or(Diagnostic());
  return {code, text, why.state, why.native};
}

void DriverLog::receive(const KORVEX::Zel::LogMessage& message) {
  if (previous_) {
    previous_(message);
  } else {
    spdlog::debug("driver: {} {} {}", message.key, message.text1, message.text2);
  }
  if (firstKey_.empty()) {
    firstKey_ = message.key;
  }
  for (const std::string_view text : {message.text1, message.text2}) {
    if (!diagnostic_) {
      diagnostic_ = Diagnostic::parse(text);
    }
  }
}

}  // namespace zeldb
