#include "zeldb/doctor_verb.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iostream>
#include <map>

#include "zeldb/doctor_files.h"
#include "zeldb/doctor_reach.h"
#include "zeldb/doctor_report.h"
#include "zeldb/doctor_sessions.h"
#include "zeldb/failure.h"
#include "zeldb/interrupt.h"
#include "zeldb/services_file.h"

namespace zeldb {
namespace {

struct Step {
  std::string_view name;
  std::array<std::string_view, 3> needs;  // steps that must not have failed, up to three
  Finding (*check)(DoctorPatient&);
};

constexpr std::array<Step, 21> kSteps = {{
    {"services file", {}, checkServicesFile},
    {"permissions", {"services file"}, checkPermissions},
    {"service", {"services file"}, checkService},
    {"odbcinst.ini", {}, checkDriverList},
    {"odbc.ini", {}, checkSourceLists},
    {"data source", {"service", "odbc.ini"}, checkDataSource},
    {"driver", {"data source"}, checkDriver},
    {"settings", {"data source"}, checkSettings},
    {"reach", {"data source"}, checkReach},
    {"plug-in", {}, checkPlugIn},
    {"login 1", {"driver", "reach", "plug-in"}, checkLogin1},
    {"login 2", {"login 1"}, checkLogin2},
    {"statement", {"login 1"}, checkStatement},
    {"parameters", {"statement", "login 2"}, checkParameters},
    {"scratch table", {"statement"}, checkScratchTable},
    {"text", {"scratch table"}, checkText},
    {"NULL", {"scratch table"}, checkNull},
    {"decimal", {"scratch table"}, checkDecimal},
    {"microseconds", {"scratch table"}, checkMicroseconds},
    {"batch", {"scratch table", "parameters"}, checkBatch},
    {"bad row", {"batch"}, checkBadRow},
}};

void examine(DoctorPatient& patient, DoctorReport& report) {
  std::map<std::string_view, std::string_view> missed;  // and the failed step that is to blame
  for (const Step& step : kSteps) {
    Interrupt::check();
    const auto* const lacking =
        std::find_if(step.needs.begin(), step.needs.end(),
                     [&](std::string_view need) { return missed.contains(need); });
    const bool able = lacking == step.needs.end();
    const Finding finding =
        able ? step.check(patient)
             : Finding::skipped(fmt::format("because \"{}\" has failed", missed[*lacking]));
    if (!able || finding.status == StepStatus::kFailed) {
      missed[step.name] = able ? step.name : missed[*lacking];
    }
    report.add(step.name, finding);
  }
}

// The services to examine. A file that cannot be read is a finding of the examination.
std::vector<std::string> chosenServices(const std::string& given, const Connector& connector) {
  if (!given.empty()) {
    return {given};
  }
  std::vector<std::string> names;
  try {
    for (const auto& entry : ServicesFile(connector.options().services).entries()) {
      names.push_back(entry.name);
    }
  } catch (const Failure&) {
    return {""};
  }
  if (names.empty()) {
    throw Failure(ExitCode::kUsage, fmt::format("{}: there is no service in it",
                                                connector.options().services.string()));
  }
  return names;
}

}  // namespace

CLI::App* DoctorVerb::declare(CLI::App& app) {
  CLI::App* const verb =
      app.add_subcommand("doctor", "Examine services step by step, and say what to mend");
  verb->add_option("SERVICE", service_, "Name in the services file; all when not given")
      ->type_name("SERVICE");
  verb->add_option("--format", format_, "How the findings are written")
      ->check(CLI::IsMember({"text", "json"}))
      ->capture_default_str();
  verb->add_option("--seconds", seconds_, "How long a server may take to answer")
      ->check(CLI::Range(0.1, 600.0))
      ->capture_default_str();
  return verb;
}

void DoctorVerb::run(Connector& connector) {
  DoctorReport report(std::cout, format_ == "json" ? DoctorFormat::kJson : DoctorFormat::kText);
  const auto limit = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::duration<double>(seconds_));
  for (const std::string& name : chosenServices(service_, connector)) {
    report.begin(name);
    DoctorPatient patient{.connector = connector, .serviceName = name, .networkLimit = limit};
    examine(patient, report);
  }
  if (report.exitCode() != ExitCode::kOk) {
    throw Failure(report.exitCode(), report.summary());
  }
}

}  // namespace zeldb
