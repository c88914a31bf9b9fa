#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zeldb/connector.h"
#include "zeldb/failure.h"
#include "zeldb/help_format.h"
#include "zeldb/interrupt.h"
#include "zeldb/messages.h"
#include "zeldb/verb.h"
#include "zeldb/watchdog.h"

namespace {

using zeldb::complain;
using zeldb::ExitCode;
using zeldb::MessageFormat;

constexpr double kMaxSeconds = 1e8;

struct CommandLine {
  CLI::App app{"Checks data services, and moves data into them, out of them and between them.",
               "zeldb"};
  zeldb::ConnectorOptions connector;
  std::string logLevel = "warning";
  MessageFormat logFormat = MessageFormat::kText;
  double timeoutSeconds = 0;
  std::vector<std::pair<CLI::App*, std::unique_ptr<zeldb::Verb>>> verbs;

  CommandLine() {
    app.formatter(std::make_shared<zeldb::HelpFormat>());
    app.footer(zeldb::kExitCodeHelp);
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", ZELDB_VERSION);
    app.add_option("--services", connector.services, "Services file")
        ->type_name("FILE")
        ->capture_default_str();
    app.add_option("--driver", connector.driver, "Driver plug-in, if not the one beside the tool")
        ->type_name("FILE");
    app.add_option("--log-level", logLevel, "How much is logged")
        ->check(CLI::IsMember({"debug", "info", "warning", "error"}))
        ->capture_default_str();
    app.add_option("--log-format", logFormat, "Messages as text, or as a JSON object a line")
        ->transform(CLI::CheckedTransformer(std::map<std::string, MessageFormat>{
            {"text", MessageFormat::kText}, {"json", MessageFormat::kJson}}))
        ->default_str("text");
    app.add_option("--timeout", timeoutSeconds, "Seconds after which the work is given up")
        ->check(CLI::Range(0.0, kMaxSeconds));
    for (auto& verb : zeldb::makeVerbs()) {
      CLI::App* const declared = verb->declare(app);
      verbs.emplace_back(declared, std::move(verb));
    }
  }

  zeldb::Verb& chosen() const {
    for (const auto& [declared, verb] : verbs) {
      if (declared->parsed()) {
        return *verb;
      }
    }
    throw zeldb::Failure(ExitCode::kUsage, "no verb");
  }
};

int run(int argc, char** argv) {
  CommandLine line;
  try {
    line.app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
      return line.app.exit(error);
    }
    return complain(ExitCode::kUsage, error.what());
  }
  zeldb::startMessages(line.logLevel, line.logFormat);
  zeldb::Interrupt::watch();
  const zeldb::Watchdog watchdog(line.timeoutSeconds);
  zeldb::Connector connector(line.connector);
  line.chosen().run(connector);
  std::cout.flush();
  return std::cout ? static_cast<int>(ExitCode::kOk)
                   : complain(ExitCode::kFile, "standard output cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const zeldb::Failure& failure) {
    std::cout.flush();
    return complain(failure.exitCode(), failure.what());
  } catch (const std::exception& error) {
    return complain(ExitCode::kUsage, error.what());
  }
}
