#include "zeldb/load_options.h"

#include <CLI/CLI.hpp>

namespace zeldb {
namespace {

constexpr std::size_t kMaxBatchRows = 100000;

}  // namespace

void addLoadOptions(CLI::App& verb, LoadOptions& options) {
  verb.add_option("--batch", options.batchRows, "Rows sent, and committed, together")
      ->check(CLI::Range(std::size_t{1}, kMaxBatchRows))
      ->capture_default_str();
  CLI::Option* const once =
      verb.add_flag("--one-transaction", options.oneTransaction, "Commit only once, at the end");
  CLI::Option* const rejects =
      verb.add_option("--rejects", options.rejects, "File to name bad rows in; all others go in")
          ->type_name("FILE")
          ->excludes(once);
  verb.add_option("--max-errors", options.maxErrors, "Stop when more rows than this are bad")
      ->needs(rejects);
  verb.add_flag("--dry-run", options.dryRun, "Send everything, and roll it back");
}

}  // namespace zeldb
