// bench_load [ROWS [BATCH [ROUNDS]]]: loads rows into a SQLite database in a scratch folder,
// plainly and through the plug-in in turn, and prints the ratio of the medians with its spread, and
// how the peak memory of the process grows with the rows.

#include <sqlite3.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "load.h"

namespace bench {

LoadRow makeRow(int index) {
  LoadRow row{};
  row.number = index;
  row.big = index * 1000000007L;
  row.real = index * 0.25;
  std::snprintf(row.text.data(), row.text.size(), "row number %d", index);
  row.micros = 1700000000000000L + index * 1000003L;
  row.coefficient = index * 12345L;
  row.flag = index % 2 == 0;
  return row;
}

}  // namespace bench

namespace {

constexpr char kCreate[] =
    "create table load_bench (number integer, big bigint, real double, text varchar(20),"
    " moment timestamp, amount decimal(18,4), flag tinyint)";
constexpr double kTarget = 1.25;

class ScratchDatabase {
 public:
  ScratchDatabase() {
    std::string pattern = (std::filesystem::temp_directory_path() / "bench_load_XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no scratch folder");
    folder_ = pattern;
    std::ofstream(folder_ / "odbcinst.ini");
    std::ofstream(folder_ / "odbc.ini")
        << "[bench]\nDriver=" << driverFile() << "\nDatabase=" << file().string() << "\n";
    setenv("ODBCSYSINI", folder_.c_str(), 1);
    setenv("ODBCINI", (folder_ / "odbc.ini").c_str(), 1);
  }
  ~ScratchDatabase() { std::filesystem::remove_all(folder_); }
  ScratchDatabase(const ScratchDatabase&) = delete;
  ScratchDatabase& operator=(const ScratchDatabase&) = delete;

  // An empty table, without waiting for the disk.
  void recreate() const {
    std::filesystem::remove(file());
    sqlite3* database = nullptr;
    sqlite3_open(file().c_str(), &database);
    const int rc = sqlite3_exec(database, kCreate, nullptr, nullptr, nullptr);
    sqlite3_close(database);
    if (rc != SQLITE_OK) throw std::runtime_error("cannot create the table");
  }

 private:
  // Debian keeps ODBC drivers in a folder below the machine's library folder.
  static std::string driverFile() {
    for (const auto& folder : std::filesystem::directory_iterator("/usr/lib")) {
      const std::filesystem::path file = folder.path() / "odbc/libsqlite3odbc.so";
      if (std::filesystem::exists(file)) return file.string();
    }
    throw std::runtime_error("libsqlite3odbc.so is not installed");
  }

  std::filesystem::path file() const { return folder_ / "bench.db"; }
  std::filesystem::path folder_;
};

template <typename Work>
double seconds(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

long peakKib() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

int argument(int argc, char** argv, int index, int fallback) {
  return argc > index ? std::atoi(argv[index]) : fallback;
}

void run(int rows, int batchRows, int rounds) {
  const ScratchDatabase database;
  std::vector<double> ratios;
  database.recreate();
  bench::loadThroughPlugin("bench", rows / 10, batchRows);
  const long peakBefore = peakKib();
  for (int round = 0; round < rounds; ++round) {
    database.recreate();
    const double plugin = seconds([&] { bench::loadThroughPlugin("bench", rows, batchRows); });
    if (round == 0) {
      std::printf("peak memory after %d rows %ld KiB, after %d rows %ld KiB\n", rows / 10,
                  peakBefore, rows, peakKib());
    }
    database.recreate();
    const double plain = seconds([&] { bench::loadPlainly("bench", rows, batchRows); });
    ratios.push_back(plugin / plain);
  }
  const auto [least, most] = std::ranges::minmax(ratios);
  std::printf(
      "load of %d rows in batches of %d: %.3f of plain ODBC (%.3f to %.3f in %d rounds),"
      " target %.2f: %s\n",
      rows, batchRows, median(ratios), least, most, rounds, kTarget,
      median(ratios) <= kTarget ? "met" : "not met");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(argument(argc, argv, 1, 100000), argument(argc, argv, 2, 500), argument(argc, argv, 3, 7));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_load: %s\n", error.what());
    return 1;
  }
}
