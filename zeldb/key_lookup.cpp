#include "zeldb/key_lookup.h"

#include <fmt/format.h>

#include <algorithm>

#include "zeldb/failure.h"
#include "zeldb/identifier_quotes.h"

namespace zeldb {

KeyLookup::KeyLookup(const std::string& table, const std::vector<std::string>& keys,
                     const InsertPlan& plan) {
  std::string where;
  for (const std::string& key : keys) {
    const auto column = std::find_if(plan.columns.begin(), plan.columns.end(),
                                     [&](const TargetColumn& one) { return one.name == key; });
    if (column == plan.columns.end()) {
      throw Failure(ExitCode::kUsage, fmt::format("--key: no column \"{}\" is loaded", key));
    }
    columns_.push_back(static_cast<std::size_t>(column - plan.columns.begin()));
    where += fmt::format("{}{} = ?", where.empty() ? "" : " and ",
                         quotedIdentifier(key, plan.databaseType));
  }
  // Two rows tell as much as all of them.
  sql_ = fmt::format("select 1 from {} where {}", table, where);
}

bool KeyLookup::finds(Session& session, const Parameters& row) const {
  Parameters keys;
  for (const std::size_t column : columns_) {
    keys.push_back(row[column]);
  }
  const auto rows = session.query(sql_, keys);
  const bool found = rows->next() != nullptr;
  if (found && rows->next() != nullptr) {
    throw Failure(ExitCode::kUsage, "--key: the columns do not tell the table's rows apart");
  }
  return found;
}

}  // namespace zeldb
