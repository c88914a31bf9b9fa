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
  verb.add_flag("--one-transaction", options.oneTransaction, "Commit only once, at the end");
}

}  // namespace zeldb
