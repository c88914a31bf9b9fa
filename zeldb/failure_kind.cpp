#include "zeldb/failure_kind.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace zeldb {
namespace {

struct Rule {
  std::string_view state;   // prefix of the SQLSTATE
  std::string_view native;  // the database's number; empty for any
  std::string_view word;    // in the text; empty for any
  FailureKind kind;
};

// The first row that fits holds; a refusal by the database that no row fits is a row's fault.
constexpr std::array kRules = {
    // What PostgreSQL's driver says of a server that answers, and lets nobody in.
    Rule{"08001", "", "authentication failed", FailureKind::kOther},
    Rule{"08001", "", "does not exist", FailureKind::kOther},
    Rule{"08001", "", "no pg_hba.conf entry", FailureKind::kOther},
    Rule{"08", "", "", FailureKind::kLostLink},
    Rule{"57P", "", "", FailureKind::kLostLink},        // PostgreSQL is being shut down or started
    Rule{"HY000", "2002", "", FailureKind::kLostLink},  // MariaDB: no server there
    Rule{"HY000", "2003", "", FailureKind::kLostLink},
    Rule{"HY000", "2006", "", FailureKind::kLostLink},  // MariaDB: server gone, link lost
    Rule{"HY000", "2013", "", FailureKind::kLostLink},
    Rule{"HY000", "1040", "", FailureKind::kLostLink},  // MariaDB: too many connections
    Rule{"HY000", "1047", "", FailureKind::kLostLink},  // MariaDB: a node outside its cluster
    Rule{"HY000", "1180", "", FailureKind::kLostLink},
    // What PostgreSQL's driver says first of a link that died while it was idle.
    Rule{"HY000", "", "SAVEPOINT failed", FailureKind::kLostLink},
    Rule{"40", "", "", FailureKind::kTransient},
    Rule{"55P03", "", "", FailureKind::kTransient},         // PostgreSQL: a lock is not to be had
    Rule{"HY000", "1205", "", FailureKind::kTransient},     // MariaDB: lock waited for too long
    Rule{"HY000", "1213", "", FailureKind::kTransient},     // MariaDB: deadlock
    Rule{"HY000", "5", "locked", FailureKind::kTransient},  // SQLite: another one writes
    Rule{"HY000", "6", "locked", FailureKind::kTransient},
    Rule{"HY000", "8", "readonly", FailureKind::kOther},  // SQLite: file, disk
    Rule{"HY000", "10", "disk I/O", FailureKind::kOther},
    Rule{"HY000", "11", "malformed", FailureKind::kOther},
    Rule{"HY000", "13", "full", FailureKind::kOther},
    Rule{"HY000", "1021", "", FailureKind::kOther},  // MariaDB: disk full, table full, read-only
    Rule{"HY000", "1114", "", FailureKind::kOther}, Rule{"HY000", "1290", "", FailureKind::kOther},
    Rule{"25", "", "", FailureKind::kOther},     // state of the transaction
    Rule{"42", "", "", FailureKind::kOther},     // statement, rights
    Rule{"53", "", "", FailureKind::kOther},     // resources
    Rule{"57", "", "", FailureKind::kOther},     // the operator
    Rule{"HY001", "", "", FailureKind::kOther},  // memory
    Rule{"HY010", "", "", FailureKind::kOther},  // order of calls
    Rule{"HYC00", "", "", FailureKind::kOther},  // not in this driver
};

}  // namespace

FailureKind kindOf(const Failure& failure) {
  const ExitCode code = failure.exitCode();
  if (code == ExitCode::kInDoubt) {
    return FailureKind::kInDoubt;
  }
  if (code != ExitCode::kSql && code != ExitCode::kConnect) {
    return FailureKind::kOther;
  }
  const std::string_view text = failure.what();
  const auto* const rule = std::find_if(kRules.begin(), kRules.end(), [&](const Rule& row) {
    return failure.state().starts_with(row.state) &&
           (row.native.empty() || row.native == failure.native()) &&
           text.find(row.word) != std::string_view::npos;
  });
  if (rule != kRules.end()) {
    return rule->kind;
  }
  return code == ExitCode::kSql ? FailureKind::kRow : FailureKind::kOther;
}

Failure commitFailure(const Failure& failure) {
  if (failure.exitCode() == ExitCode::kSql && kindOf(failure) != FailureKind::kLostLink) {
    return failure.retold(fmt::format("commit: {}", failure.what()));
  }
  return {ExitCode::kInDoubt,
          fmt::format("in doubt, the answer to the commit was lost: {}", failure.what()),
          failure.state(), failure.native()};
}

}  // namespace zeldb
