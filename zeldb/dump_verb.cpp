#include "zeldb/dump_verb.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>

#include "zeldb/connector.h"
#include "zeldb/failure.h"
#include "zeldb/generation_option.h"
#include "zeldb/output_file.h"
#include "zeldb/row_copying.h"
#include "zeldb/service_argument.h"
#include "zeldb/statement_kind.h"

namespace zeldb {

CLI::App* DumpVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand("dump", "Write a table's or a query's rows to a file");
  addServiceArgument(*verb, service_);
  verb->add_option("SOURCE", source_, "A table, written as in SQL, or a query")->required();
  verb->add_option("--out", file_, "File, replaced when all is written; else standard output")
      ->type_name("FILE");
  addOutputOptions(*verb, output_);
  addGenerationOption(*verb, generation_);
  return verb;
}

void DumpVerb::run(Connector& connector) {
  const auto session = connector.connect(connector.service(service_), generation_);
  {
    const auto rows = open(*session);
    if (rows->columns().empty()) {
      throw Failure(ExitCode::kUsage, "the statement has no rows to dump");
    }
    if (file_.empty()) {
      copyRows(*rows, *makeRowWriter(output_, std::cout));
    } else {
      dumpToFile(*rows);
    }
  }
  session->rollback();
}

std::unique_ptr<RowSource> DumpVerb::open(Session& session) const {
  if (isUpdateStatement(source_)) {
    throw Failure(ExitCode::kUsage, "a dump changes nothing; \"query\" runs such statements");
  }
  return isStatement(source_) ? session.query(source_, {}) : session.readTable(source_);
}

void DumpVerb::dumpToFile(RowSource& rows) const {
  OutputFile file(file_);
  std::uint64_t count = 0;
  try {
    count = copyRows(rows, *makeRowWriter(output_, file.stream()));
  } catch (const std::ios_base::failure&) {
    file.fail();
  }
  file.complete();
  std::cout << fmt::format("{} row{} dumped to {}\n", count, count == 1 ? "" : "s", file_);
}

}  // namespace zeldb
