#include "zeldb/table_records.h"

#include <fmt/format.h>

#include "datatypes/type_code.h"
#include "zeldb/value_text.h"

namespace zeldb {
namespace {

// A boolean's text is one that numbers can be read from too: not every database has booleans.
std::string fieldText(unsigned int type, const DataTypes::DataValue& value) {
  static const MomentStyle style = isoMoments("");
  if (DataTypes::typeNumber(type) == DataTypes::kBoolean && !value.isNull()) {
    return value.boolean != 0 ? "1" : "0";
  }
  return valueText(type, value, style);
}

}  // namespace

bool TableRecords::next(CsvRecord& record) {
  if (!headerRead_) {
    fillHeader(record);
    return true;
  }
  const auto* const values = rows_.next();
  if (values == nullptr) {
    return false;
  }
  record.line = ++row_;
  record.fields.resize(values->size());
  for (std::size_t at = 0; at < record.fields.size(); ++at) {
    CsvField& field = record.fields[at];
    field.empty = (*values)[at].isNull();
    field.text = fieldText(rows_.columns()[at].type, (*values)[at]);
  }
  return true;
}

void TableRecords::fillHeader(CsvRecord& record) {
  headerRead_ = true;
  record.fields.clear();
  for (const ResultColumn& column : rows_.columns()) {
    record.fields.push_back({column.name, false});
  }
}

std::string TableRecords::place(std::uint64_t line, std::size_t /*field*/) const {
  return line == 0 ? name_ : fmt::format("{}: row {}", name_, line);
}

std::string TableRecords::range(std::uint64_t firstLine, std::uint64_t lastLine) const {
  return fmt::format("{}: rows {} to {}", name_, firstLine, lastLine);
}

}  // namespace zeldb
