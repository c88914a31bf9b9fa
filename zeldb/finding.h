#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "zeldb/exit_code.h"

namespace zeldb {

enum class StepStatus : std::uint8_t { kOk, kWarning, kFailed, kSkipped };

// Why something is wrong, and what to do about it.
struct Advice {
  std::string cause;
  std::string remedy;
};

// What one step of an examination has found.
struct Finding {
  StepStatus status = StepStatus::kOk;
  std::string seen;
  Advice advice;                  // empty when all is well
  ExitCode code = ExitCode::kOk;  // what a failure stands for

  static Finding ok(std::string seen) { return {StepStatus::kOk, std::move(seen), {}}; }
  static Finding warning(std::string seen, Advice advice) {
    return {StepStatus::kWarning, std::move(seen), std::move(advice)};
  }
  static Finding failed(ExitCode code, std::string seen, Advice advice) {
    return {StepStatus::kFailed, std::move(seen), std::move(advice), code};
  }
  static Finding skipped(std::string why) { return {StepStatus::kSkipped, std::move(why), {}}; }
};

}  // namespace zeldb
