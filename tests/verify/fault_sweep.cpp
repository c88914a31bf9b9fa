// Every ODBC call of every operation made to fail, alone and in pairs.

#include <algorithm>
#include <random>
#include <string_view>

#include "tests/verify/check.h"
#include "tests/verify/operations.h"

namespace verify {
namespace {

struct Answer : fake::Answer {
  std::string_view logged;  // with the refusal, by the first generation
  std::string_view record;  // of the second generation
};

const Answer kAnswers[] = {
    {fake::failure("42000", 7, "no"), kDiagnostic, "[-1][42000]no"},
    {fake::failureWithoutRecord(), "", "[-1][]"},
    {{SQL_SUCCESS_WITH_INFO, {}}, "", "[1][]"},
    {{SQL_STILL_EXECUTING, {}}, "", "[2]Still executing"},
    {{SQL_NEED_DATA, {}}, "", "[99]Need data"},
    {{SQL_NO_DATA, {}}, "", "[100]No data"},
    {{SQL_INVALID_HANDLE, {}}, "", "[-2]Invalid handle"},
    {{7, {}}, "", "[7]Unknown error"},
};

enum class Expected { kDone, kRefused, kEither };
enum class Transfer { kAny, kPlain, kSafe };
// Of calls of one function: of those that follow each other (the columns of a row, the attributes
// of a batch) the last, or of all in an operation the final one, or one between first and final, or
// one that was made before with the same arguments.
enum class Place { kAny, kLast, kNotLast, kNotFinal, kMiddle, kAgain };

// Where a call stands among the calls of its function.
struct Standing {
  bool isLast;
  bool isFirstOfAll;
  bool isFinal;
  bool isAgain;

  bool is(Place place) const {
    switch (place) {
      case Place::kAny:
        return true;
      case Place::kLast:
        return isLast;
      case Place::kNotLast:
        return !isLast;
      case Place::kNotFinal:
        return !isFinal;
      case Place::kMiddle:
        return !isFinal && !isFirstOfAll;
      case Place::kAgain:
        return isAgain;
    }
    return false;
  }
};

// The name in NAME(ARGUMENTS).
std::string_view functionOf(std::string_view call) {
  return call.substr(0, call.find('('));
}

Standing standingOf(const Strings& calls, std::size_t at) {
  const auto here = calls.begin() + static_cast<std::ptrdiff_t>(at);
  const std::string_view name = functionOf(*here);
  const auto isSame = [name](const std::string& call) { return functionOf(call) == name; };
  const auto next = std::find_if(here + 1, calls.end(), isSame);
  const bool runGoesOn = next == here + 1 && next != calls.end();
  return {!runGoesOn, std::find_if(calls.begin(), here, isSame) == here, next == calls.end(),
          std::find(calls.begin(), here, *here) != here};
}

// What an operation makes of one failing call. The first row that fits holds; without one, a
// warning is none and everything else refuses the operation.
struct Rule {
  std::string_view operations;  // beginning of the name; empty: any
  std::string_view function;    // empty: any
  int rc;                       // or kAnyCode, kAnyFailure
  Expected expected;
  Generation generation = Generation::kFirst;
  Transfer transfer = Transfer::kAny;
  Place place = Place::kAny;
};

constexpr int kAnyCode = 1000;
constexpr int kAnyFailure = 1001;  // all but a warning

constexpr Generation k1 = Generation::kFirst;
constexpr Generation k2 = Generation::kSecond;

constexpr Rule kRules[] = {
    // First generation. What tidies up, or has a second choice, refuses nothing.
    {"", "SQLFreeHandle", kAnyCode, Expected::kDone},
    {"", "SQLFreeStmt", kAnyCode, Expected::kDone},
    {"close", "", kAnyCode, Expected::kDone},
    {"releaseConnection", "", kAnyCode, Expected::kDone},
    {"clearBatch", "", kAnyCode, Expected::kDone},
    {"open again", "SQLEndTran", kAnyCode, Expected::kDone},
    {"open again", "SQLDisconnect", kAnyCode, Expected::kDone},
    // Kept: the connection stays open, but its type is not known.
    {"open", "SQLGetInfo", kAnyFailure, Expected::kRefused},
    {"", "SQLGetInfo", kAnyCode, Expected::kDone},
    {"", "SQLGetConnectAttr", kAnyCode, Expected::kDone},
    // The environment's failure is told when the connection is opened.
    {"createConnection", "", kAnyCode, Expected::kDone},
    // The batch's own attributes: the last one, its size, is needed.
    {"executeBatch", "SQLSetStmtAttr", kAnyCode, Expected::kDone, k1, Transfer::kAny,
     Place::kNotLast},
    // A table that could not be dropped is created all the same, and the database has its say.
    {"createTable", "SQLAllocHandle", kAnyFailure, Expected::kDone, k1, Transfer::kAny,
     Place::kMiddle},
    {"createTable", "SQLPrepare", kAnyFailure, Expected::kDone, k1, Transfer::kAny,
     Place::kNotFinal},
    {"createTable", "SQLNumParams", kAnyFailure, Expected::kDone, k1, Transfer::kAny,
     Place::kNotFinal},
    {"createTable", "SQLExecute", kAnyFailure, Expected::kDone, k1, Transfer::kAny,
     Place::kNotFinal},
    {"createTable", "SQLRowCount", kAnyFailure, Expected::kDone, k1, Transfer::kAny,
     Place::kNotFinal},
    // "No data" is the end of rows, of results, and of an update that hits none. A list that ended
    // early may lack the column asked for.
    {"getNumColumns", "", SQL_NO_DATA, Expected::kRefused},
    {"getColumnInfo", "", SQL_NO_DATA, Expected::kRefused},
    {"", "SQLAllocHandle", SQL_NO_DATA, Expected::kRefused},
    {"", "SQLTables", SQL_NO_DATA, Expected::kRefused},
    {"", "SQLColumns", SQL_NO_DATA, Expected::kRefused},
    {"", "SQLPrimaryKeys", SQL_NO_DATA, Expected::kRefused},
    {"getTableColumn", "", SQL_NO_DATA, Expected::kEither},
    {"metadata getTableColumnType", "", SQL_NO_DATA, Expected::kEither},
    {"next", "", SQL_NO_DATA, Expected::kDone},
    {"get", "", SQL_NO_DATA, Expected::kDone},
    {"metadata", "", SQL_NO_DATA, Expected::kDone},
    {"createTable", "SQLPrepare", SQL_NO_DATA, Expected::kRefused},
    {"createTable", "SQLNumParams", SQL_NO_DATA, Expected::kRefused},
    {"createTable", "SQLRowCount", SQL_NO_DATA, Expected::kRefused},
    {"createTable", "SQLExecute", SQL_NO_DATA, Expected::kRefused, k1, Transfer::kPlain},
    {"createTable", "", SQL_NO_DATA, Expected::kDone},
    {"executeBatch", "SQLExecute", SQL_NO_DATA, Expected::kRefused},
    {"execute", "SQLExecute", SQL_NO_DATA, Expected::kDone, k1, Transfer::kSafe},
    // Kept: of all columns of a row only an error ends the row; the last one's status is the row's.
    // A table's name that was not read is another table's.
    {"", "SQLGetData", SQL_ERROR, Expected::kRefused},
    {"", "SQLGetData", SQL_INVALID_HANDLE, Expected::kRefused},
    {"getTableColumnInfo", "SQLGetData", kAnyFailure, Expected::kEither, k1, Transfer::kAny,
     Place::kNotLast},
    {"metadata getTableColumnType", "SQLGetData", kAnyFailure, Expected::kEither, k1,
     Transfer::kAny, Place::kNotLast},
    {"", "SQLGetData", kAnyFailure, Expected::kDone, k1, Transfer::kAny, Place::kNotLast},

    // Second generation.
    {"", "SQLFreeHandle", kAnyCode, Expected::kDone, k2},
    {"", "SQLGetConnectAttr", kAnyCode, Expected::kDone, k2},
    {"releaseConnection2", "", kAnyCode, Expected::kDone, k2},
    {"forced disconnect", "", kAnyCode, Expected::kDone, k2},
    {"disconnect", "SQLFreeStmt", kAnyCode, Expected::kDone, k2},
    {"releaseStatement", "SQLFreeStmt", kAnyCode, Expected::kDone, k2, Transfer::kAny,
     Place::kAgain},
    // Kept: the environment is never told of safe transfer, the connection is.
    {"createConnection2", "SQLSetEnvAttr", SQL_SUCCESS_WITH_INFO, Expected::kRefused, k2},
    {"createConnection2", "SQLAllocHandle", SQL_SUCCESS_WITH_INFO, Expected::kRefused, k2,
     Transfer::kAny, Place::kNotFinal},
    {"hasMoreData", "SQLFetch", SQL_NO_DATA, Expected::kDone, k2},
    {"nextResultSet", "SQLMoreResults", SQL_NO_DATA, Expected::kDone, k2},
    {"execute", "SQLExecute", SQL_NO_DATA, Expected::kDone, k2, Transfer::kSafe},
    // The end of a long value whose driver never tells how long it is.
    {"nextRow", "SQLGetData", SQL_NO_DATA, Expected::kEither, k2, Transfer::kSafe},
    {"nextRow", "SQLGetData", SQL_SUCCESS_WITH_INFO, Expected::kEither, k2, Transfer::kPlain},
    // Kept: a warning is a failure where transfers are not safe.
    {"", "", SQL_SUCCESS_WITH_INFO, Expected::kRefused, k2, Transfer::kPlain},
};

Expected expectedOf(const Operation& operation, bool safe, const std::string& function,
                    const Standing& standing, SQLRETURN rc) {
  for (const Rule& rule : kRules) {
    const bool code = rule.rc == rc || rule.rc == kAnyCode ||
                      (rule.rc == kAnyFailure && rc != SQL_SUCCESS_WITH_INFO);
    const bool transfer =
        rule.transfer == Transfer::kAny || (rule.transfer == Transfer::kSafe) == safe;
    if (code && transfer && standing.is(rule.place) && rule.generation == operation.generation &&
        std::string_view(operation.name).starts_with(rule.operations) &&
        (rule.function.empty() || rule.function == function)) {
      return rule.expected;
    }
  }
  return rc == SQL_SUCCESS_WITH_INFO ? Expected::kDone : Expected::kRefused;
}

// Under which keys the first generation logs a failing call.
struct KeyRule {
  std::string_view operations;  // as in a Rule
  std::string_view function;
  std::uint64_t keys;  // one of these, as in World::keysLogged
  bool evenIfDone = false;
  Place place = Place::kAny;
};

// The key 8010NN.
constexpr std::uint64_t key(int number) {
  return std::uint64_t{1} << number;
}

constexpr KeyRule kKeys[] = {
    {"", "SQLFreeStmt", key(15), true},
    {"open", "", key(0)},
    {"commit", "", key(2)},
    {"rollback", "", key(3)},
    {"clearBatch", "", key(19), true},
    {"executeBatch", "", key(21)},
    {"execute", "SQLExecute", key(16)},
    {"execute", "SQLBindParameter", key(16)},
    {"execute", "SQLRowCount", key(16)},
    {"execute", "", key(4)},
    {"createBatch", "", key(4)},
    // The catalogue is asked whether there is a table to be dropped; dropping may fail.
    {"createTable", "SQLExecute", key(16), true},
    {"createTable", "SQLRowCount", key(16), true},
    {"createTable", "SQLAllocHandle", key(4) | key(5), true},
    {"createTable", "SQLPrepare", key(4), true},
    {"createTable", "SQLNumParams", key(4), true},
    {"createTable", "", key(5)},
    {"nextResultSet", "", key(18)},
    {"next", "", key(12)},
    {"getNumColumns", "", key(7)},
    {"getColumnInfo", "", key(8), false, Place::kNotLast},
    {"getColumnInfo", "", key(9), false, Place::kLast},
    {"getSchemaNames", "", key(5)},
    {"getTableNames", "", key(5)},
    {"metadata getSchemaNames", "", key(5)},
    {"metadata getTableNames", "", key(5)},
    {"getTable", "", key(6)},
    {"metadata getTable", "", key(6)},
};

const KeyRule* keyRuleOf(const Operation& operation, const std::string& function,
                         const Standing& standing) {
  const auto fits = [&](const KeyRule& rule) {
    return std::string_view(operation.name).starts_with(rule.operations) &&
           (rule.function.empty() || rule.function == function) && standing.is(rule.place);
  };
  const auto* const rule = std::find_if(std::begin(kKeys), std::end(kKeys), fits);
  return rule == std::end(kKeys) ? nullptr : rule;
}

// An operation in a world of its own, from its preparation to the end of everything.
class Trial {
 public:
  Trial(Check& check, const Operation& operation, bool safe)
      : check_(check), operation_(operation), world_(safe) {
    operation.prepare(world_);
    linesBefore_ = world_.logLines;
    world_.keysLogged = 0;
  }

  World& world() { return world_; }

  Outcome run() {
    check_.tried();
    const Outcome outcome = operation_.run(world_);
    faulted_ = world_.odbc.lastFault;
    return outcome;
  }

  const std::string& faulted() const { return faulted_; }

  // The refusal of a single fault gives the driver's own reason.
  void expectReason(const Answer& answer, const std::string& what) {
    if (operation_.generation == Generation::kSecond) {
      // Of what could not be made nobody can ask why.
      const bool asked = faulted_ != "SQLAllocHandle" || answer.records.empty();
      if (world_.error->getErrorString() != (asked ? answer.record : "[-1][]")) {
        check_.found(what + ": says " + world_.error->getErrorString());
      }
    } else if (!answer.logged.empty() && !world_.diagnosticLogged) {
      check_.found(what + ": does not log the diagnostic");
    }
  }

  // A single fault is logged under no key but its own; one that does no harm, not at all.
  void expectKey(Outcome outcome, const Standing& standing, const std::string& what) {
    if (operation_.generation != Generation::kFirst) return;
    const KeyRule* const rule = keyRuleOf(operation_, faulted_, standing);
    const bool isTold = rule != nullptr && (outcome == Outcome::kRefused || rule->evenIfDone);
    if ((world_.keysLogged & ~(isTold ? rule->keys : 0)) != 0) {
      check_.found(what + ": logs under another key");
    }
  }

  // What must hold whatever failed: the refusal is told, the server can go on, and nothing is left
  // behind.
  void expectSound(Outcome outcome, const std::string& what) {
    if (outcome == Outcome::kImpossible) check_.found(what + ": an impossible result");
    if (outcome == Outcome::kRefused) expectTold(what);
    world_.odbc.forgetFaults();
    expectNothingLeft(check_, world_, operation_.name, what);
    for (const std::string& misuse : world_.odbc.misuses) {
      if (!isKept(misuse)) check_.found(std::string(what).append(": ").append(misuse));
    }
  }

 private:
  // Uses of handles that are as they are on purpose.
  bool isKept(const std::string& misuse) const {
    const auto is = [&](std::string_view text) { return misuse.find(text) != misuse.npos; };
    // A disconnect frees the statements' handles; without safe transfer they are freed again.
    const bool second = operation_.generation == Generation::kSecond;
    if (second && is("disconnected with live statements")) return true;
    if (second && !world_.safe && is("on no live stmt")) return true;
    // A handle that could not be made is asked why, and one that cannot be disconnected is freed.
    return is("SQLGetDiagRec on no live") || is("freed a dbc that is connected");
  }

  void expectTold(const std::string& what) {
    if (operation_.generation == Generation::kFirst) {
      // A column that the table does not have, because its scan ended early, is not told of.
      const bool missing =
          std::string_view(operation_.name).find("getTableColumn") != std::string_view::npos;
      if (world_.logLines == linesBefore_ && !missing)
        check_.found(what + ": refused without a log line");
    } else if (std::string_view(world_.error->getErrorString()).empty()) {
      check_.found(what + ": refused without an error record");
    }
  }

  Check& check_;
  const Operation& operation_;
  World world_;
  std::uint64_t linesBefore_ = 0;
  std::string faulted_;
};

std::string describe(const Operation& operation, bool safe, int call, const fake::Answer& answer) {
  return std::string(operation.name) + (safe ? ", safe" : "") + ", call " + std::to_string(call) +
         " answers " + std::to_string(answer.rc) + (answer.records.empty() ? "" : " with record");
}

// The calls that an operation makes.
Strings callsOf(Check& check, const Operation& operation, bool safe) {
  Trial trial(check, operation, safe);
  trial.world().odbc.logging = true;
  const Outcome outcome = trial.run();
  Strings calls = trial.world().odbc.takeLog();
  const std::string what = std::string(operation.name) + (safe ? ", safe" : "");
  if (outcome != Outcome::kDone) check.found(what + ": does not succeed without a fault");
  trial.expectSound(outcome, what);
  return calls;
}

void tryFault(Check& check, const Operation& operation, bool safe, int call,
              const Standing& standing, const Answer& answer, bool fromThenOn) {
  Trial trial(check, operation, safe);
  trial.world().odbc.fail("", call, answer, fromThenOn);
  const Outcome outcome = trial.run();
  const std::string what = describe(operation, safe, call, answer) +
                           (fromThenOn ? " from then on" : "") + " (" + trial.faulted() + ")";
  if (trial.faulted().empty()) check.found(what + ": the call was not made");
  if (!fromThenOn) {
    const Expected expected = expectedOf(operation, safe, trial.faulted(), standing, answer.rc);
    if (expected == Expected::kDone && outcome != Outcome::kDone) check.found(what + ": refused");
    if (expected == Expected::kRefused && outcome == Outcome::kDone) check.found(what + ": done");
    if (expected == Expected::kRefused) trial.expectReason(answer, what);
    trial.expectKey(outcome, standing, what);
  }
  trial.expectSound(outcome, what);
}

}  // namespace

bool checkFaults(const Options&) {
  Check check("faults");
  for (const Operation& operation : operations()) {
    for (const bool safe : {false, true}) {
      const Strings calls = callsOf(check, operation, safe);
      for (std::size_t i = 0; i < calls.size(); ++i) {
        const Standing standing = standingOf(calls, i);
        for (const Answer& answer : kAnswers) {
          for (const bool fromThenOn : {false, true}) {
            tryFault(check, operation, safe, static_cast<int>(i) + 1, standing, answer, fromThenOn);
          }
        }
      }
    }
  }
  return check.report();
}

bool checkFaultPairs(const Options& options) {
  Check check("pairs of faults");
  std::mt19937_64 random(options.seed);
  const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
  std::vector<std::size_t> calls;
  for (const Operation& operation : operations()) {
    calls.push_back(callsOf(check, operation, false).size());
  }
  for (std::uint64_t i = 0; i < options.count;) {
    const std::size_t at = below(operations().size());
    if (calls[at] == 0) continue;
    const Operation& operation = operations()[at];
    const bool safe = below(2) == 1;
    const int first = 1 + static_cast<int>(below(calls[at]));
    const int second = first + 1 + static_cast<int>(below(6));
    const fake::Answer& answer = kAnswers[below(std::size(kAnswers))];
    const fake::Answer& other = kAnswers[below(std::size(kAnswers))];
    Trial trial(check, operation, safe);
    trial.world().odbc.fail("", first, answer);
    trial.world().odbc.fail("", second, other);
    const Outcome outcome = trial.run();
    trial.expectSound(outcome, describe(operation, safe, first, answer) + ", call " +
                                   std::to_string(second) + " answers " + std::to_string(other.rc));
    ++i;
  }
  return check.report();
}

}  // namespace verify
