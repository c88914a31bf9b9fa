#include "zeldb/doctor_reach.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "zeldb/server_probe.h"

namespace zeldb {
namespace {

constexpr std::string_view kInMemory = ":memory:";

std::string hostsOf(const DoctorPatient& patient) {
  const std::string hosts = patient.source.section->value(patient.driver->hostKey);
  return hosts.empty() ? patient.source.section->value(patient.driver->otherHostKey) : hosts;
}

std::string portOf(const DoctorPatient& patient) {
  const std::string port = patient.source.section->value(patient.driver->portKey);
  return port.empty() ? std::string(patient.driver->defaultPort) : port;
}

// "a:1,b" is two servers, the second with the port of the key.
std::vector<ServerAddress> addressesOf(const DoctorPatient& patient) {
  std::vector<ServerAddress> addresses;
  const std::string hosts = hostsOf(patient);
  for (std::size_t begin = 0; begin < hosts.size();) {
    const std::size_t end = std::min(hosts.find(',', begin), hosts.size());
    const std::string one = hosts.substr(begin, end - begin);
    const std::size_t colon = one.find(':');
    const bool withPort = colon != std::string::npos && colon == one.rfind(':');
    addresses.push_back(withPort ? ServerAddress{one.substr(0, colon), one.substr(colon + 1)}
                                 : ServerAddress{one, portOf(patient)});
    begin = end + 1;
  }
  return addresses;
}

Advice adviceFor(const DoctorPatient& patient, const ServerAddress& address, Reach reach) {
  const OdbcDriver& driver = *patient.driver;
  const std::string where = address.toString();
  const std::string correct =
      fmt::format("correct {} and {} of {}", driver.hostKey, driver.portKey, patient.names.section);
  switch (reach) {
    case Reach::kRefused:
      return {fmt::format("nothing listens on {}: the server is down, or the port is wrong", where),
              fmt::format("start {} there ({}), or {}", driver.database, driver.start, correct)};
    case Reach::kTimeout:
      return {
          fmt::format("{} does not answer: a firewall, a machine that is off, or a wrong address",
                      where),
          fmt::format("look whether the machine is on and its firewall open, or {}", correct)};
    case Reach::kUnknownName:
      return {fmt::format("the name \"{}\" has no address", address.host), correct};
    case Reach::kStranger:
      return {fmt::format("what listens on {} is no {}", where, driver.database), correct};
    case Reach::kSilent:
      return {fmt::format("{} accepts a connection, but does not greet as {} does", where,
                          driver.database),
              fmt::format("look whether the server hangs, give it more --seconds, or {}", correct)};
    default:
      return {fmt::format("{} cannot be reached", where), correct};
  }
}

std::string describe(const ServerAddress& address, const ProbeResult& result) {
  constexpr std::string_view kWords[] = {"answers", "is silent",       "is something else",
                                         "refuses", "does not answer", "is unknown",
                                         "fails"};
  const auto* const word = kWords + static_cast<std::size_t>(result.reach);
  return result.reason.empty() || result.reach == Reach::kTimeout
             ? fmt::format("{} {}", address.toString(), *word)
             : fmt::format("{} {}: {}", address.toString(), *word, result.reason);
}

// When the port of the data source is refused and the database's own answers.
std::string ownPortHint(const DoctorPatient& patient, const ServerAddress& address) {
  const OdbcDriver& driver = *patient.driver;
  const ServerAddress own{address.host, std::string(driver.defaultPort)};
  const bool answers =
      own.port != address.port &&
      probeServer(own, driver.greeting, patient.networkLimit).reach == Reach::kReached;
  return answers ? fmt::format("; {} answers on its own port: {}={}", driver.database,
                               driver.portKey, own.port)
                 : std::string();
}

Finding checkServers(DoctorPatient& patient) {
  std::vector<std::string> seen;
  Advice advice;
  bool reached = false;
  Reach worst = Reach::kReached;
  for (const ServerAddress& address : addressesOf(patient)) {
    const ProbeResult result = probeServer(address, patient.driver->greeting, patient.networkLimit);
    reached = reached || result.reach == Reach::kReached;
    seen.push_back(describe(address, result));
    if (result.reach != Reach::kReached && worst == Reach::kReached) {
      worst = result.reach;
      advice = adviceFor(patient, address, result.reach);
      if (result.reach == Reach::kRefused) {
        advice.remedy += ownPortHint(patient, address);
      }
    }
  }
  const std::string all = fmt::format("{}", fmt::join(seen, "; "));
  if (worst == Reach::kReached) {
    return Finding::ok(all);
  }
  if (!reached) {
    return Finding::failed(ExitCode::kConnect, all, std::move(advice));
  }
  advice.cause += seen.size() > 1 ? "; the driver goes on to the next in the list" : "";
  return Finding::warning(all, std::move(advice));
}

Finding checkFile(DoctorPatient& patient) {
  const std::string name = patient.source.section->value("Database");
  if (name.empty() || name == kInMemory) {
    return Finding::warning(
        "the database is in memory",
        {"what is written is gone with the connection",
         fmt::format("set Database=FILE in {} to keep it", patient.names.section)});
  }
  const std::filesystem::path file(name);
  const std::filesystem::path folder = std::filesystem::absolute(file).parent_path();
  const std::string correct = fmt::format("correct Database of {}", patient.names.section);
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    return Finding::failed(ExitCode::kConnect, fmt::format("{} is not there", folder.string()),
                           {"the folder of the database's file is missing",
                            fmt::format("mkdir -p {}, or {}", folder.string(), correct)});
  }
  if (std::filesystem::is_directory(file, error)) {
    return Finding::failed(ExitCode::kConnect, fmt::format("{} is a folder", name),
                           {"Database must name a file", correct});
  }
  const bool exists = std::filesystem::exists(file, error);
  if ((exists && access(file.c_str(), R_OK) != 0) || access(folder.c_str(), X_OK) != 0) {
    return Finding::failed(ExitCode::kConnect, fmt::format("{} cannot be read", name),
                           {"this user has not the right to read the file",
                            fmt::format("chmod u+rw {} as its owner, or {}", name, correct)});
  }
  if (access(folder.c_str(), W_OK) != 0 || (exists && access(file.c_str(), W_OK) != 0)) {
    return Finding::warning(
        fmt::format("{} can be read, not written", name),
        {"writing needs the right to write to the file and to its folder",
         fmt::format("give the user the right to write to {} and the file", folder.string())});
  }
  if (!exists) {
    patient.newFile = file;
    return Finding::warning(fmt::format("{} is not there", name),
                            {"the driver makes a new, empty database",
                             fmt::format("{}, or go on with a new one", correct)});
  }
  return Finding::ok(fmt::format("{}, {} bytes, can be read and written", name,
                                 std::filesystem::file_size(file, error)));
}

}  // namespace

Finding checkReach(DoctorPatient& patient) {
  if (patient.driver->kind == DriverKind::kSqlite) {
    return checkFile(patient);
  }
  if (patient.driver->kind == DriverKind::kAny) {
    return Finding::ok("not looked at: the driver's keys are not known");
  }
  const std::string hosts = hostsOf(patient);
  patient.names.server =
      hosts.empty() ? "the server's socket" : addressesOf(patient).front().toString();
  if (hosts.empty() || hosts.starts_with('/') ||
      (patient.driver->kind == DriverKind::kMariadb && hosts == "localhost")) {
    return Finding::ok("not looked at: the driver uses a socket of this machine");
  }
  return checkServers(patient);
}

}  // namespace zeldb
