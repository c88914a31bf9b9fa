#pragma once

#include <cstddef>

namespace CLI {
class App;
}

namespace zeldb {

// How rows go into a table.
struct LoadOptions {
  std::size_t batchRows = 500;
  bool oneTransaction = false;  // instead of a transaction for each batch
};

// Adds "--batch" and "--one-transaction" to a verb.
void addLoadOptions(CLI::App& verb, LoadOptions& options);

}  // namespace zeldb
