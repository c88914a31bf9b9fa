#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "zeldb/row_writer.h"
#include "zeldb/value_text.h"

namespace zeldb {

// Writes rows as a table for people: a head, aligned columns, numbers to the right, NULL as an
// empty field, and the number of rows. Column widths follow from the first thousand rows, so that
// memory does not grow with their number.
class TableWriter : public RowWriter {
 public:
  explicit TableWriter(std::ostream& out, MomentStyle moments = {})
      : out_(out), moments_(std::move(moments)) {}

  void begin(const std::vector<ResultColumn>& columns) override;
  void row(std::span<const DataTypes::DataValue> values) override;
  void end() override;

 private:
  using Line = std::vector<std::string>;

  void writeHead();
  void writeLine(const Line& line);

  std::ostream& out_;
  MomentStyle moments_;
  std::vector<ResultColumn> columns_;
  std::vector<std::size_t> widths_;  // cells
  std::vector<Line> waiting_;        // rows seen before the widths are settled
  bool headWritten_ = false;
  std::uint64_t rows_ = 0;
};

}  // namespace zeldb
