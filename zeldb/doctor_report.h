#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "zeldb/finding.h"

namespace zeldb {

enum class DoctorFormat : std::uint8_t { kText, kJson };

// Writes the findings of an examination as they come, a line each: for people in aligned columns
// with cause and remedy below, or for programs as JSON objects. Masks passwords. Keeps count of
// them.
class DoctorReport {
 public:
  DoctorReport(std::ostream& out, DoctorFormat format) : out_(out), format_(format) {}

  // The findings that follow belong to this service.
  void begin(const std::string& service);

  void add(std::string_view step, Finding finding);

  // What the first failure stands for; kOk when nothing has failed.
  ExitCode exitCode() const { return exitCode_; }
  // "1 step failed, 8 were skipped"
  std::string summary() const;

 private:
  void writeText(std::string_view step, const Finding& finding);
  void writeJson(std::string_view step, const Finding& finding);

  std::ostream& out_;
  DoctorFormat format_;
  std::string service_;
  ExitCode exitCode_ = ExitCode::kOk;
  int failed_ = 0;
  int skipped_ = 0;
  bool empty_ = true;
};

}  // namespace zeldb
