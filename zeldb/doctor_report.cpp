#include "zeldb/doctor_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iostream>

#include "zeldb/json_writer.h"
#include "zeldb/secrets.h"

namespace zeldb {
namespace {

constexpr std::array<std::string_view, 4> kStatusNames = {"ok", "warning", "failed", "skipped"};

std::string_view nameOf(StepStatus status) {
  return kStatusNames[static_cast<std::size_t>(status)];
}

}  // namespace

void DoctorReport::begin(const std::string& service) {
  service_ = service;
  if (format_ == DoctorFormat::kText) {
    out_ << (empty_ ? "" : "\n") << (service.empty() ? "all services" : service) << '\n';
  }
  empty_ = false;
}

void DoctorReport::add(std::string_view step, Finding finding) {
  for (std::string* const text : {&finding.seen, &finding.advice.cause, &finding.advice.remedy}) {
    *text = Secrets::masked(*text);
    std::replace(text->begin(), text->end(), '\n', ' ');
  }
  if (finding.status == StepStatus::kFailed) {
    ++failed_;
    exitCode_ = exitCode_ == ExitCode::kOk ? finding.code : exitCode_;
  }
  skipped_ += finding.status == StepStatus::kSkipped ? 1 : 0;
  if (format_ == DoctorFormat::kText) {
    writeText(step, finding);
  } else {
    writeJson(step, finding);
  }
  out_.flush();
}

void DoctorReport::writeText(std::string_view step, const Finding& finding) {
  const auto line = [this](std::string_view first, std::string_view second,
                           const std::string& text) {
    out_ << fmt::format("  {:<14} {:<8} {}\n", first, second, text);
  };
  line(step, nameOf(finding.status), finding.seen);
  if (!finding.advice.cause.empty()) {
    line("", "cause", finding.advice.cause);
    line("", "remedy", finding.advice.remedy);
  }
}

void DoctorReport::writeJson(std::string_view step, const Finding& finding) {
  out_ << fmt::format(R"({{"service":{},"step":{},"status":{},"seen":{},"cause":{},"remedy":{}}})"
                      "\n",
                      jsonString(service_), jsonString(step), jsonString(nameOf(finding.status)),
                      jsonString(finding.seen), jsonString(finding.advice.cause),
                      jsonString(finding.advice.remedy));
}

std::string DoctorReport::summary() const {
  return fmt::format("{} step{} failed, {} {} skipped", failed_, failed_ == 1 ? "" : "s", skipped_,
                     skipped_ == 1 ? "was" : "were");
}

}  // namespace zeldb
