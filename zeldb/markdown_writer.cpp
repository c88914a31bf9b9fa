#include "zeldb/markdown_writer.h"

#include <ostream>

#include "zeldb/column_type.h"

namespace zeldb {
namespace {

// What Markdown would take as its own.
constexpr std::string_view kMarkup = "\\`*_[<|~&";

std::string cell(std::string_view text) {
  std::string cell = " ";
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char character = text[at];
    if (character == '\r' && text.substr(at + 1).starts_with('\n')) {
      continue;
    }
    if (character == '\n' || character == '\r') {
      cell += "<br>";
      continue;
    }
    cell += kMarkup.find(character) != std::string_view::npos ? "\\" : "";
    cell += character;
  }
  return cell + " |";
}

}  // namespace

void MarkdownWriter::begin(const std::vector<ResultColumn>& columns) {
  columns_ = columns;
  std::string names = "|";
  std::string rules = "|";
  for (const ResultColumn& column : columns_) {
    names += cell(column.name);
    rules += isNumberType(column.type) ? " ---: |" : " --- |";
  }
  out_ << names << '\n' << rules << '\n';
}

void MarkdownWriter::row(std::span<const DataTypes::DataValue> values) {
  std::string line = "|";
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    line += cell(valueText(columns_[at].type, values[at], moments_));
  }
  out_ << line << '\n';
}

}  // namespace zeldb
