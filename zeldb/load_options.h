#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

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
};

// Adds the options to a verb, "--null" apart.
void addLoadOptions(CLI::App& verb, LoadOptions& options);

}  // namespace zeldb
