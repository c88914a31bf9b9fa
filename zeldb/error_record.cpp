#include "zeldb/error_record.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/db_error.h"
#include "zeldb/failure.h"

namespace zeldb {

ErrorRecord::ErrorRecord(KORVEX::Zel::DB::Driver& driver)
    : driver_(driver), record_(driver.createError(""), Release{&driver}) {}

KORVEX::Zel::DB::DBError* ErrorRecord::fresh() {
  record_.reset(driver_.createError(""));
  return record_.get();
}

bool ErrorRecord::connectionIsLost() const {
  return record_->isConnectionError();
}

ExitCode ErrorRecord::exitCode() const {
  const auto diagnostic =
      Diagnostic::fromRecord(record_->getErrorString(), record_->getNativeErrorCode());
  const ExitCode code = diagnostic ? diagnostic->exitCode() : ExitCode::kSql;
  return code == ExitCode::kSql && connectionIsLost() ? ExitCode::kConnect : code;
}

std::string ErrorRecord::explanation() const {
  const auto diagnostic =
      Diagnostic::fromRecord(record_->getErrorString(), record_->getNativeErrorCode());
  std::string text = diagnostic ? diagnostic->toString() : record_->getErrorString();
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

void ErrorRecord::check(int result, const char* what) const {
  if (result != 0) {
    const Diagnostic why = diagnostic();
    throw Failure(exitCode(), fmt::format("{}: {}", what, explanation()), why.state, why.native);
  }
}

Diagnostic ErrorRecord::diagnostic() const {
  return Diagnostic::fromRecord(record_->getErrorString(), record_->getNativeErrorCode())
      .value_or(Diagnostic());
}

}  // namespace zeldb
