#include "zeldb/table_preparation.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "datatypes/data_types.h"
#include "zeldb/database_product.h"
#include "zeldb/failure.h"
#include "zeldb/failure_kind.h"
#include "zeldb/identifier_quotes.h"
#include "zeldb/messages.h"
#include "zeldb/sql_type_name.h"
#include "zeldb/type_inference.h"
#include "zeldb/value_text.h"

namespace zeldb {
namespace {

bool isNull(const CsvField& field, const std::optional<std::string>& nullText) {
  return field.empty || field.text == nullText;
}

// The types of the columns; what they were taken from is told.
std::vector<unsigned int> typesOf(const CsvRecord& header, const std::vector<CsvRecord>& sample,
                                  const std::map<std::string, unsigned int>& given,
                                  const std::optional<std::string>& nullText) {
  std::vector<unsigned int> types;
  for (std::size_t at = 0; at < header.fields.size(); ++at) {
    const std::string& name = header.fields[at].text;
    if (const auto known = given.find(name); known != given.end()) {
      types.push_back(known->second);
      tell(fmt::format("column \"{}\": {}, as given", name, DataTypes::typeToString(types.back())));
      continue;
    }
    TypeInference inference;
    for (const CsvRecord& record : sample) {
      if (record.fields.size() == header.fields.size() && !isNull(record.fields[at], nullText)) {
        inference.add(record.fields[at].text);
      }
    }
    types.push_back(inference.type());
    tell(fmt::format("column \"{}\": {}, from {} values in the first {} rows", name,
                     DataTypes::typeToString(types.back()), inference.texts(), sample.size()));
  }
  return types;
}

}  // namespace

std::string TablePreparation::prepare(const CsvRecord& header, const std::vector<CsvRecord>& sample,
                                      const std::map<std::string, unsigned int>& types,
                                      const std::optional<std::string>& nullText) {
  const std::optional<std::string> rows = countRows();
  if (rows && !options_.replace) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("--create: there is a table {} with {} rows; --replace makes it anew",
                              table_, *rows));
  }
  if (rows && *rows != "0") {
    askForRows(*rows);
  }
  if (!options_.create) {
    // A table that is not there is told by the load.
    return rows && *rows != "0" ? "delete from " + table_ : "";
  }
  checkHeader(header);
  const std::string sql = createStatement(header, typesOf(header, sample, types, nullText));
  if (rows) {
    session_.update("drop table " + table_, {});
  }
  tell(sql);
  session_.update(sql, {});
  session_.commit();
  return "";
}

std::optional<std::string> TablePreparation::countRows() {
  try {
    const auto rows = session_.query("select count(*) from " + table_, {});
    const auto* const row = rows->next();
    return valueText(rows->columns().front().type, row->front());
  } catch (const Failure& failure) {
    if (failure.exitCode() != ExitCode::kSql) {
      throw;
    }
  }
  session_.rollback();
  return std::nullopt;
}

void TablePreparation::askForRows(const std::string& rows) const {
  if (!options_.yes) {
    throw Failure(
        ExitCode::kUsage,
        fmt::format("--replace would delete the {} rows of {}; --yes allows it", rows, table_));
  }
  tell(fmt::format("deleting the {} rows of {}", rows, table_));
}

void TablePreparation::checkHeader(const CsvRecord& header) const {
  std::set<std::string> names;
  for (const CsvField& field : header.fields) {
    if (field.text.empty() || !names.insert(field.text).second) {
      throw Failure(ExitCode::kUsage,
                    fmt::format("--create: \"{}\" in the header cannot name a column{}", field.text,
                                field.text.empty() ? "" : ", it comes twice"));
    }
  }
  for (const std::string& key : keys_) {
    if (names.count(key) == 0) {
      throw Failure(ExitCode::kUsage, fmt::format("--key: the header has no \"{}\"", key));
    }
  }
}

std::string TablePreparation::createStatement(const CsvRecord& header,
                                              const std::vector<unsigned int>& types) {
  const ProductTraits& product = productOf(session_);
  const std::string databaseType = session_.databaseType();
  std::vector<std::string> parts;
  for (std::size_t at = 0; at < types.size(); ++at) {
    const std::string& name = header.fields[at].text;
    const bool key = std::find(keys_.begin(), keys_.end(), name) != keys_.end();
    parts.push_back(fmt::format("{} {}{}", quotedIdentifier(name, databaseType),
                                sqlTypeName(types[at], product, key), key ? " not null" : ""));
  }
  if (!keys_.empty()) {
    std::vector<std::string> quoted;
    quoted.reserve(keys_.size());
    for (const std::string& key : keys_) {
      quoted.push_back(quotedIdentifier(key, databaseType));
    }
    parts.push_back(fmt::format("primary key ({})", fmt::join(quoted, ", ")));
  }
  return fmt::format("create table {} ({})", table_, fmt::join(parts, ", "));
}

}  // namespace zeldb
