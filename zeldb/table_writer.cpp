#include "zeldb/table_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "zeldb/column_type.h"
#include "zeldb/display_width.h"

namespace zeldb {
namespace {

constexpr std::size_t kRowsForWidths = 1000;

// A line break inside a value would break the table.
std::string onOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char byte) { return byte < ' ' || byte == 0x7F; }, ' ');
  return text;
}

}  // namespace

void TableWriter::begin(const std::vector<ResultColumn>& columns) {
  columns_ = columns;
  for (const ResultColumn& column : columns_) {
    widths_.push_back(displayWidth(column.name));
  }
}

void TableWriter::row(std::span<const DataTypes::DataValue> values) {
  Line line;
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    line.push_back(onOneLine(valueText(columns_[at].type, values[at], moments_)));
  }
  ++rows_;
  if (headWritten_) {
    writeLine(line);
    return;
  }
  for (std::size_t at = 0; at < line.size(); ++at) {
    widths_[at] = std::max(widths_[at], displayWidth(line[at]));
  }
  waiting_.push_back(std::move(line));
  if (waiting_.size() == kRowsForWidths) {
    writeHead();
  }
}

void TableWriter::end() {
  if (!headWritten_) {
    writeHead();
  }
  out_ << fmt::format("({} row{})\n", rows_, rows_ == 1 ? "" : "s");
}

void TableWriter::writeHead() {
  Line names;
  Line rules;
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    names.push_back(columns_[at].name);
    rules.emplace_back(widths_[at], '-');
  }
  writeLine(names);
  writeLine(rules);
  for (const Line& line : waiting_) {
    writeLine(line);
  }
  waiting_.clear();
  headWritten_ = true;
}

void TableWriter::writeLine(const Line& line) {
  std::string text;
  for (std::size_t at = 0; at < line.size(); ++at) {
    const std::size_t width = displayWidth(line[at]);
    const std::string padding(widths_[at] - std::min(width, widths_[at]), ' ');
    text += at == 0 ? "" : "  ";
    text += isNumberType(columns_[at].type) ? padding + line[at] : line[at] + padding;
  }
  text.erase(text.find_last_not_of(' ') + 1);
  out_ << text << '\n';
}

}  // namespace zeldb
