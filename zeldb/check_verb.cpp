#include "zeldb/check_verb.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <iostream>

#include "zeldb/connector.h"
#include "zeldb/service_argument.h"

namespace zeldb {

CLI::App* CheckVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand("check", "Connect to a service");
  addServiceArgument(*verb, service_);
  return verb;
}

void CheckVerb::run(Connector& connector) {
  const Service service = connector.service(service_);
  const auto started = std::chrono::steady_clock::now();
  const auto session = connector.connect(service);
  const std::chrono::duration<double, std::milli> taken =
      std::chrono::steady_clock::now() - started;
  const auto line = [](const char* name, const std::string& text) {
    std::cout << fmt::format("{:<15}{}\n", name, text);
  };
  line("service", service.name);
  line("data source", service.properties.at("DSN"));
  line("user", service.properties.at("User"));
  line("driver", connector.options().driver.string());
  line("database type", session->databaseType());
  line("safe transfer", service.properties.at("SafeTransfer") == "true" ? "on" : "off");
  line("connected in", fmt::format("{:.1f} ms", taken.count()));
}

}  // namespace zeldb
