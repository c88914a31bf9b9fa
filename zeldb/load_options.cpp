#include "zeldb/load_options.h"

#include <CLI/CLI.hpp>

namespace zeldb {
namespace {

constexpr std::size_t kMaxBatchRows = 100000;
constexpr unsigned kMaxRetries = 1000;

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
  verb.add_flag("--dry-run", options.dryRun,
                "Send everything in one transaction, and roll it back");
  verb.add_option("--retries", options.retries,
                  "Try again what failed for a missing link, a lock or a deadlock")
      ->check(CLI::Range(0U, kMaxRetries))
      ->excludes(once)
      ->capture_default_str();
  verb.add_option("--key", options.keys,
                  "COLUMN,... that tell rows apart, to look for those that are in doubt")
      ->delimiter(',');
  verb.add_option("--metrics", options.metrics, "File for counts, in Prometheus' text form")
      ->type_name("FILE");
}

}  // namespace zeldb
