#include "zeldb/bench_verb.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <functional>
#include <iostream>
#include <vector>

#include "zeldb/connector.h"
#include "zeldb/failure.h"
#include "zeldb/interrupt.h"
#include "zeldb/plain_odbc.h"

namespace zeldb {
namespace {

using Clock = std::chrono::steady_clock;

// Makes a table that nobody else has and drops it when it goes. Declared before the sessions that
// use it: their locks go with them.
class ScratchTable {
 public:
  explicit ScratchTable(Session& session)
      : session_(session),
        name_(fmt::format("zeldb_bench_{}_{}", getpid(),
                          Clock::now().time_since_epoch().count() % 1'000'000'000)) {
    // Creating fails where the name exists, so that what is dropped is always our own.
    session_.update("create table " + name_ +
                        " (n integer, b bigint, d double precision, s varchar(20),"
                        " t timestamp(6), a decimal(18,4))",
                    {});
    session_.commit();
  }
  ~ScratchTable() {
    try {
      session_.rollback();
      session_.update("drop table " + name_, {});
      session_.commit();
    } catch (const std::exception& failure) {
      std::cerr << "zeldb: the scratch table " << name_ << " remains: " << failure.what() << '\n';
    }
  }
  ScratchTable(const ScratchTable&) = delete;
  ScratchTable& operator=(const ScratchTable&) = delete;

  void empty() {
    session_.update("delete from " + name_, {});
    session_.commit();
  }
  std::string insertText() const { return "insert into " + name_ + " values (?,?,?,?,?,?)"; }
  std::string selectText() const { return "select * from " + name_; }

 private:
  Session& session_;
  std::string name_;
};

Parameters makeParameters() {
  constexpr unsigned int kTypes[kSampleColumns] = {
      DataTypes::kInteger, DataTypes::kLong,        DataTypes::kFloat,
      DataTypes::kString,  DataTypes::kBigDateTime, DataTypes::createFixedDecimal(18, 4)};
  Parameters params(kSampleColumns);
  for (std::size_t i = 0; i < kSampleColumns; ++i) params[i].type = kTypes[i];
  return params;
}

void insertRows(Session& session, const std::string& sql, int rows) {
  Parameters params = makeParameters();
  auto writer = session.insert(sql);
  for (int i = 0; i < rows; ++i) {
    const SampleRow row = makeSampleRow(i);
    params[0].value.int32 = row.number;
    params[1].value.int64 = row.big;
    params[2].value.float64 = row.real;
    params[3].value.string = row.text.data();
    params[4].value.int64 = row.micros;
    params[5].value.decimal = {0, static_cast<unsigned long long>(row.coefficient), 4, 18};
    writer->add(params);
    if ((i + 1) % kSampleBatchRows == 0 || i + 1 == rows) {
      writer->send();
      Interrupt::check();
    }
  }
  session.commit();
}

void fetchRows(Session& session, const std::string& sql, int expected) {
  {
    const auto rows = session.query(sql, {});
    int count = 0;
    while (rows->next() != nullptr) ++count;
    if (count != expected) throw Failure(ExitCode::kSql, "rows are missing");
  }
  session.rollback();
}

// What is timed: the plain way and ours.
struct Comparison {
  const char* name;
  std::function<void()> plain;
  std::function<void()> ours;
};

double seconds(const std::function<void()>& work) {
  Interrupt::check();
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

// `before` puts the table into its state, outside the time.
void compare(const Comparison& comparison, int rows, int rounds,
             const std::function<void()>& before) {
  std::vector<double> plain;
  std::vector<double> ours;
  std::vector<double> ratios;
  for (int round = 0; round <= rounds; ++round) {
    before();
    const double plainTime = seconds(comparison.plain);
    before();
    const double ourTime = seconds(comparison.ours);
    if (round == 0) continue;  // warms up
    plain.push_back(rows / plainTime);
    ours.push_back(rows / ourTime);
    ratios.push_back(ourTime / plainTime);
  }
  const auto [least, most] = std::ranges::minmax(ratios);
  std::cout << fmt::format("{:28} {:>12.0f} {:>12.0f}  {:.3f} ({:.3f}-{:.3f})\n", comparison.name,
                           median(ours), median(plain), median(ratios), least, most)
            << std::flush;
}

}  // namespace

CLI::App* BenchVerb::declare(CLI::App& app) {
  CLI::App* const verb = app.add_subcommand(
      "bench", "Measure inserting and fetching beside a plain ODBC program, in a scratch table");
  verb->add_option("SERVICE", service_, "Name in the services file")->required();
  verb->add_option("--rows", rows_, "Rows of each run")->check(CLI::Range(1, 10'000'000));
  verb->add_option("--rounds", rounds_, "Runs of each kind; medians are shown")
      ->check(CLI::Range(1, 1000));
  return verb;
}

void BenchVerb::run(Connector& connector) {
  const Service service = connector.service(service_);
  const auto owner = connector.connect(service);
  ScratchTable table(*owner);
  const auto first = connector.connect(service, 1);
  const auto second = connector.connect(service, 2);
  PlainOdbc plain(service);
  const std::string insert = table.insertText();
  const std::string select = table.selectText();
  std::cout << fmt::format("{:28} {:>12} {:>12}  {}\n", "", "rows/s", "plain ODBC",
                           "time of plain ODBC's");
  const auto empty = [&table] { table.empty(); };
  compare({"insert, first generation", [&] { plain.insertBatches(insert, rows_); },
           [&] { insertRows(*first, insert, rows_); }},
          rows_, rounds_, empty);
  compare({"insert, second generation", [&] { plain.insertRows(insert, rows_); },
           [&] { insertRows(*second, insert, rows_); }},
          rows_, rounds_, empty);
  for (const int generation : {1, 2}) {
    Session& session = generation == 1 ? static_cast<Session&>(*first) : *second;
    compare({generation == 1 ? "fetch, first generation" : "fetch, second generation",
             [&] { plain.fetch(select, generation); }, [&] { fetchRows(session, select, rows_); }},
            rows_, rounds_, [] {});
  }
}

}  // namespace zeldb
