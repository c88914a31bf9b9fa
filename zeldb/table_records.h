#pragma once

#include <string>
#include <utility>

#include "zeldb/record_source.h"
#include "zeldb/session.h"

namespace zeldb {

// The rows of a query as records of texts, one at a time: first the columns' names, then the rows,
// numbered from 1 instead of lines. The texts are those that a load reads exactly.
class TableRecords : public RecordSource {
 public:
  // `name` is what complaints call the table. `rows` must outlive this.
  TableRecords(RowSource& rows, std::string name) : rows_(rows), name_(std::move(name)) {}

  bool next(CsvRecord& record) override;
  std::string place(std::uint64_t line, std::size_t field) const override;
  std::string range(std::uint64_t firstLine, std::uint64_t lastLine) const override;
  std::uint64_t bytesRead() const override { return 0; }
  std::uint64_t sizeBytes() const override { return 0; }

 private:
  void fillHeader(CsvRecord& record);

  RowSource& rows_;
  std::string name_;
  std::uint64_t row_ = 0;
  bool headerRead_ = false;
};

}  // namespace zeldb
