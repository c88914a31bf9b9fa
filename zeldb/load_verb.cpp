#include "zeldb/load_verb.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <string_view>

#include "zeldb/column_type.h"
#include "zeldb/connector.h"
#include "zeldb/csv_reader.h"
#include "zeldb/failure.h"
#include "zeldb/generation_option.h"
#include "zeldb/insert_plan.h"
#include "zeldb/service_argument.h"

namespace zeldb {
namespace {

std::string checkDelimiter(const std::string& text) {
  const bool usable = text.size() == 1 && static_cast<unsigned char>(text[0]) < 0x80 &&
                      std::string_view("\"\r\n").find(text[0]) == std::string_view::npos;
  return usable ? "" : "not a single character that can stand between fields";
}

}  // namespace

CLI::App* LoadVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand("load", "Insert the rows of a CSV file into a table");
  addServiceArgument(*verb, service_);
  verb->add_option("TABLE", table_, "A table that exists, written as in SQL")->required();
  verb->add_option("FILE", file_, "CSV file whose first row names the columns")
      ->required()
      ->type_name("FILE");
  verb->add_option("--types", types_, "NAME:TYPE,... for columns not to be read as the table says");
  addLoadOptions(*verb, options_);
  verb->add_option("--null", options_.nullText,
                   "Text that stands for NULL, as an empty field does");
  verb->add_option("--delimiter", delimiter_, "Character between fields, or \"tab\"")
      ->transform(CLI::Transformer({{"tab", "\t"}, {"\\t", "\t"}}))
      ->check(CLI::Validator(checkDelimiter, "CHARACTER"))
      ->default_str(",");
  addGenerationOption(*verb, generation_);
  return verb;
}

void LoadVerb::run(Connector& connector) {
  const auto types = typesFromList(types_);
  const Service service = connector.service(service_);
  CsvReader reader(file_, delimiter_.front());
  const CsvRecord* const header = reader.next();
  if (header == nullptr) {
    throw Failure(ExitCode::kFile, fmt::format("{}: the file has no header", reader.place(1, 0)));
  }
  const InsertPlan plan = planInsert(*connector.connect(service), table_, reader, *header, types);
  const auto session = connector.connect(service, generation_);
  const auto rows = Loader(*session, reader, plan, options_).run();
  std::cout << fmt::format("{} row{} {} into {}\n", rows, rows == 1 ? "" : "s",
                           options_.dryRun ? "would be loaded" : "loaded", table_);
}

}  // namespace zeldb
