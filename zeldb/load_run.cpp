#include "zeldb/load_run.h"

#include <fmt/format.h>

#include "zeldb/failure.h"

namespace zeldb {

void runLoader(RecordSource& source, const LoadTarget& target, const LoadOptions& options,
               LoadMonitor& monitor, const std::string& what, Ledger* ledger) {
  Loader loader(source, target, options, monitor, ledger);
  const std::uint64_t rows = loader.run();
  monitor.summarize(rows, what);
  if (const std::string rejects = loader.rejectsSummary(); !rejects.empty()) {
    throw Failure(ExitCode::kRowsRejected,
                  fmt::format("{}; {} rows are committed", rejects, options.dryRun ? 0 : rows));
  }
}

}  // namespace zeldb
