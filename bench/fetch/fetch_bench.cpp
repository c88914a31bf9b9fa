// bench_fetch [ROWS [ROUNDS]]: reads a table of each database of the environment that
// `scripts/databases env` prints, plainly and through the plug-in in turn, and prints the ratios of
// the medians with their spread.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "rows/kinds.h"
#include "rows/reader.h"
#include "rows/writer.h"

namespace {

struct Figure {
  const char* name;
  int generation;
  bool safe;
  double target;
};

constexpr Figure kFigures[] = {
    {"first generation", 1, false, 1.06},
    {"second generation", 2, false, 1.03},
    {"second generation, safe", 2, true, 1.10},
};

constexpr const char* kSources[] = {"ZEL_TEST_DSN_SQLITE", "ZEL_TEST_DSN_POSTGRESQL",
                                    "ZEL_TEST_DSN_MARIADB"};

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) throw std::runtime_error(std::string(name) + " is not set");
  return value;
}

double seconds(bench::Reader& reader, int rows) {
  static const bench::Query kQuery = {"select * from fetch_bench", std::string(bench::kRowKinds)};
  const auto start = std::chrono::steady_clock::now();
  if (reader.read(kQuery) != rows) throw std::runtime_error("rows are missing");
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::unique_ptr<bench::Reader> makeReader(const bench::DataSource& source, const Figure& figure) {
  return figure.generation == 1 ? bench::makeFirstGenerationReader(source)
                                : bench::makeSecondGenerationReader(source, figure.safe);
}

void compare(const bench::DataSource& source, const Figure& figure, int rows, int rounds) {
  const auto plugin = makeReader(source, figure);
  const auto plain = bench::makePlainReader(source, figure.generation);
  seconds(*plugin, rows);
  seconds(*plain, rows);
  std::vector<double> ratios;
  for (int round = 0; round < rounds; ++round) {
    const double ours = seconds(*plugin, rows);
    ratios.push_back(ours / seconds(*plain, rows));
  }
  std::ranges::sort(ratios);
  const double median = ratios[ratios.size() / 2];
  std::printf("%-12s %-24s %.3f of plain ODBC (%.3f to %.3f), target %.2f: %s\n",
              source.dsn.c_str(), figure.name, median, ratios.front(), ratios.back(), figure.target,
              median <= figure.target ? "met" : "not met");
  std::fflush(stdout);
}

void run(int rows, int rounds) {
  for (const char* variable : kSources) {
    const bench::DataSource source = {environment(variable), environment("ZEL_TEST_USER"),
                                      environment("ZEL_TEST_PASSWORD")};
    bench::createTable(source, "fetch_bench");
    bench::makeFirstGenerationBatchWriter(source)->write(
        "insert into fetch_bench values (?,?,?,?,?,?,?)", rows);
    for (const Figure& figure : kFigures) compare(source, figure, rows, rounds);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(argc > 1 ? std::atoi(argv[1]) : 50000, argc > 2 ? std::atoi(argv[2]) : 9);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_fetch: %s\n", error.what());
    return 1;
  }
}
