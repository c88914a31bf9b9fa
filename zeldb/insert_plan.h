#pragma once

#include <map>
#include <string>
#include <vector>

#include "zeldb/csv_reader.h"
#include "zeldb/first_generation_session.h"
#include "zeldb/row_writer.h"

namespace zeldb {

// How the fields of a file go into a table: the table's columns in the order of the file's header,
// and the INSERT statement with a marker for each.
struct InsertPlan {
  std::vector<ResultColumn> columns;
  std::string sql;
};

// Matches the header with the columns of the table, letter by letter or, where that is unambiguous,
// without regard to case. Types are those of `types` (by the header's names), else those that the
// database describes. Throws Failure naming `file`, line and field when a column is missing or
// comes twice, and when a type names a column that the file does not have.
InsertPlan planInsert(FirstGenerationSession& session, const std::string& table,
                      const std::string& file, const CsvRecord& header,
                      const std::map<std::string, unsigned int>& types);

}  // namespace zeldb
