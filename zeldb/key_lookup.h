#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zeldb/insert_plan.h"
#include "zeldb/session.h"

namespace zeldb {

// Looks whether rows are in a table, by the columns that tell its rows apart.
class KeyLookup {
 public:
  // Throws Failure when a key is no column of the plan.
  KeyLookup(const std::string& table, const std::vector<std::string>& keys, const InsertPlan& plan);

  // Whether the row is there. Throws Failure; also when the keys fit more than one row.
  bool finds(Session& session, const Parameters& row) const;

 private:
  std::string sql_;
  std::vector<std::size_t> columns_;  // of the row
};

}  // namespace zeldb
