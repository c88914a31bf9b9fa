#include "zeldb/column_limits.h"

#include <fmt/format.h>

#include <cctype>
#include <charconv>
#include <vector>

#include "datatypes/type_code.h"
#include "zeldb/failure.h"
#include "zeldb/value_text.h"

namespace zeldb {
namespace {

// A table's name taken apart, as the catalogue writes it.
struct TableName {
  std::string schema;
  std::string table;
};

// Quotes go; what is not quoted is folded where the product folds it.
TableName catalogueName(const std::string& text, bool folds) {
  TableName name;
  char quote = 0;
  for (const char character : text) {
    if (quote == 0 && (character == '"' || character == '`')) {
      quote = character;
    } else if (character == quote) {
      quote = 0;
    } else if (quote == 0 && character == '.') {
      name.schema = std::exchange(name.table, {});
    } else {
      name.table += quote == 0 && folds
                        ? static_cast<char>(std::tolower(static_cast<unsigned char>(character)))
                        : character;
    }
  }
  return name;
}

template <typename Number>
std::optional<Number> numberFrom(const std::string& text) {
  Number number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

using Description = std::vector<std::string>;

std::vector<Description> describe(FirstGenerationSession& session, const std::string& sql,
                                  const Parameters& parameters) {
  std::vector<Description> descriptions;
  const auto rows = session.query(sql, parameters);
  while (const auto* const row = rows->next()) {
    Description& description = descriptions.emplace_back();
    for (std::size_t at = 0; at < row->size(); ++at) {
      description.push_back(valueText(rows->columns()[at].type, (*row)[at]));
    }
  }
  return descriptions;
}

std::map<std::string, ValueLimits> standardLimits(FirstGenerationSession& session,
                                                  const ProductTraits& product,
                                                  const std::string& table) {
  const bool postgresql = product.product == Product::kPostgresql;
  const TableName name = catalogueName(table, postgresql);
  Parameters parameters = {textParameter(name.table)};
  const std::string here = postgresql ? "current_schema()" : "database()";
  if (!name.schema.empty()) {
    parameters.push_back(textParameter(name.schema));
  }
  std::map<std::string, ValueLimits> limits;
  for (const Description& column :
       describe(session,
                fmt::format("select column_name, data_type, datetime_precision, numeric_scale, "
                            "character_maximum_length from information_schema.columns "
                            "where table_name = ? and table_schema = {}",
                            name.schema.empty() ? here : "?"),
                parameters)) {
    ValueLimits& limit = limits.emplace(column[0], limitsOf(product)).first->second;
    limit.daysOnly = column[1] == "date";
    limit.secondDigits = numberFrom<int>(column[2]).value_or(product.secondDigits);
    limit.fractionDigits = numberFrom<unsigned>(column[3]);
    limit.characters = numberFrom<std::size_t>(column[4]);
  }
  return limits;
}

// A column of SQLite stores a text that looks like a number as a double where its type's name says
// so: anything that is no integer, text, blob or double.
std::map<std::string, ValueLimits> sqliteLimits(FirstGenerationSession& session,
                                                const ProductTraits& product,
                                                const std::string& table) {
  const TableName name = catalogueName(table, false);
  std::map<std::string, ValueLimits> limits;
  for (const Description& column :
       describe(session,
                "select name, cast(upper(type) like '%DEC%' or upper(type) like '%NUM%' as text) "
                "from pragma_table_info(?)",
                {textParameter(name.table)})) {
    ValueLimits& limit = limits.emplace(column[0], limitsOf(product)).first->second;
    if (column[1] == "1") {
      limit.significantDigits = product.digits;
    }
  }
  return limits;
}

}  // namespace

ValueLimits limitsOf(const ProductTraits& product) {
  ValueLimits limits;
  limits.secondDigits = product.secondDigits;
  limits.infinity = product.infinity;
  limits.notANumber = product.notANumber;
  return limits;
}

std::map<std::string, ValueLimits> columnLimits(FirstGenerationSession& session,
                                                const ProductTraits& product,
                                                const std::string& table) {
  try {
    if (product.informationSchema) {
      return standardLimits(session, product, table);
    }
    if (product.product == Product::kSqlite) {
      return sqliteLimits(session, product, table);
    }
  } catch (const Failure& failure) {
    if (failure.exitCode() != ExitCode::kSql) {
      throw;
    }
    session.rollback();
  }
  return {};
}

}  // namespace zeldb
