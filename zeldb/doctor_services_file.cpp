#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

#include "zeldb/doctor_files.h"
#include "zeldb/failure.h"
#include "zeldb/nearest_name.h"
#include "zeldb/services_file.h"

namespace zeldb {
namespace {

using Entry = ServicesFile::Entry;

mode_t permissions(const std::filesystem::path& file) {
  struct stat about = {};
  return stat(file.c_str(), &about) == 0 ? about.st_mode & 0777 : 0;
}

std::filesystem::path passwordFile(const DoctorPatient& patient, const std::string& name) {
  return patient.connector.options().services.parent_path() / name;
}

// A file with a password that others may read.
struct Exposed {
  std::filesystem::path file;
  mode_t mode;
};

std::vector<Exposed> exposedFiles(const DoctorPatient& patient, const std::vector<Entry>& entries) {
  std::vector<std::filesystem::path> secret;
  for (const Entry& entry : entries) {
    if (entry.keys.contains("Password")) {
      secret.push_back(patient.connector.options().services);
    }
    if (const auto file = entry.keys.find("password_file"); file != entry.keys.end()) {
      secret.push_back(passwordFile(patient, file->second));
    }
  }
  std::sort(secret.begin(), secret.end());
  secret.erase(std::unique(secret.begin(), secret.end()), secret.end());
  std::vector<Exposed> exposed;
  for (const std::filesystem::path& file : secret) {
    if (const mode_t mode = permissions(file); (mode & (S_IRGRP | S_IROTH)) != 0) {
      exposed.push_back({file, mode});
    }
  }
  return exposed;
}

// What to do about a service that cannot be read, when its entry tells.
std::string remedyFor(const DoctorPatient& patient, const Entry& entry) {
  const std::vector<std::string> known = ServicesFile::knownKeys();
  for (const auto& [key, value] : entry.keys) {
    if (std::find(known.begin(), known.end(), key) == known.end()) {
      const auto meant = nearestName(key, known);
      return meant ? fmt::format("write {} for {}", *meant, key)
                   : fmt::format("remove {}; the keys are {}", key, fmt::join(known, ", "));
    }
    if (key == "password_env" && std::getenv(value.c_str()) == nullptr) {
      return fmt::format("set and export {} before zeldb starts, or use password_file", value);
    }
    if (key == "password_file" && !std::filesystem::exists(passwordFile(patient, value))) {
      return fmt::format("write the password into {}, with chmod 600",
                         passwordFile(patient, value).string());
    }
  }
  return "correct the line; a service needs DSN and User, and at most one password";
}

std::string passwordSource(const Entry& entry) {
  for (const char* const key : {"password_env", "password_file"}) {
    if (const auto found = entry.keys.find(key); found != entry.keys.end()) {
      return fmt::format("password from {} {}", key + 9, found->second);
    }
  }
  return entry.keys.contains("Password") ? "password in the file" : "no password";
}

}  // namespace

Finding checkServicesFile(DoctorPatient& patient) {
  const std::filesystem::path& path = patient.connector.options().services;
  patient.names.services = path.string();
  try {
    const auto entries = ServicesFile(path).entries();
    return Finding::ok(fmt::format("{}, {} service{}", path.string(), entries.size(),
                                   entries.size() == 1 ? "" : "s"));
  } catch (const Failure& failure) {
    std::error_code error;
    const bool exists = std::filesystem::exists(path, error);
    return Finding::failed(
        failure.exitCode(), failure.what(),
        exists ? Advice{"the file is no TOML, or may not be read", "correct the line named"}
               : Advice{"there is no such file",
                        "write it, or name another with --services; the README shows one"});
  }
}

Finding checkPermissions(DoctorPatient& patient) {
  const std::filesystem::path& path = patient.connector.options().services;
  const auto exposed = exposedFiles(patient, ServicesFile(path).entries());
  if (exposed.empty()) {
    return Finding::ok(
        fmt::format("mode {:o}; no password is there for others", permissions(path)));
  }
  std::vector<std::string> files;
  mode_t mode = 0;
  for (const Exposed& one : exposed) {
    files.push_back(one.file.string());
    mode |= one.mode;
  }
  const std::string names = fmt::format("{}", fmt::join(files, " "));
  const std::string seen = fmt::format("mode {:o} of {}", mode, names);
  const bool everybody = (mode & S_IROTH) != 0;
  Advice advice{
      fmt::format("{} can read a password in {}", everybody ? "everybody" : "the group", names),
      fmt::format("chmod 600 {}", names)};
  return everybody ? Finding::failed(ExitCode::kUsage, seen, std::move(advice))
                   : Finding::warning(seen, std::move(advice));
}

Finding checkService(DoctorPatient& patient) {
  const ServicesFile file(patient.connector.options().services);
  const std::vector<Entry> entries = file.entries();
  const auto entry = std::find_if(entries.begin(), entries.end(), [&](const Entry& candidate) {
    return candidate.name == patient.serviceName;
  });
  try {
    patient.service = file.find(patient.serviceName);
  } catch (const Failure& failure) {
    if (entry != entries.end()) {
      return Finding::failed(
          failure.exitCode(), failure.what(),
          {"the service's keys cannot be used as they are", remedyFor(patient, *entry)});
    }
    std::vector<std::string> names;
    names.reserve(entries.size());
    for (const Entry& other : entries) {
      names.push_back(other.name);
    }
    const auto meant = nearestName(patient.serviceName, names);
    return Finding::failed(
        failure.exitCode(), fmt::format("\"{}\" is not there", patient.serviceName),
        {fmt::format("{} has {}", patient.names.services, quotedList(names)),
         meant
             ? fmt::format("zeldb doctor {}", *meant)
             : fmt::format("add a table [{}] to {}", patient.serviceName, patient.names.services)});
  }
  const auto& properties = patient.service.properties;
  patient.names.dsn = fmt::format("DSN \"{}\"", properties.at("DSN"));
  patient.names.user = fmt::format("user \"{}\"", properties.at("User"));
  return Finding::ok(
      fmt::format("{}, {}, {}", patient.names.dsn, patient.names.user, passwordSource(*entry)));
}

}  // namespace zeldb
