#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zeldb/insert_plan.h"
#include "zeldb/load_options.h"
#include "zeldb/progress.h"
#include "zeldb/record_source.h"
#include "zeldb/session.h"
#include "zeldb/value_parser.h"

namespace zeldb {

// Moves the records of a source into a table, a batch at a time. What is committed is always whole
// batches.
class Loader {
 public:
  Loader(Session& session, RecordSource& source, const InsertPlan& plan,
         const LoadOptions& options);

  // Loads all records behind the header and returns their number. Throws Failure at the first
  // record that does not fit or is refused: the open transaction is rolled back, and the text tells
  // how many rows stay committed.
  std::uint64_t run();

 private:
  struct Column {
    std::string name;
    ValueParser parser;
  };

  void loadAll();
  void addRecord(const CsvRecord& record);
  void sendBatch();
  void commit();
  // Runs a step for the rows that are not committed; its failure names their lines.
  template <typename Step>
  void namingLines(Step step) const;

  Session& session_;
  RecordSource& source_;
  LoadOptions options_;
  std::vector<Column> columns_;
  std::unique_ptr<BatchWriter> batch_;
  Parameters row_;
  Progress progress_;
  std::uint64_t batchedRows_ = 0;  // added, not sent
  std::uint64_t sentRows_ = 0;     // sent, not committed
  std::uint64_t committedRows_ = 0;
  std::uint64_t firstLine_ = 0;  // of the rows that are not committed
  std::uint64_t lastLine_ = 0;
};

}  // namespace zeldb
