#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zeldb/row_writer.h"
#include "zeldb/value_text.h"

namespace zeldb {

// Writes rows as CSV, each as it comes, in the form that "zeldb load" reads back exactly: the
// columns' names first, NULL as nothing between the commas, an empty text as "", lines ended by LF.
class CsvWriter : public RowWriter {
 public:
  CsvWriter(std::ostream& out, MomentStyle moments) : out_(out), moments_(std::move(moments)) {}

  void begin(const std::vector<ResultColumn>& columns) override;
  void row(std::span<const DataTypes::DataValue> values) override;
  void end() override {}

 private:
  void writeLine();

  std::ostream& out_;
  MomentStyle moments_;
  std::vector<ResultColumn> columns_;
  std::string line_;
};

// Adds a text to a line of CSV, in quotes where it needs them.
void appendCsvField(std::string& line, std::string_view text);

}  // namespace zeldb
