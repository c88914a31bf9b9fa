#pragma once

// The ways to read a result that the benchmarks compare. Each runs the query over a connection of
// its own, made before the clock starts.

#include <memory>
#include <string>

#include "rows/plain_session.h"

namespace bench {

// A query and the kinds of its columns (kinds.h).
struct Query {
  std::string sql;
  std::string kinds;
};

// Reads all rows and returns their number. Throws std::runtime_error with the reason.
class Reader {
 public:
  virtual ~Reader() = default;
  virtual int read(const Query& query) = 0;
};

enum class Rows { kCells, kPacked };  // how the second generation hands rows over

// SQLGetData for each value in the C types that the first (1) or second (2) generation asks for.
std::unique_ptr<Reader> makePlainReader(const DataSource& source, int generation);
std::unique_ptr<Reader> makeFirstGenerationReader(const DataSource& source);
std::unique_ptr<Reader> makeSecondGenerationReader(const DataSource& source, bool safe,
                                                   Rows rows = Rows::kCells);

}  // namespace bench
