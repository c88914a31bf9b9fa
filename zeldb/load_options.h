#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zeldb {

// How rows go into a table.
struct LoadOptions {
  std::size_t batchRows = 500;
  bool oneTransaction = false;  // instead of a transaction for each batch
  std::string rejects;          // file that names bad rows; empty: the first one ends the load
  std::uint64_t maxErrors = std::numeric_limits<std::uint64_t>::max();
  bool dryRun = false;                  // everything is sent, and rolled back
  std::optional<std::string> nullText;  // a field of this text is NULL, besides an empty one
  unsigned retries = 0;                 // of a batch that can be sent again
  std::vector<std::string> keys;        // columns that tell the table's rows apart
  std::optional<bool> inDoubtRows;      // what the user knows of a batch in doubt: it is there
  std::string metrics;                  // file; empty for none
};

// Adds the options to a verb, "--null" and "--in-doubt" apart.
void addLoadOptions(CLI::App& verb, LoadOptions& options);

}  // namespace zeldb
