// Random programs of a server: any operation in any order, with a fault now and then, against a
// model of what must come of it.

#include <algorithm>
#include <iterator>
#include <random>
#include <string_view>

#include "tests/verify/check.h"
#include "tests/verify/operations.h"

namespace verify {
namespace {

constexpr int kSteps = 40;  // of a program
constexpr int kFaultEvery = 20;
constexpr int kRows = 3;  // of the scripted query's results

// What is known of a world in which nothing has failed. Where nothing can be said, because the
// server does what makes no sense, any result will do.
class Model {
 public:
  // Whether the operation must succeed or must be refused; 0 when nothing is known.
  enum Verdict { kOpen, kMustSucceed, kMustBeRefused };

  Verdict expected(std::string_view name) const {
    if (is(name, {"createConnection", "createConnection2"})) return kMustSucceed;
    return name.ends_with(" 2") || isSecond(name) ? expected2(name) : expected1(name);
  }

  // A refused execution ends the batch as well, but where there was no statement to execute.
  void refused(std::string_view name) {
    if (name == "executeBatch") batchKnown_ = false;
  }

  void done(std::string_view name) {
    if (is(name, {"createBatch", "executeBatch", "clearBatch", "releaseConnection"})) {
      batchKnown_ = true;
    }
    if (is(name, {"open", "open again"})) connected_ = true, statement_ = Statement::kNone;
    if (name.starts_with("close") || name == "releaseConnection") connected_ = false;
    if (name == "releaseConnection") batch_ = false;
    if (name.starts_with("executeQuery")) statement_ = Statement::kQuery, row_ = 0;
    if (name == "executeUpdate" || name.starts_with("createTable")) statement_ = Statement::kOther;
    if (name == "createBatch") statement_ = Statement::kBatch, batch_ = true;
    if (name == "executeBatch" || name == "clearBatch") batch_ = false;
    if (name == "clearBatch") statement_ = Statement::kOther;  // prepared anew, whatever it was
    if (name == "nextResultSet") row_ = kRows + 1;
    if (name == "next") ++row_;

    if (name == "connect") connected2_ = true;
    if (is(name, {"disconnect", "forced disconnect", "releaseConnection2"})) connected2_ = false;
    if (is(name, {"disconnect", "forced disconnect", "releaseConnection2", "releaseStatement",
                  "createPreparedStatement without types"})) {
      prepared_ = false;
    }
    if (name == "createPreparedStatement") prepared_ = true, row2_ = kUnopened;
    if (name.starts_with("execute values") || name == "execute again") row2_ = kExecuted;
    if (name == "execute a packed row") row2_ = kUnopened;
    if (name == "nextResultSet 2 again") row2_ = kUnopened;
    if (name == "nextResultSet 2") row2_ = row2_ == kExecuted ? 0 : kUnopened;
    if (name == "hasMoreData" && row2_ >= 0) ++row2_;
  }

 private:
  enum class Statement { kNone, kQuery, kBatch, kOther };
  static constexpr int kUnopened = -2;
  static constexpr int kExecuted = -1;

  static bool is(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
  }

  static bool isSecond(std::string_view name) {
    for (const Operation& operation : operations()) {
      if (operation.name == name) return operation.generation == Generation::kSecond;
    }
    return false;
  }

  Verdict expected1(std::string_view name) const {
    if (name == "open" || name == "open again" || name == "clearBatch") return kMustSucceed;
    if (name.starts_with("close") || name == "releaseConnection") return kMustSucceed;
    if (!connected_) return kOpen;
    if (name == "createBatch") {
      if (!batchKnown_) return kOpen;
      return batch_ ? kMustBeRefused : kMustSucceed;
    }
    if (name == "addToBatch" || name == "executeBatch") {
      return batch_ && statement_ == Statement::kBatch ? kMustSucceed : kOpen;
    }
    if (is(name, {"next", "getNumColumns", "getColumnInfo", "nextResultSet"})) {
      return statement_ == Statement::kQuery && row_ <= kRows ? kMustSucceed : kOpen;
    }
    if (name == "getData") {
      return statement_ == Statement::kQuery && row_ >= 1 && row_ <= kRows ? kMustSucceed : kOpen;
    }
    return name == "getResultSet" ? kOpen : kMustSucceed;
  }

  Verdict expected2(std::string_view name) const {
    if (name == "releaseConnection2" || name == "forced disconnect") return kMustSucceed;
    if (!connected2_) return kOpen;
    if (is(name, {"createPreparedStatement", "createPreparedStatement without types", "commit 2",
                  "rollback 2", "disconnect"})) {
      return kMustSucceed;
    }
    if (!prepared_) return kOpen;
    if (is(name, {"getNumberParameters", "getEffectiveNumberColumns", "getColumnName",
                  "getEffectiveDataType", "setBindings", "releaseStatement", "execute values",
                  "execute again"})) {
      return kMustSucceed;
    }
    if (name == "nextResultSet 2") return row2_ == kExecuted ? kMustSucceed : kOpen;
    if (name == "hasMoreData") return row2_ >= 0 && row2_ <= kRows ? kMustSucceed : kOpen;
    return kOpen;
  }

  bool connected_ = false;
  bool batch_ = false;
  bool batchKnown_ = true;
  Statement statement_ = Statement::kNone;
  int row_ = 0;
  bool connected2_ = false;
  bool prepared_ = false;
  int row2_ = kUnopened;
};

class Program {
 public:
  Program(Check& check, std::uint64_t seed)
      : check_(check), seed_(seed), random_(seed), world_(below(2) == 1) {}

  void run() {
    for (int step = 0; step < kSteps && !failed_; ++step) {
      const Operation& operation = operations()[below(operations().size())];
      if (!operation.possible(world_)) continue;
      check_.tried();
      const bool faulty = below(kFaultEvery) == 0;
      if (faulty) breakSomething();
      judge(operation, step, operation.run(world_), faulty);
    }
    world_.odbc.forgetFaults();
    world_.close();
    Strings left = world_.odbc.liveHandles();
    std::erase(left, "env");
    // Kept: a second-generation connection that could not be made stays allocated.
    if (!left.empty() && !failed_) check_.found(place(kSteps) + ": left a handle, " + left.front());
  }

 private:
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }

  std::string place(int step) const {
    return "seed " + std::to_string(seed_) + ", step " + std::to_string(step);
  }

  void breakSomething() {
    static const fake::Answer kAnswers[] = {fake::failure("08S01", 7, "gone"),
                                            fake::failureWithoutRecord(),
                                            {SQL_NO_DATA, {}},
                                            {SQL_INVALID_HANDLE, {}},
                                            {SQL_NEED_DATA, {}}};
    world_.odbc.fail("", 1 + static_cast<int>(below(8)), kAnswers[below(std::size(kAnswers))]);
  }

  void judge(const Operation& operation, int step, Outcome outcome, bool faulty) {
    const std::string what = place(step) + ", " + operation.name + (world_.safe ? ", safe" : "");
    if (outcome == Outcome::kImpossible) check_.found(what + ": an impossible result");
    // What a fault leaves behind is not modelled: the program ends with it.
    failed_ = faulty;
    if (faulty) return;
    const Model::Verdict expected = model_.expected(operation.name);
    if (expected == Model::kMustSucceed && outcome != Outcome::kDone) {
      check_.found(what + ": refused");
      failed_ = true;
    }
    if (expected == Model::kMustBeRefused && outcome != Outcome::kRefused) {
      check_.found(what + ": done");
    }
    if (outcome == Outcome::kDone) {
      model_.done(operation.name);
    } else {
      model_.refused(operation.name);
    }
  }

  Check& check_;
  std::uint64_t seed_;
  std::mt19937_64 random_;
  World world_;
  Model model_;
  bool failed_ = false;
};

}  // namespace

bool checkPrograms(const Options& options) {
  Check check("random programs");
  for (std::uint64_t seed = options.seed; check.count() < options.count; ++seed) {
    Program(check, seed).run();
  }
  return check.report();
}

}  // namespace verify
