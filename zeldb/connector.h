#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "zeldb/first_generation_session.h"
#include "zeldb/plug_in.h"
#include "zeldb/service.h"
#include "zeldb/session.h"

namespace zeldb {

// Where services and the driver plug-in come from.
struct ConnectorOptions {
  std::filesystem::path services = "zeldb.toml";
  std::filesystem::path driver = PlugIn::defaultLibrary();
};

// Opens sessions to the services of the services file. Must outlive them: it holds the plug-in.
class Connector {
 public:
  explicit Connector(ConnectorOptions options) : options_(std::move(options)) {}

  const ConnectorOptions& options() const { return options_; }

  // Throws Failure when there is no such service.
  Service service(const std::string& name) const;

  // Loads the plug-in when it is not yet, and connects. Throws Failure.
  std::unique_ptr<FirstGenerationSession> connect(const Service& service);
  // The same over the driver's interface of the generation, 1 or 2.
  std::unique_ptr<Session> connect(const Service& service, int generation);

 private:
  KORVEX::Zel::DB::Driver& driver();

  ConnectorOptions options_;
  std::optional<PlugIn> plugIn_;
};

}  // namespace zeldb
