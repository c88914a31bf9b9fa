#pragma once

// The ways to insert rows that the benchmarks compare, and the rows. Each works over a connection
// of its own, made before the clock starts.

#include <array>
#include <memory>
#include <string>

#include "rows/plain_session.h"

namespace bench {

inline constexpr int kColumns = 7;
inline constexpr int kBatchRows = 1000;

// A generated row: int32, int64, double, varchar(20), timestamp(6), decimal(18,4), bool.
struct SampleRow {
  int number;
  long big;
  double real;
  std::array<char, 21> text;
  long micros;       // since 1970-01-01 UTC
  long coefficient;  // of a decimal with 4 digits behind the point
  bool flag;
};

// Row `index` of the data; the same for all ways.
SampleRow makeRow(int index);

// Inserts rows and commits. Throws std::runtime_error with the reason.
class Writer {
 public:
  virtual ~Writer() = default;
  virtual void write(const std::string& insert, int rows) = 0;
};

// Arrays of `batchRows` rows, bound column-wise. With `preparesTwice` the text is prepared again
// when its parameters are described.
std::unique_ptr<Writer> makePlainBatchWriter(const DataSource& source, bool preparesTwice,
                                             int batchRows = kBatchRows);
std::unique_ptr<Writer> makeFirstGenerationBatchWriter(const DataSource& source,
                                                       int batchRows = kBatchRows);
// One execution a row; each value is bound anew, as the second generation binds it.
std::unique_ptr<Writer> makePlainRowWriter(const DataSource& source);
std::unique_ptr<Writer> makeSecondGenerationRowWriter(const DataSource& source, bool safe);

// Creates the table anew, empty, in the types of the database behind the data source.
void createTable(const DataSource& source, const std::string& table);
// Whether that is PostgreSQL, which wants arrays prepared twice.
bool isPostgresql(const DataSource& source);

}  // namespace bench
