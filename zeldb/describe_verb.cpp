#include "zeldb/describe_verb.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>

#include "datatypes/types.h"
#include "zeldb/column_type.h"
#include "zeldb/connector.h"
#include "zeldb/failure.h"
#include "zeldb/service_argument.h"

namespace zeldb {
namespace {

using DataTypes::DataValue;

DataValue text(const std::string& string) {
  DataValue value;
  value.string = string.c_str();
  return value;
}

// NULL where the number says nothing.
DataValue number(int number, bool known) {
  DataValue value;
  value.int32 = number;
  value.null = known ? 0 : 1;
  return value;
}

DataValue flag(bool set) {
  DataValue value;
  value.boolean = set ? 1 : 0;
  return value;
}

void writeColumn(const TableColumn& column, RowWriter& writer) {
  // Decimals without digits have no name of their own.
  const std::string type =
      isUnsizedDecimal(column.type) ? "decimal" : DataTypes::typeToString(column.type);
  const bool scaled = DataTypes::typeNumber(column.type) == DataTypes::kFixedDecimal;
  const std::array<DataValue, 6> row = {text(column.name),
                                        text(type),
                                        number(column.size, column.size > 0),
                                        number(column.scale, scaled),
                                        flag(column.nullable),
                                        flag(column.key)};
  writer.row(row);
}

}  // namespace

CLI::App* DescribeVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand("describe", "Show the columns of a table");
  addServiceArgument(*verb, service_);
  verb->add_option("TABLE", table_, "A table as the catalogue spells it, or SCHEMA.TABLE")
      ->required();
  addOutputOptions(*verb, output_);
  return verb;
}

void DescribeVerb::run(Connector& connector) {
  const auto session = connector.connect(connector.service(service_));
  const auto columns = session->describeTable(table_);
  if (columns.empty()) {
    throw Failure(ExitCode::kSql, fmt::format("the catalogue has no table \"{}\"", table_));
  }
  const auto writer = makeRowWriter(output_, std::cout);
  writer->begin({{"name", DataTypes::kString},
                 {"type", DataTypes::kString},
                 {"size", DataTypes::kInteger},
                 {"scale", DataTypes::kInteger},
                 {"nullable", DataTypes::kBoolean},
                 {"key", DataTypes::kBoolean}});
  for (const TableColumn& column : columns) {
    writeColumn(column, *writer);
  }
  writer->end();
}

}  // namespace zeldb
