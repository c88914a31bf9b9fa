#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "zeldb/connector.h"
#include "zeldb/odbc_configuration.h"
#include "zeldb/remedy.h"

namespace zeldb {

// What the steps of an examination have found out about a service so far; each step leaves what
// later ones need.
struct DoctorPatient {
  Connector& connector;
  std::string serviceName;
  std::chrono::milliseconds networkLimit;

  OdbcConfiguration odbc = {};
  Service service = {};                  // when the step "service" is passed
  OdbcConfiguration::Place source = {};  // when "data source" is passed
  const OdbcDriver* driver = &kOdbcDrivers.back();
  RemedyNames names = {};

  struct Opened {
    int generation;
    std::unique_ptr<Session> session;
  };
  // Sessions log through one chain: the last opened is closed first.
  std::vector<Opened> sessions = {};
  std::filesystem::path newFile = {};  // not there before; an empty one is removed in the end

  ~DoctorPatient() {
    while (!sessions.empty()) {
      sessions.pop_back();
    }
    std::error_code error;
    if (!newFile.empty() && std::filesystem::file_size(newFile, error) == 0) {
      std::filesystem::remove(newFile, error);
    }
  }
};

}  // namespace zeldb
