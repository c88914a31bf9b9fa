#pragma once

// The ways to read a table that the benchmark compares. Each runs the query over a connection of
// its own, made before the clock starts.

#include <memory>
#include <string>

namespace bench {

// int32, int64, double, varchar(20), timestamp(6), decimal(18,4), bool.
inline constexpr char kQuery[] = "select * from fetch_bench";
inline constexpr int kColumns = 7;

struct DataSource {
  std::string dsn;
  std::string user;
  std::string password;
};

// Reads all rows and returns their number. Throws std::runtime_error with the reason.
class Reader {
 public:
  virtual ~Reader() = default;
  virtual int read() = 0;
};

// SQLGetData for each value in the C types that the first (1) or second (2) generation asks for.
std::unique_ptr<Reader> makePlainReader(const DataSource& source, int generation);
std::unique_ptr<Reader> makeFirstGenerationReader(const DataSource& source);
std::unique_ptr<Reader> makeSecondGenerationReader(const DataSource& source, bool safe);

// Creates and fills the table, with the types of the database behind the data source.
void fillTable(const DataSource& source, int rows);

}  // namespace bench
