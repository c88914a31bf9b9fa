#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "zeldb/insert_plan.h"
#include "zeldb/load_options.h"
#include "zeldb/progress.h"
#include "zeldb/record_source.h"
#include "zeldb/rejects_file.h"
#include "zeldb/session.h"
#include "zeldb/value_parser.h"

namespace zeldb {

// Moves the records of a source into a table, a batch at a time. What is committed is always whole
// batches; of a batch with bad rows, when those are to be named, all its good rows.
class Loader {
 public:
  Loader(Session& session, RecordSource& source, const InsertPlan& plan,
         const LoadOptions& options);

  // Loads all records behind the header and returns the number of those that are in the table, or
  // would be without a dry run. Throws Failure: the open transaction is rolled back, and the text
  // tells how many rows stay committed. It does so at the first record that does not fit or is
  // refused; or, with a file for rejects, when there are too many of them or at the end.
  std::uint64_t run();

 private:
  struct Column {
    std::string name;
    ValueParser parser;
  };

  void loadAll();
  void fillRow(const CsvRecord& record);
  void addRecord(const CsvRecord& record);
  void keepRecord(const CsvRecord& record);
  void finishBatch();
  void sendBatch();
  // Sends and commits records; where that fails for a row's fault, each half of them by itself.
  void sendKept(std::span<const CsvRecord> records);
  void insertKept(std::span<const CsvRecord> records);
  void startAfresh();
  void commit();
  // Runs a step for the rows that are not committed; its failure names their lines.
  template <typename Step>
  void namingLines(Step step) const;

  Session& session_;
  RecordSource& source_;
  LoadOptions options_;
  std::string sql_;
  std::vector<Column> columns_;
  std::unique_ptr<BatchWriter> batch_;
  Parameters row_;
  std::optional<RejectsFile> rejects_;
  std::vector<CsvRecord> kept_;  // of the batch, where rejects are named
  Progress progress_;
  std::uint64_t batchedRows_ = 0;  // added, not sent
  std::uint64_t sentRows_ = 0;     // sent, not committed
  std::uint64_t doneRows_ = 0;     // committed, or rolled back by a dry run
  std::uint64_t firstLine_ = 0;    // of the rows that are not committed
  std::uint64_t lastLine_ = 0;
};

}  // namespace zeldb
