#pragma once

#include <map>
#include <string>
#include <vector>

#include "zeldb/database_product.h"
#include "zeldb/first_generation_session.h"
#include "zeldb/record_source.h"
#include "zeldb/value_limits.h"

namespace zeldb {

// A column that fields go into, with what its values may be.
struct TargetColumn {
  std::string name;
  unsigned int type = 0;  // type code
  ValueLimits limits;
};

// How the fields of records go into a table: the table's columns in the order of the header,
// and the INSERT statement with a marker for each.
struct InsertPlan {
  std::vector<TargetColumn> columns;
  std::string sql;
  std::string databaseType;  // the driver's name for the kind of database
  const ProductTraits* product = nullptr;
};

// Matches the header with the columns of the table, letter by letter or, where that is unambiguous,
// without regard to case. Types are those of `types` (by the header's names), else those that the
// database describes. Throws Failure naming the place in the source when a column is missing or
// comes twice, and when a type names a column that the header does not have.
InsertPlan planInsert(FirstGenerationSession& session, const std::string& table,
                      const RecordSource& source, const CsvRecord& header,
                      const std::map<std::string, unsigned int>& types);

}  // namespace zeldb
