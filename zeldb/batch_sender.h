#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "zeldb/batch_target.h"
#include "zeldb/database_product.h"
#include "zeldb/failure.h"
#include "zeldb/key_lookup.h"
#include "zeldb/ledger.h"
#include "zeldb/load_counts.h"
#include "zeldb/load_options.h"
#include "zeldb/load_position.h"
#include "zeldb/record_source.h"
#include "zeldb/rejects_file.h"
#include "zeldb/retry_policy.h"
#include "zeldb/row_parser.h"

namespace zeldb {

// A record of a batch, and why it is not to go in.
struct BatchRecord {
  CsvRecord record;
  std::optional<Failure> fault;
};

// Commits batches of records, each whole or not at all. A batch that fails is rolled back; then it
// is sent again, after a pause and over a new connection where that helps, or in halves, until
// every bad record is named and all good ones are in. A batch whose commit was not answered is
// looked for and never sent blindly.
class BatchSender {
 public:
  using Batch = std::span<BatchRecord>;

  BatchSender(BatchTarget& target, RowParser parser, const RecordSource& source,
              const LoadOptions& options, LoadCounts& counts, const ProductTraits& product);

  // What it works with, where wanted; all must outlive this. Without a file for rejects the first
  // bad record is a failure.
  void nameRejectsIn(RejectsFile& rejects) { rejects_ = &rejects; }
  void noteIn(Ledger& ledger);
  void lookBy(const KeyLookup& lookup) { lookup_ = &lookup; }

  // Sends and commits records that follow those sent before. Throws Failure; the transaction is
  // open then.
  void send(Batch batch);
  // The same for records of which nobody knows whether an earlier load has committed them.
  void sendDoubted(Batch batch, const Ledger::Intent& intent);
  // Ends a load that is one transaction. There are no more records.
  void finish();

  // How many rows are committed, by earlier loads of the same ledger too.
  std::uint64_t committed() const { return options_.dryRun ? 0 : position_.committed; }
  // What the load has done, or would have done without a dry run.
  std::uint64_t done() const { return position_.committed; }

 private:
  void sendPart(Batch part, bool doubted);
  // Whether the part can be tried once more; returns after the pause.
  bool triesAgain(const Failure& failure);
  void split(Batch part, const Failure& failure);
  void insert(Batch part);
  const Parameters* parse(BatchRecord& record);
  void nameFaults(Batch part);
  void commit(Batch part);
  void advance(Batch part);
  // Whether this is a dry run that names bad rows, on a database that goes on so.
  bool triesOut(Resumption resumption) const;
  void begin();
  void undo();
  bool settle(Batch part, const Failure& doubt);
  // Whether the database has them now.
  bool isThere(Batch part, const Failure& doubt);
  LoadPosition behind(Batch part) const;
  std::string lines() const;
  // Runs a step for the rows that are not committed; its failure names their lines.
  template <typename Step>
  void namingLines(Step step) const;

  BatchTarget& target_;
  RowParser parser_;
  const RecordSource& source_;
  const LoadOptions& options_;
  LoadCounts& counts_;
  RejectsFile* rejects_ = nullptr;
  Ledger* ledger_ = nullptr;
  bool ledgerTells_ = false;  // what became of a commit
  const KeyLookup* lookup_ = nullptr;
  RetryPolicy retry_;
  bool oneTransaction_;
  Resumption resumption_;
  LoadPosition position_;
  std::uint64_t sentRows_ = 0;   // of the part
  std::uint64_t openRows_ = 0;   // sent before it, in the one transaction
  std::uint64_t firstLine_ = 0;  // of the rows that are not committed
  std::uint64_t lastLine_ = 0;
};

}  // namespace zeldb
