#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

#include "zeldb/doctor_files.h"
#include "zeldb/driver_library.h"
#include "zeldb/nearest_name.h"

namespace zeldb {
namespace {

// The longest name of a data source that the driver manager takes.
constexpr std::size_t kLongestSourceName = 32;

std::string described(const OdbcIni& file, std::string_view what) {
  switch (file.state()) {
    case OdbcIni::State::kMissing:
      return fmt::format("{} is not there", file.path().string());
    case OdbcIni::State::kUnreadable:
      return fmt::format("{} cannot be read: {}", file.path().string(), file.reason());
    default:
      return fmt::format("{} has {} {}{}", file.path().string(), file.names().size(), what,
                         file.names().size() == 1 ? "" : "s");
  }
}

Advice unreadable(const OdbcIni& file) {
  return {fmt::format("the driver manager cannot read {} either", file.path().string()),
          fmt::format("chmod a+r {}, or correct the variable that names it", file.path().string())};
}

// The section's Driver, followed to a file. The path is empty when that leads nowhere.
struct DriverFile {
  std::filesystem::path path;
  const OdbcIniSection* section = nullptr;  // of odbcinst.ini
  Advice advice;
};

DriverFile driverInList(const DoctorPatient& patient, const std::string& name) {
  const OdbcIni& drivers = patient.odbc.drivers();
  const std::string list = drivers.path().string();
  DriverFile file{{}, drivers.find(name), {}};
  if (file.section == nullptr) {
    const auto installed = installedDrivers(name);
    const auto meant = nearestName(name, drivers.names());
    file.advice = {
        fmt::format("Driver={} is no path, and {} has no section [{}]; it has {}", name, list, name,
                    quotedList(drivers.names())),
        !installed.empty()
            ? fmt::format("write Driver={} in {}", installed[0].string(), patient.names.section)
        : meant ? fmt::format("write Driver={} in {}", *meant, patient.names.section)
                : fmt::format("write the path of the driver's file in {}", patient.names.section)};
    return file;
  }
  const std::string wide = file.section->value("Driver64");
  file.path = wide.empty() ? file.section->value("Driver") : wide;
  if (file.path.empty()) {
    file.advice = {fmt::format("section [{}] of {} has no Driver", name, list),
                   fmt::format("write Driver=PATH there")};
  } else if (!file.path.is_absolute()) {
    // A name alone is looked for where drivers are installed.
    const auto installed = installedDrivers(file.path);
    file.path = installed.empty() ? file.path : installed[0];
  }
  return file;
}

DriverFile driverFile(const DoctorPatient& patient) {
  const std::string name = patient.source.section->value("Driver");
  if (name.empty()) {
    return {{},
            nullptr,
            {fmt::format("{} has no Driver", patient.names.section),
             fmt::format("write Driver=PATH or a name of {} there",
                         patient.odbc.drivers().path().string())}};
  }
  return name.starts_with('/') ? DriverFile{name, nullptr, {}} : driverInList(patient, name);
}

Finding missingFile(const DoctorPatient& patient, const DriverFile& file) {
  const OdbcDriver& driver = driverOfFile(file.path.string());
  const auto elsewhere = installedDrivers(file.path.filename());
  std::string remedy =
      !elsewhere.empty() ? fmt::format("write Driver={}", elsewhere[0].string())
      : driver.package.empty()
          ? fmt::format("install the driver, or correct Driver of {}", patient.names.section)
          : fmt::format("apt-get install {}, or correct Driver of {}", driver.package,
                        patient.names.section);
  return Finding::failed(ExitCode::kUsage, fmt::format("{} is not there", file.path.string()),
                         {"the driver is not installed, or its path is wrong", std::move(remedy)});
}

bool isWrong(const SettingAdvice& row, const std::string& value) {
  return equalIgnoringCase(value, row.value) == (row.rule == SettingRule::kMustNotBe);
}

}  // namespace

Finding checkDriverList(DoctorPatient& patient) {
  const OdbcIni& file = patient.odbc.drivers();
  const char* const name = std::getenv("ODBCINSTINI");
  if (name != nullptr && *name == '/' && file.state() != OdbcIni::State::kRead) {
    return Finding::warning(described(file, "driver"),
                            {"ODBCINSTINI is a path, but counts from ODBCSYSINI or /etc",
                             "set ODBCSYSINI to the folder, and ODBCINSTINI to the file's name"});
  }
  if (file.state() == OdbcIni::State::kRead) {
    return Finding::ok(described(file, "driver"));
  }
  return Finding::warning(described(file, "driver"),
                          file.state() == OdbcIni::State::kUnreadable
                              ? unreadable(file)
                              : Advice{"no driver can be named then; a data source must give the "
                                       "path of its driver",
                                       "correct ODBCSYSINI, or install a driver's package"});
}

Finding checkSourceLists(DoctorPatient& patient) {
  const OdbcIni& own = patient.odbc.userSources();
  const OdbcIni& system = patient.odbc.systemSources();
  const std::string seen =
      own.path() == system.path()
          ? described(own, "data source")
          : fmt::format("{}; {}", described(own, "data source"), described(system, "data source"));
  for (const OdbcIni* const file : {&own, &system}) {
    if (file->state() == OdbcIni::State::kUnreadable) {
      return Finding::warning(seen, unreadable(*file));
    }
  }
  if (patient.odbc.sourceNames().empty()) {
    return Finding::failed(
        ExitCode::kUsage, seen,
        {"there is no data source at all",
         fmt::format("write a section with Driver and the place of the database into {}, or set "
                     "ODBCINI to the file that has one; docs/databases.md shows what it needs",
                     own.path().string())});
  }
  return Finding::ok(seen);
}

Finding checkDataSource(DoctorPatient& patient) {
  const std::string& name = patient.service.properties.at("DSN");
  patient.source = patient.odbc.findSource(name);
  if (name.size() > kLongestSourceName) {
    return Finding::failed(
        ExitCode::kUsage, fmt::format("\"{}\" has {} characters", name, name.size()),
        {"the name of a data source may have 32 characters",
         fmt::format("give it a shorter name in odbc.ini and {}", patient.names.services)});
  }
  if (patient.source.section == nullptr) {
    const std::vector<std::string> names = patient.odbc.sourceNames();
    const auto meant = nearestName(name, names);
    const std::string own = patient.odbc.userSources().path().string();
    return Finding::failed(
        ExitCode::kUsage, fmt::format("\"{}\" is not there", name),
        {fmt::format("the service names {}; there is {}", patient.names.dsn, quotedList(names)),
         meant ? fmt::format("write DSN = \"{}\" in {}", *meant, patient.names.services)
               : fmt::format("add a section [{}] to {}, or correct DSN in {}", name, own,
                             patient.names.services)});
  }
  patient.names.section =
      fmt::format("[{}] in {}", patient.source.section->name, patient.source.file->path().string());
  if (const std::string database = patient.source.section->value("Database"); !database.empty()) {
    patient.names.database = fmt::format("database \"{}\"", database);
  }
  const DriverFile file = driverFile(patient);
  patient.driver = &driverOfFile(file.path.empty() ? patient.source.section->value("Driver")
                                                   : file.path.string());
  return Finding::ok(patient.names.section);
}

Finding checkDriver(DoctorPatient& patient) {
  const DriverFile file = driverFile(patient);
  if (file.path.empty() || !file.advice.cause.empty()) {
    return Finding::failed(ExitCode::kUsage, "no file", file.advice);
  }
  std::error_code error;
  if (!std::filesystem::exists(file.path, error) && file.path.is_absolute()) {
    return missingFile(patient, file);
  }
  const std::string path = file.path.string();
  if (file.path.is_absolute()) {
    if (const auto reason = whyNoLibrary(file.path)) {
      return Finding::failed(ExitCode::kUsage, fmt::format("{}: {}", path, *reason),
                             {"the driver manager loads shared libraries for this machine only",
                              fmt::format("correct Driver of {}", patient.names.section)});
    }
  }
  if (const auto reason = whyNotLoadable(file.path)) {
    return file.path.is_absolute()
               ? Finding::failed(ExitCode::kUsage, fmt::format("{}: {}", path, *reason),
                                 {"a library that the driver needs is missing or does not fit",
                                  "install the driver's package anew with what it depends on"})
               : missingFile(patient, file);
  }
  return Finding::ok(fmt::format("{}, its libraries are there", path));
}

Finding checkSettings(DoctorPatient& patient) {
  const DriverFile file = driverFile(patient);
  std::vector<std::string> causes;
  std::vector<std::string> remedies;
  for (const SettingAdvice& row : kSettingAdvice) {
    const bool ofDriver = row.place == SettingPlace::kDriver;
    const OdbcIniSection* const section = ofDriver ? file.section : patient.source.section;
    const bool applies = row.kind == DriverKind::kAny || row.kind == patient.driver->kind;
    if (section == nullptr || !applies || !isWrong(row, section->value(row.key))) {
      continue;
    }
    const std::string value = section->value(row.key);
    causes.push_back(fmt::format(
        "{}: {}",
        value.empty() ? fmt::format("no {}", row.key) : fmt::format("{}={}", row.key, value),
        row.cause));
    remedies.push_back(fmt::format("{} {}={} in [{}]",
                                   row.rule == SettingRule::kMustBe ? "set" : "remove", row.key,
                                   row.value, section->name));
  }
  if (causes.empty()) {
    return Finding::ok("no key that is known to do harm");
  }
  return Finding::warning(
      fmt::format("{} to look at", causes.size()),
      {fmt::format("{}", fmt::join(causes, "; ")), fmt::format("{}", fmt::join(remedies, "; "))});
}

}  // namespace zeldb
