#include "zeldb/insert_plan.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <set>

#include "datatypes/type_code.h"
#include "zeldb/column_limits.h"
#include "zeldb/failure.h"
#include "zeldb/identifier_quotes.h"

namespace zeldb {
namespace {

// The columns as a query names them; the catalogue knows their types better, where it knows them.
std::vector<ResultColumn> columnsOf(FirstGenerationSession& session, const std::string& table) {
  std::vector<ResultColumn> columns =
      session.query(fmt::format("select * from {} where 1 = 0", table), {})->columns();
  for (const TableColumn& described : session.describeTable(table)) {
    for (ResultColumn& column : columns) {
      if (column.name == described.name && described.type != DataTypes::kUnknown) {
        column.type = described.type;
      }
    }
  }
  return columns;
}

// The one column that the comparison finds; null when it finds none or more.
template <typename Same>
const ResultColumn* onlyColumn(const std::vector<ResultColumn>& columns, Same same) {
  const auto first = std::find_if(columns.begin(), columns.end(), same);
  const bool unique =
      first != columns.end() && std::find_if(first + 1, columns.end(), same) == columns.end();
  return unique ? &*first : nullptr;
}

const ResultColumn* findColumn(const std::vector<ResultColumn>& columns, const std::string& name) {
  const ResultColumn* const exact =
      onlyColumn(columns, [&](const ResultColumn& column) { return column.name == name; });
  return exact != nullptr ? exact : onlyColumn(columns, [&](const ResultColumn& column) {
    return strcasecmp(column.name.c_str(), name.c_str()) == 0;
  });
}

void checkTypesAreUsed(const std::map<std::string, unsigned int>& types, const CsvRecord& header,
                       const RecordSource& source) {
  for (const auto& [name, type] : types) {
    if (std::none_of(header.fields.begin(), header.fields.end(),
                     [&, &wanted = name](const CsvField& field) { return field.text == wanted; })) {
      throw Failure(ExitCode::kUsage, fmt::format("{}: the header has no column \"{}\"",
                                                  source.place(header.line, 0), name));
    }
  }
}

std::string insertStatement(const std::string& table, const std::vector<TargetColumn>& columns,
                            const std::string& databaseType) {
  std::string names;
  std::string markers;
  for (const TargetColumn& column : columns) {
    const char* const comma = names.empty() ? "" : ", ";
    names += comma + quotedIdentifier(column.name, databaseType);
    markers += fmt::format("{}?", comma);
  }
  return fmt::format("insert into {} ({}) values ({})", table, names, markers);
}

}  // namespace

InsertPlan planInsert(FirstGenerationSession& session, const std::string& table,
                      const RecordSource& source, const CsvRecord& header,
                      const std::map<std::string, unsigned int>& types) {
  checkTypesAreUsed(types, header, source);
  const std::vector<ResultColumn> known = columnsOf(session, table);
  InsertPlan plan;
  plan.product = &productOf(session);
  const auto limits = columnLimits(session, *plan.product, table);
  std::set<std::string> used;
  for (std::size_t at = 0; at < header.fields.size(); ++at) {
    const std::string& name = header.fields[at].text;
    const auto fail = [&](const char* reason) {
      throw Failure(ExitCode::kUsage,
                    fmt::format("{}: table {} has no column \"{}\"{}",
                                source.place(header.line, at), table, name, reason));
    };
    const ResultColumn* const column = findColumn(known, name);
    if (column == nullptr) {
      fail("");
    }
    if (!used.insert(column->name).second) {
      fail(" left, it comes twice");
    }
    const auto type = types.find(name);
    const auto narrower = limits.find(column->name);
    const ValueLimits limit = narrower != limits.end() ? narrower->second : limitsOf(*plan.product);
    plan.columns.push_back(
        {column->name, type != types.end() ? type->second : column->type, limit});
  }
  plan.databaseType = session.databaseType();
  plan.sql = insertStatement(table, plan.columns, plan.databaseType);
  return plan;
}

}  // namespace zeldb
