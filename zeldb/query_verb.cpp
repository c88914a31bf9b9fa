#include "zeldb/query_verb.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>

#include "zeldb/connector.h"
#include "zeldb/generation_option.h"
#include "zeldb/query_parameters.h"
#include "zeldb/row_copying.h"
#include "zeldb/service_argument.h"
#include "zeldb/statement_kind.h"

namespace zeldb {

CLI::App* QueryVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand("query", "Run a statement and show its rows");
  addServiceArgument(*verb, service_);
  verb->add_option("SQL", sql_, "The statement, with ? for each parameter")->required();
  verb->add_option("--param", params_, "TYPE:VALUE of the next ?; TYPE alone is NULL")
      ->allow_extra_args(false);
  addOutputOptions(*verb, output_);
  addGenerationOption(*verb, generation_);
  return verb;
}

void QueryVerb::run(Connector& connector) {
  const QueryParameters params(params_);
  const auto session = connector.connect(connector.service(service_), generation_);
  if (isUpdateStatement(sql_)) {
    const auto rows = session->update(sql_, params.values());
    session->commit();
    std::cout << (rows < 0 ? "done\n"
                           : fmt::format("{} row{} changed\n", rows, rows == 1 ? "" : "s"));
  } else {
    writeRows(*session, sql_, params.values());
    session->commit();
  }
}

void QueryVerb::writeRows(Session& session, const std::string& sql,
                          const Parameters& params) const {
  const auto rows = session.query(sql, params);
  if (rows->columns().empty()) {
    std::cout << "done\n";
    return;
  }
  copyRows(*rows, *makeRowWriter(output_, std::cout));
}

}  // namespace zeldb
