// bench_contender NAME DSN USER PASSWORD: one way to read or write, a row of the table below, over
// a connection of its own. Answers each line of its input with the seconds that the work took:
//
//   read ROWS KINDS SQL    reads the query's rows, columns of these kinds (kinds.h)
//   write ROWS SQL         inserts rows and commits
//   open COUNT SQL         prepares and executes that many statements and keeps them all open
//   memory                 answers with the largest size of the process so far, in KiB
//
// Ends with its input. A failure ends it with 1 and a line on standard error.

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "rows/plugin_session.h"
#include "rows/reader.h"
#include "rows/writer.h"

namespace {

using bench::DataSource;

class Contender {
 public:
  virtual ~Contender() = default;
  virtual void run(const std::string& command, std::istringstream& arguments) = 0;
};

std::string restOf(std::istringstream& line) {
  std::string rest;
  std::getline(line >> std::ws, rest);
  return rest;
}

class Reading : public Contender {
 public:
  explicit Reading(std::unique_ptr<bench::Reader> reader) : reader_(std::move(reader)) {}
  void run(const std::string&, std::istringstream& line) override {
    int rows = 0;
    bench::Query query;
    line >> rows >> query.kinds;
    query.sql = restOf(line);
    if (reader_->read(query) != rows) throw std::runtime_error("rows are missing");
  }

 private:
  std::unique_ptr<bench::Reader> reader_;
};

class Writing : public Contender {
 public:
  explicit Writing(std::unique_ptr<bench::Writer> writer) : writer_(std::move(writer)) {}
  void run(const std::string&, std::istringstream& line) override {
    int rows = 0;
    line >> rows;
    writer_->write(restOf(line), rows);
  }

 private:
  std::unique_ptr<bench::Writer> writer_;
};

// Statements of the second generation; they go with the session.
class Opening : public Contender {
 public:
  explicit Opening(const DataSource& source) : session_(source, false) {}
  void run(const std::string&, std::istringstream& line) override {
    int count = 0;
    line >> count;
    const std::string sql = restOf(line);
    std::vector<KORVEX::Zel::DB::PreparedStatement*> open;
    for (int i = 0; i < count; ++i) {
      open.push_back(session_.connection().createPreparedStatement(sql.c_str(), 0, nullptr, false,
                                                                   session_.error()));
      session_.check(open.back() == nullptr ? -1 : open.back()->execute(session_.error()));
    }
    for (auto* statement : open) {
      session_.check(session_.connection().releaseStatement(statement, session_.error()));
    }
  }

 private:
  bench::SecondGenerationSession session_;
};

// The same without the plug-in: the driver manager looks each handle up among all that are open.
class PlainOpening : public Contender {
 public:
  explicit PlainOpening(const DataSource& source) : session_(source) {}
  void run(const std::string&, std::istringstream& line) override {
    int count = 0;
    line >> count;
    const std::string sql = restOf(line);
    std::vector<SQLHSTMT> open;
    for (int i = 0; i < count; ++i) {
      open.push_back(session_.prepare(sql));
      bench::check(SQLExecute(open.back()), SQL_HANDLE_STMT, open.back(), "SQLExecute");
    }
    for (SQLHSTMT stmt : open) SQLFreeHandle(SQL_HANDLE_STMT, stmt);
  }

 private:
  bench::PlainSession session_;
};

struct Row {
  const char* name;
  std::function<std::unique_ptr<Contender>(const DataSource&)> make;
};

template <typename Make>
auto reading(Make make) {
  return [make](const DataSource& source) { return std::make_unique<Reading>(make(source)); };
}

template <typename Make>
auto writing(Make make) {
  return [make](const DataSource& source) { return std::make_unique<Writing>(make(source)); };
}

int batchRows() {
  const char* rows = std::getenv("BENCH_BATCH_ROWS");
  return rows == nullptr ? bench::kBatchRows : std::stoi(rows);
}

const Row kRows[] = {
    {"plain-as-first", reading([](auto& s) { return bench::makePlainReader(s, 1); })},
    {"plain-as-second", reading([](auto& s) { return bench::makePlainReader(s, 2); })},
    {"plain-long", reading([](auto& s) { return bench::makePlainLongReader(s); })},
    {"first", reading([](auto& s) { return bench::makeFirstGenerationReader(s); })},
    {"second", reading([](auto& s) { return bench::makeSecondGenerationReader(s, false); })},
    {"second-safe", reading([](auto& s) { return bench::makeSecondGenerationReader(s, true); })},
    {"plain-batch", writing([](auto& s) {
       return bench::makePlainBatchWriter(s, bench::isPostgresql(s), batchRows());
     })},
    {"first-batch",
     writing([](auto& s) { return bench::makeFirstGenerationBatchWriter(s, batchRows()); })},
    {"plain-rows", writing([](auto& s) { return bench::makePlainRowWriter(s); })},
    {"second-rows",
     writing([](auto& s) { return bench::makeSecondGenerationRowWriter(s, false); })},
    {"second-rows-safe",
     writing([](auto& s) { return bench::makeSecondGenerationRowWriter(s, true); })},
    {"plain-open", [](const DataSource& s) { return std::make_unique<PlainOpening>(s); }},
    {"open", [](const DataSource& s) { return std::make_unique<Opening>(s); }},
};

std::unique_ptr<Contender> make(const std::string& name, const DataSource& source) {
  for (const Row& row : kRows) {
    if (name == row.name) return row.make(source);
  }
  throw std::runtime_error("no contender of this name");
}

long peakKib() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void answer(Contender& contender) {
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string command;
    words >> command;
    if (command == "memory") {
      std::cout << peakKib() << '\n' << std::flush;
      continue;
    }
    const auto start = std::chrono::steady_clock::now();
    contender.run(command, words);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::cout << elapsed.count() << '\n' << std::flush;
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 5) throw std::runtime_error("usage: bench_contender NAME DSN USER PASSWORD");
    const DataSource source = {argv[2], argv[3], argv[4]};
    if (std::string(argv[1]) == "create") {
      bench::createTable(source, "bench_rows");
      return 0;
    }
    const auto contender = make(argv[1], source);
    answer(*contender);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "bench_contender: " << error.what() << '\n';
    return 1;
  }
}
