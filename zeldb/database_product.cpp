#include "zeldb/database_product.h"

#include <algorithm>
#include <array>
#include <string>

#include "zeldb/failure.h"
#include "zeldb/failure_kind.h"
#include "zeldb/first_generation_session.h"

namespace zeldb {
namespace {

// SQLite's driver keeps milliseconds. PostgreSQL's puts a savepoint of its own around each
// statement, batches too, which leaves no room for others.
constexpr std::array<ProductTraits, 4> kProducts = {{
    {Product::kSqlite, "SQLite", 3, 15U, true, false, false, Resumption::kSavepoint, false},
    {Product::kPostgresql, "PostgreSQL", 6, std::nullopt, true, true, true, Resumption::kStatement,
     true},
    {Product::kMariadb, "MariaDB", 6, std::nullopt, false, false, true, Resumption::kSavepoint,
     true},
    {Product::kOther, "other", 6, std::nullopt, true, true, true, Resumption::kNothing, false},
}};

const ProductTraits& traitsOf(Product product) {
  return *std::find_if(kProducts.begin(), kProducts.end(),
                       [&](const ProductTraits& row) { return row.product == product; });
}

// Whether the database answers the query, with this word in its answer.
bool answers(FirstGenerationSession& session, const std::string& sql, std::string_view word) {
  try {
    const auto rows = session.query(sql, {});
    const auto* const row = rows->next();
    return row != nullptr && row->size() == 1 && !row->front().isNull() &&
           std::string_view(row->front().string).find(word) != std::string_view::npos;
  } catch (const Failure& failure) {
    if (kindOf(failure) == FailureKind::kLostLink) {
      throw;
    }
    return false;
  }
}

}  // namespace

// The driver has no name for SQLite and MariaDB: their versions tell them apart.
const ProductTraits& productOf(FirstGenerationSession& session) {
  const std::string type = session.databaseType();
  if (type == "POSTGRESQL") {
    return traitsOf(Product::kPostgresql);
  }
  if (type == "MYSQL" ||
      (type == "OTHERS" && answers(session, "select cast(version() as char(100))", "MariaDB"))) {
    return traitsOf(Product::kMariadb);
  }
  if (type == "OTHERS" && answers(session, "select cast(sqlite_version() as text)", ".")) {
    return traitsOf(Product::kSqlite);
  }
  return traitsOf(Product::kOther);
}

}  // namespace zeldb
