#pragma once

#include <optional>
#include <string>
#include <vector>

#include "zeldb/insert_plan.h"
#include "zeldb/record_source.h"
#include "zeldb/session.h"
#include "zeldb/value_parser.h"

namespace zeldb {

// Reads records as rows of typed values.
class RowParser {
 public:
  // A field of the text `nullText` is NULL, besides an empty one.
  RowParser(const std::vector<TargetColumn>& columns, std::optional<std::string> nullText);

  // The row's values, valid until the next call and as long as the record. Throws Failure with
  // kRowsRejected, and the place in the source, when a field does not fit its column.
  const Parameters& parse(const CsvRecord& record, const RecordSource& source);

 private:
  struct Column {
    std::string name;
    ValueParser parser;
  };

  std::vector<Column> columns_;
  std::optional<std::string> nullText_;
  Parameters row_;
};

}  // namespace zeldb
