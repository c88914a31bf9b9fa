#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zeldb/batch_sender.h"
#include "zeldb/batch_target.h"
#include "zeldb/insert_plan.h"
#include "zeldb/key_lookup.h"
#include "zeldb/ledger.h"
#include "zeldb/load_monitor.h"
#include "zeldb/load_options.h"
#include "zeldb/record_source.h"
#include "zeldb/rejects_file.h"

namespace zeldb {

// Where the rows of a load go.
struct LoadTarget {
  BatchTarget::Connect connect;
  std::string table;
  InsertPlan plan;
  std::string prelude{};  // statement that runs first, in the first transaction; empty for none
};

// Moves the records of a source into a table, a batch at a time. What is committed is always whole
// batches; of a batch with bad rows, when those are to be named, all its good rows.
class Loader {
 public:
  // Connects. The source stands behind its header or, with a ledger, where that says.
  Loader(RecordSource& source, const LoadTarget& target, const LoadOptions& options,
         LoadMonitor& monitor, Ledger* ledger = nullptr);

  // Loads all records behind the header and returns the number of those that are in the table, or
  // would be without a dry run; with a ledger, of those of the earlier loads as well. Throws
  // Failure: the open transaction is rolled back, and the text tells how many rows stay committed.
  // It does so at the first record that does not fit or is refused; or, with a file for rejects,
  // when there are too many of them. Throws nothing for rejects named.
  std::uint64_t run();

  // What became of bad rows, in one line; empty when there were none.
  std::string rejectsSummary() const;

 private:
  void openRejects(const Ledger* ledger);
  void loadAll();
  void settleDoubted(const Ledger::Intent& intent);
  bool readRecord(std::size_t at);
  BatchSender::Batch readBatch();

  RecordSource& source_;
  LoadOptions options_;
  LoadMonitor& monitor_;
  Ledger* ledger_;
  std::optional<KeyLookup> lookup_;
  std::optional<RejectsFile> rejects_;
  BatchTarget target_;
  BatchSender sender_;
  std::vector<BatchRecord> batch_;
};

}  // namespace zeldb
