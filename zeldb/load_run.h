#pragma once

#include <string>

#include "zeldb/load_monitor.h"
#include "zeldb/loader.h"

namespace zeldb {

// Runs a load and tells what became of the rows: a line on standard output that begins with their
// number and `what` ("loaded into t"). Throws Failure with kRowsRejected when bad rows were named.
void runLoader(RecordSource& source, const LoadTarget& target, const LoadOptions& options,
               LoadMonitor& monitor, const std::string& what, Ledger* ledger = nullptr);

}  // namespace zeldb
