#pragma once

// The two ways to load rows that the benchmark compares, and the rows.

#include <array>
#include <string>
#include <string_view>

namespace bench {

inline constexpr char kInsert[] = "insert into load_bench values (?,?,?,?,?,?,?)";
inline constexpr int kColumns = 7;

// A generated row: int32, int64, double, varchar(20), timestamp(6), decimal(18,4), bool.
struct LoadRow {
  int number;
  long big;
  double real;
  std::array<char, 21> text;
  long micros;       // since 1970-01-01 UTC
  long coefficient;  // of a decimal with 4 digits behind the point
  bool flag;
};

// Row `index` of the data; the same for both ways.
LoadRow makeRow(int index);

// Load `rows` rows in batches, each a transaction, over a connection of their own to the data
// source. Throw std::runtime_error with the reason when a call fails.
void loadPlainly(const std::string& dsn, int rows, int batchRows);
void loadThroughPlugin(const std::string& dsn, int rows, int batchRows);

}  // namespace bench
