#include "zeldb/csv_writer.h"

#include <ostream>

namespace zeldb {

void appendCsvField(std::string& line, std::string_view text) {
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos) {
    line += text;
    return;
  }
  line += '"';
  for (const char character : text) {
    line.append(character == '"' ? 2 : 1, character);
  }
  line += '"';
}

void CsvWriter::begin(const std::vector<ResultColumn>& columns) {
  columns_ = columns;
  for (const ResultColumn& column : columns_) {
    appendCsvField(line_, column.name);
    line_ += ',';
  }
  writeLine();
}

void CsvWriter::row(std::span<const DataTypes::DataValue> values) {
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    if (!values[at].isNull()) {
      appendCsvField(line_, valueText(columns_[at].type, values[at], moments_));
    }
    line_ += ',';
  }
  writeLine();
}

void CsvWriter::writeLine() {
  line_.back() = '\n';
  out_ << line_;
  line_.clear();
}

}  // namespace zeldb
