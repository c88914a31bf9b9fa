#include "zeldb/load_verb.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string_view>
#include <utility>

#include "zeldb/column_type.h"
#include "zeldb/connector.h"
#include "zeldb/csv_reader.h"
#include "zeldb/failure.h"
#include "zeldb/generation_option.h"
#include "zeldb/insert_plan.h"
#include "zeldb/ledger_file.h"
#include "zeldb/ledger_table.h"
#include "zeldb/load_run.h"
#include "zeldb/patient_connection.h"
#include "zeldb/sampled_records.h"
#include "zeldb/service_argument.h"

namespace zeldb {
namespace {

constexpr std::size_t kMaxSampleRows = 1000000;

std::string checkDelimiter(const std::string& text) {
  const bool usable = text.size() == 1 && static_cast<unsigned char>(text[0]) < 0x80 &&
                      std::string_view("\"\r\n").find(text[0]) == std::string_view::npos;
  return usable ? "" : "not a single character that can stand between fields";
}

}  // namespace

CLI::App* LoadVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand("load", "Insert the rows of a CSV file into a table");
  addServiceArgument(*verb, service_);
  verb->add_option("TABLE", table_, "A table, written as in SQL")->required();
  verb->add_option("FILE", file_, "CSV file whose first row names the columns")
      ->required()
      ->type_name("FILE");
  verb->add_option("--types", types_, "NAME:TYPE,... for columns not to be read as the table says");
  addLoadOptions(*verb, options_);
  verb->add_option("--null", options_.nullText,
                   "Text that stands for NULL, as an empty field does");
  verb->add_option("--delimiter", delimiter_, "Character between fields, or \"tab\"")
      ->transform(CLI::Transformer({{"tab", "\t"}, {"\\t", "\t"}}).description(""))
      ->check(CLI::Validator(checkDelimiter, "CHARACTER"))
      ->default_str(",");
  declarePreparing(*verb);
  declareResuming(*verb);
  addGenerationOption(*verb, generation_);
  return verb;
}

void LoadVerb::declarePreparing(CLI::App& verb) {
  CLI::Option* const create = verb.add_flag(
      "--create", preparation_.create,
      "Create the table, with types that are given or look like those of the first rows");
  CLI::Option* const replace = verb.add_flag("--replace", preparation_.replace,
                                             "Empty the table first, or with --create drop it");
  verb.add_flag("--yes", preparation_.yes, "Rows that are there may go")->needs(replace);
  verb.add_option("--sample", preparation_.sampleRows, "First rows that --create looks at")
      ->check(CLI::Range(std::size_t{1}, kMaxSampleRows))
      ->needs(create)
      ->capture_default_str();
  for (CLI::Option* const option : {create, replace}) {
    option->excludes(verb.get_option("--dry-run"));
  }
}

void LoadVerb::declareResuming(CLI::App& verb) {
  CLI::Option* const ledger =
      verb.add_option("--ledger", ledger_, "Notes how far the load has come (the file's .ledger)")
          ->type_name("FILE");
  CLI::Option* const table = verb.add_option(
      "--ledger-table", ledgerTable_, "Table of the service to note it in, instead of a file");
  ledger->excludes(table);
  CLI::Option* const resume =
      verb.add_flag("--resume", resume_, "Go on where the ledger says; start when there is none");
  for (CLI::Option* const option : {ledger, table, resume}) {
    option->excludes(verb.get_option("--one-transaction"))->excludes(verb.get_option("--dry-run"));
  }
  verb.add_option("--in-doubt", inDoubt_,
                  "What became of the batch that the earlier load has left in doubt")
      ->check(CLI::IsMember({"committed", "missing"}))
      ->needs(resume);
}

void LoadVerb::run(Connector& connector) {
  LoadMonitor monitor("load", service_, table_, options_);
  monitor.watch([&] { load(connector, monitor); });
}

void LoadVerb::load(Connector& connector, LoadMonitor& monitor) {
  const auto types = typesFromList(types_);
  const Service service = connector.service(service_);
  CsvReader reader(file_, delimiter_.front());
  CsvRecord header;
  if (!reader.next(header)) {
    throw Failure(ExitCode::kFile, fmt::format("{}: the file has no header", reader.place(1, 0)));
  }
  auto session =
      connectPatiently(options_, monitor.counts(), [&] { return connector.connect(service); });
  auto ledger = openLedger(service, *session);
  SampledRecords records(reader, preparation_.create && !ledger ? preparation_.sampleRows : 0);
  std::string prelude;
  if (ledger) {
    reader.seek(ledger->state().reached.byte, ledger->state().reached.line);
  } else if (preparation_.any()) {
    prelude = TablePreparation(*session, table_, preparation_, options_.keys)
                  .prepare(header, records.sample(), types, options_.nullText);
  }
  if (!options_.oneTransaction && !prelude.empty()) {
    session->update(std::exchange(prelude, {}), {});
    session->commit();
  }
  const InsertPlan plan = planInsert(*session, table_, reader, header, types);
  if (!ledger && (resume_ || !ledger_.empty() || !ledgerTable_.empty())) {
    ledger = startLedger(service, *session, {header.endByte, header.endLine});
  }
  if (!inDoubt_.empty()) {
    options_.inDoubtRows = inDoubt_ == "committed";
  }
  session.reset();
  const auto connect = [&] { return connector.connect(service, generation_); };
  runLoader(records, {connect, table_, plan, prelude}, options_, monitor,
            fmt::format("{} into {}", options_.dryRun ? "would be loaded" : "loaded", table_),
            ledger.get());
}

std::string LoadVerb::ledgerPath() const {
  return ledger_.empty() ? file_ + ".ledger" : ledger_;
}

std::unique_ptr<Ledger> LoadVerb::openLedger(const Service& service,
                                             FirstGenerationSession& session) const {
  if (!ledgerTable_.empty()) {
    auto ledger = std::make_unique<LedgerTable>(session, productOf(session), ledgerTable_,
                                                table_ + '\n' + file_);
    if (!ledger->isStarted()) {
      return nullptr;
    }
    if (!resume_) {
      throw Failure(ExitCode::kUsage,
                    fmt::format("{}: there is a ledger of an earlier load of {}; --resume goes on "
                                "with it",
                                ledgerTable_, file_));
    }
    ledger->check(identity(service));
    return ledger;
  }
  if (!resume_ || !std::filesystem::exists(ledgerPath())) {
    return nullptr;
  }
  return std::make_unique<LedgerFile>(LedgerFile::open(ledgerPath(), file_, identity(service)));
}

std::unique_ptr<Ledger> LoadVerb::startLedger(const Service& service,
                                              FirstGenerationSession& session,
                                              const LoadPosition& start) const {
  if (ledgerTable_.empty()) {
    return std::make_unique<LedgerFile>(
        LedgerFile::create(ledgerPath(), file_, identity(service), start));
  }
  auto ledger = std::make_unique<LedgerTable>(session, productOf(session), ledgerTable_,
                                              table_ + '\n' + file_);
  ledger->start(session, identity(service), start);
  return ledger;
}

Ledger::Identity LoadVerb::identity(const Service& service) const {
  Ledger::Identity identity = Ledger::identityOf(file_);
  identity.insert(identity.end(), {{"service", service.name},
                                   {"data source", service.properties.at("DSN")},
                                   {"table", table_},
                                   {"types", types_},
                                   {"delimiter", delimiter_},
                                   {"null text", options_.nullText.value_or("")}});
  return identity;
}

}  // namespace zeldb
