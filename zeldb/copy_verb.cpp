#include "zeldb/copy_verb.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "zeldb/connector.h"
#include "zeldb/failure.h"
#include "zeldb/generation_option.h"
#include "zeldb/insert_plan.h"
#include "zeldb/load_monitor.h"
#include "zeldb/load_run.h"
#include "zeldb/patient_connection.h"
#include "zeldb/table_records.h"

namespace zeldb {
namespace {

struct Place {
  std::string service;
  std::string table;
};

// The table may have a schema before it, with a dot of its own.
Place placeFrom(const std::string& text) {
  const std::size_t dot = text.find('.');
  if (dot == 0 || dot == std::string::npos || dot + 1 == text.size()) {
    throw Failure(ExitCode::kUsage, fmt::format("\"{}\" is not SERVICE.TABLE", text));
  }
  return {text.substr(0, dot), text.substr(dot + 1)};
}

}  // namespace

CLI::App* CopyVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand("copy", "Insert the rows of one table into another");
  verb->add_option("FROM", from_, "Table that is read")->required()->type_name("SERVICE.TABLE");
  verb->add_option("TO", to_, "Table that exists, with columns of the same names")
      ->required()
      ->type_name("SERVICE.TABLE");
  addLoadOptions(*verb, options_);
  addGenerationOption(*verb, generation_);
  return verb;
}

void CopyVerb::run(Connector& connector) {
  const Place from = placeFrom(from_);
  const Place to = placeFrom(to_);
  LoadMonitor monitor("copy", to.service, to.table, options_);
  monitor.watch([&] {
    const Service target = connector.service(to.service);
    const Service origin = connector.service(from.service);
    const auto source = connectPatiently(options_, monitor.counts(),
                                         [&] { return connector.connect(origin, generation_); });
    const auto rows = source->readTable(from.table);
    TableRecords records(*rows, from_);
    CsvRecord header;
    records.next(header);
    auto session =
        connectPatiently(options_, monitor.counts(), [&] { return connector.connect(target); });
    const InsertPlan plan = planInsert(*session, to.table, records, header, {});
    session.reset();
    const auto connect = [&] { return connector.connect(target, generation_); };
    runLoader(records, {connect, to.table, plan}, options_, monitor,
              fmt::format("{} to {}", options_.dryRun ? "would be copied" : "copied", to_));
  });
}

}  // namespace zeldb
