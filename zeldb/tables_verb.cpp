#include "zeldb/tables_verb.h"

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>

#include "datatypes/type_code.h"
#include "zeldb/connector.h"
#include "zeldb/service_argument.h"

namespace zeldb {

CLI::App* TablesVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand("tables", "List the tables and views of a service");
  addServiceArgument(*verb, service_);
  verb->add_option("--schema", schema_, "Only the tables of this schema");
  addOutputOptions(*verb, output_);
  return verb;
}

void TablesVerb::run(Connector& connector) {
  const auto session = connector.connect(connector.service(service_));
  const auto names = session->tableNames(schema_);
  const auto writer = makeRowWriter(output_, std::cout);
  writer->begin({{"name", DataTypes::kString}});
  for (const std::string& name : names) {
    DataTypes::DataValue value;
    value.string = name.c_str();
    writer->row({&value, 1});
  }
  writer->end();
}

}  // namespace zeldb
