#include "zeldb/row_parser.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

// SQLSTATE of rows with too few or too many values.
constexpr const char* kFieldCountState = "21S01";

}  // namespace

RowParser::RowParser(const std::vector<TargetColumn>& columns, std::optional<std::string> nullText)
    : nullText_(std::move(nullText)), row_(columns.size()) {
  for (const TargetColumn& column : columns) {
    columns_.push_back({column.name, ValueParser(column.type, column.limits)});
  }
  for (std::size_t at = 0; at < row_.size(); ++at) {
    row_[at].type = columns_[at].parser.valueType();
  }
}

const Parameters& RowParser::parse(const CsvRecord& record, const RecordSource& source) {
  if (record.fields.size() != columns_.size()) {
    throw Failure(
        ExitCode::kRowsRejected,
        fmt::format("{}: the row has {} fields, the header {}",
                    source.place(record.line, std::min(record.fields.size(), columns_.size())),
                    record.fields.size(), columns_.size()),
        kFieldCountState);
  }
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    const CsvField& field = record.fields[at];
    DataTypes::DataValue& value = row_[at].value;
    if (field.empty || field.text == nullText_) {
      value.clear();
      value.setNull();
    } else if (!columns_[at].parser.parse(field.text, value)) {
      throw Failure(ExitCode::kRowsRejected,
                    fmt::format("{}: column \"{}\": {}: \"{}\"", source.place(record.line, at),
                                columns_[at].name, columns_[at].parser.reason(), field.text),
                    columns_[at].parser.state());
    }
  }
  return row_;
}

}  // namespace zeldb
