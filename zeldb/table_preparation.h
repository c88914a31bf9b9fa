#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "zeldb/first_generation_session.h"
#include "zeldb/record_source.h"

namespace zeldb {

// What is to happen to the table before the first row goes in.
struct PreparationOptions {
  bool create = false;   // make the table
  bool replace = false;  // empty the table that is there; with `create`, make it anew
  bool yes = false;      // rows may go for that
  std::size_t sampleRows = 1000;

  bool any() const { return create || replace; }
};

// Makes or empties the table of a load.
class TablePreparation {
 public:
  // `keys` become the primary key of a table that is made.
  TablePreparation(FirstGenerationSession& session, std::string table,
                   const PreparationOptions& options, std::vector<std::string> keys)
      : session_(session), table_(std::move(table)), options_(options), keys_(std::move(keys)) {}

  // Makes the table: types are those of `types` (by the header's names), else what the sample's
  // fields look like; they and the statement are told on standard error. Where rows would go
  // without a yes, and where there is a table that is not to be replaced, throws Failure and has
  // changed nothing. Returns a statement that is to run in the load's first transaction; empty for
  // none.
  std::string prepare(const CsvRecord& header, const std::vector<CsvRecord>& sample,
                      const std::map<std::string, unsigned int>& types,
                      const std::optional<std::string>& nullText);

 private:
  // The number of the table's rows; nothing when there is no such table.
  std::optional<std::string> countRows();
  void askForRows(const std::string& rows) const;
  std::string createStatement(const CsvRecord& header, const std::vector<unsigned int>& types);
  void checkHeader(const CsvRecord& header) const;

  FirstGenerationSession& session_;
  std::string table_;
  PreparationOptions options_;
  std::vector<std::string> keys_;
};

}  // namespace zeldb
