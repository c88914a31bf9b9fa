#pragma once

#include <functional>
#include <string_view>

#include "host/export.h"

namespace KORVEX::Zel {

// One message of the log. The texts live only as long as the sink's call.
struct LogMessage {
  std::string_view key;    // "8010NN-S_TEXT"
  std::string_view text1;  // empty when not given
  std::string_view text2;  // empty when not given
};

// Receives every log message, in the thread that logs. Exceptions it throws are dropped.
using LogSink = std::function<void(const LogMessage&)>;

// Sends the process's log messages to `sink` from now on and returns the sink so far. An empty
// function drops them, which is how a process starts. May be called from any thread; a message that
// is being logged meanwhile may still reach the old sink.
ZEL_EXPORT LogSink installLogSink(LogSink sink);

}  // namespace KORVEX::Zel
