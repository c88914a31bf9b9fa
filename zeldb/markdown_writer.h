#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zeldb/row_writer.h"
#include "zeldb/value_text.h"

namespace zeldb {

// Writes rows as a Markdown table, each as it comes: numbers to the right, NULL as an empty field,
// a line break inside a value as <br>.
class MarkdownWriter : public RowWriter {
 public:
  MarkdownWriter(std::ostream& out, MomentStyle moments)
      : out_(out), moments_(std::move(moments)) {}

  void begin(const std::vector<ResultColumn>& columns) override;
  void row(std::span<const DataTypes::DataValue> values) override;
  void end() override {}

 private:
  std::ostream& out_;
  MomentStyle moments_;
  std::vector<ResultColumn> columns_;
};

}  // namespace zeldb
