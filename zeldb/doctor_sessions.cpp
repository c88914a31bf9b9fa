#include "zeldb/doctor_sessions.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>

#include "zeldb/failure.h"
#include "zeldb/query_parameters.h"
#include "zeldb/value_text.h"

namespace zeldb {
namespace {

constexpr const char* kTable = "zeldb_doctor";

// What a value is in words, how it is sent, and in which column it is kept.
struct Sample {
  std::string_view column;
  const char* parameter;
};

constexpr Sample kText = {"words", "string:é € 😀 ไทย"};
constexpr Sample kNull = {"words", "string"};
constexpr Sample kDecimal = {"amount", "decimal(34,10):123456789012345678901234.0123456789"};
constexpr Sample kMicroseconds = {"moment", "bigdatetime:2024-02-29T12:34:56.123456Z"};

// Why a database does not keep a value, where that is known.
struct Loss {
  DriverKind kind;
  std::string_view column;
  std::string_view cause;
  std::string_view remedy;
};

constexpr auto kLosses = std::to_array<Loss>({
    {DriverKind::kSqlite, "amount",
     "the database stores a decimal column's value as a double, which keeps 15 digits",
     "keep exact decimals in a text column"},
    {DriverKind::kSqlite, "moment", "the driver keeps milliseconds",
     "where microseconds matter, keep them in a text or bigint column"},
    {DriverKind::kMariadb, "words",
     "the character set of the connection or the database has no such characters",
     "set CHARSET=utf8mb4 in the data source, and: alter database ... character set utf8mb4"},
    {DriverKind::kPostgresql, "words",
     "the database's encoding or the client's has no such characters",
     "create the database with encoding UTF8"},
    {DriverKind::kAny, "", "the driver or the database changes the value",
     "try another column type; docs/databases.md lists what drivers cannot do"},
});

Advice lossOf(const DoctorPatient& patient, const Sample& sample) {
  const auto* const row = std::find_if(kLosses.begin(), kLosses.end(), [&](const Loss& loss) {
    return loss.kind == DriverKind::kAny ||
           (loss.kind == patient.driver->kind && loss.column == sample.column);
  });
  return {std::string(row->cause), std::string(row->remedy)};
}

Finding failedFinding(const DoctorPatient& patient, const Failure& failure) {
  std::string seen = failure.what();
  const std::string prefix = fmt::format("service \"{}\": ", patient.serviceName);
  if (seen.starts_with(prefix)) {
    seen.erase(0, prefix.size());
  }
  const auto advice = adviceFor(patient.driver->kind, seen, patient.names);
  return Finding::failed(
      failure.exitCode(), seen,
      advice.value_or(Advice{"the driver gives no more reason",
                             "run the statement with zeldb query --log-level debug"}));
}

// Runs a step's work; a Failure in it becomes the finding.
Finding guarded(const DoctorPatient& patient, const std::function<Finding()>& work) {
  try {
    return work();
  } catch (const Failure& failure) {
    for (const DoctorPatient::Opened& opened : patient.sessions) {
      opened.session->rollback();
    }
    return failedFinding(patient, failure);
  }
}

std::string generationsOf(const DoctorPatient& patient) {
  return patient.sessions.size() == 1
             ? fmt::format("in generation {}", patient.sessions[0].generation)
             : "in both generations";
}

// The only value of the first row as text, NULL as nothing.
std::optional<std::string> firstValue(Session& session, const std::string& sql,
                                      const Parameters& params = {}) {
  const auto rows = session.query(sql, params);
  const auto* const row = rows->next();
  if (row == nullptr) {
    throw Failure(ExitCode::kSql, fmt::format("\"{}\" gives no row", sql));
  }
  return row->at(0).isNull() ? std::nullopt
                             : std::optional(valueText(rows->columns().at(0).type, row->at(0)));
}

Finding login(DoctorPatient& patient, int generation) {
  return guarded(patient, [&] {
    const auto started = std::chrono::steady_clock::now();
    auto session = patient.connector.connect(patient.service, generation);
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - started;
    std::string seen = fmt::format("generation {}, {:.1f} ms", generation, taken.count());
    if (auto* const first = dynamic_cast<FirstGenerationSession*>(session.get())) {
      seen += fmt::format(", database type {}", first->databaseType());
    }
    patient.sessions.push_back({generation, std::move(session)});
    return Finding::ok(seen);
  });
}

std::string shown(const std::optional<std::string>& text) {
  return text ? fmt::format("\"{}\"", *text) : "NULL";
}

// What comes back of a sample in one session: nothing when all of it does, else what is lost.
std::optional<std::string> lossIn(Session& session, const Sample& sample) {
  const QueryParameters value({sample.parameter});
  const KORVEX::Zel::DB::Parameter& sent = value.values()[0];
  session.update(fmt::format("insert into {} (id, {}) values (1, ?)", kTable, sample.column),
                 value.values());
  std::optional<std::string> back;
  try {
    back = firstValue(session, fmt::format("select {} from {}", sample.column, kTable));
  } catch (const Failure& failure) {
    session.rollback();
    return fmt::format("cannot be read: {}", failure.what());
  }
  session.rollback();
  const std::optional<std::string> wanted =
      sent.value.isNull() ? std::nullopt : std::optional(valueText(sent.type, sent.value));
  return back == wanted
             ? std::nullopt
             : std::optional(fmt::format("{} comes back as {}", shown(wanted), shown(back)));
}

std::string lossText(const DoctorPatient& patient,
                     const std::map<std::string, std::vector<int>>& losses) {
  std::vector<std::string> texts;
  texts.reserve(losses.size());
  for (const auto& [loss, generations] : losses) {
    texts.push_back(generations.size() == patient.sessions.size()
                        ? loss
                        : fmt::format("generation {}: {}", fmt::join(generations, ", "), loss));
  }
  return fmt::format("{}", fmt::join(texts, "; "));
}

Finding checkSample(DoctorPatient& patient, const Sample& sample) {
  return guarded(patient, [&] {
    std::map<std::string, std::vector<int>> losses;  // and the generations that have them
    for (const DoctorPatient::Opened& opened : patient.sessions) {
      if (const auto loss = lossIn(*opened.session, sample)) {
        losses[*loss].push_back(opened.generation);
      }
    }
    if (!losses.empty()) {
      return Finding::warning(lossText(patient, losses), lossOf(patient, sample));
    }
    const std::string_view value = sample.parameter;
    const std::size_t colon = value.find(':');
    return Finding::ok(fmt::format(
        "{} comes back {}", colon == std::string_view::npos ? "NULL" : value.substr(colon + 1),
        generationsOf(patient)));
  });
}

void sendIds(Session& session, const std::vector<const char*>& ids) {
  const auto writer =
      session.insert(fmt::format("insert into {} (id, words) values (?, ?)", kTable));
  for (const char* const id : ids) {
    const QueryParameters row({std::string("integer:") + id, "string:row"});
    writer->add(row.values());
  }
  writer->send();
}

std::string countRows(Session& session) {
  return firstValue(session, fmt::format("select count(*) from {}", kTable)).value_or("no");
}

// Whether the server is a node of a cluster and may not yet show what other nodes have committed.
bool readsOldRows(const DoctorPatient& patient) {
  if (patient.driver->kind != DriverKind::kMariadb) {
    return false;
  }
  Session& session = *patient.sessions.front().session;
  try {
    const auto old = firstValue(session, "select @@wsrep_on and not @@wsrep_sync_wait & 1");
    session.rollback();
    return old == "1";
  } catch (const Failure&) {
    session.rollback();
    return false;  // a server that knows no clusters
  }
}

Advice oldRowsAdvice(const DoctorPatient& patient) {
  return {
      "rows that a dying node has committed show seconds later on the others; who looks for "
      "them before, as load --key does, sends them twice",
      fmt::format("set INITSTMT=set session wsrep_sync_wait = 1 in {}", patient.names.section)};
}

}  // namespace

Finding checkPlugIn(DoctorPatient& patient) {
  const std::filesystem::path& library = patient.connector.options().driver;
  try {
    const PlugIn plugIn(library);
    return Finding::ok(library.string());
  } catch (const Failure& failure) {
    return Finding::failed(failure.exitCode(), failure.what(),
                           {"the plug-in, or the ODBC driver manager that it needs, is not there",
                            "name it with --driver; apt-get install libodbc2"});
  }
}

Finding checkLogin1(DoctorPatient& patient) {
  return login(patient, 1);
}

Finding checkLogin2(DoctorPatient& patient) {
  return login(patient, 2);
}

Finding checkStatement(DoctorPatient& patient) {
  return guarded(patient, [&] {
    for (const DoctorPatient::Opened& opened : patient.sessions) {
      if (const auto one = firstValue(*opened.session, "select 1"); one != "1") {
        return Finding::failed(ExitCode::kSql, fmt::format("\"select 1\" gives {}", shown(one)),
                               {"the database's SQL is not understood",
                                "look whether the driver fits the server's version"});
      }
      opened.session->rollback();
    }
    const std::string seen = "\"select 1\" gives 1 " + generationsOf(patient);
    return readsOldRows(patient)
               ? Finding::warning(seen + ", on a node of a cluster", oldRowsAdvice(patient))
               : Finding::ok(seen);
  });
}

Finding checkParameters(DoctorPatient& patient) {
  Finding finding = guarded(patient, [&] {
    const QueryParameters one({"integer:1"});
    firstValue(*patient.sessions.back().session, "select 1 where 1 = ?", one.values());
    patient.sessions.back().session->rollback();
    return Finding::ok("the driver describes them");
  });
  if (finding.status == StepStatus::kFailed) {
    finding.code = ExitCode::kSql;  // an IM001 would stand for the connection
    patient.sessions.pop_back();
  }
  return finding;
}

Finding checkScratchTable(DoctorPatient& patient) {
  return guarded(patient, [&] {
    for (const DoctorPatient::Opened& opened : patient.sessions) {
      opened.session->update(
          fmt::format("create temporary table {} (id integer primary key, words varchar(40), "
                      "amount decimal(34,10), moment {})",
                      kTable, patient.driver->momentColumn),
          {});
      opened.session->commit();
    }
    return Finding::ok(
        fmt::format("temporary, gone with the connection, {}", generationsOf(patient)));
  });
}

Finding checkText(DoctorPatient& patient) {
  return checkSample(patient, kText);
}

Finding checkNull(DoctorPatient& patient) {
  return checkSample(patient, kNull);
}

Finding checkDecimal(DoctorPatient& patient) {
  return checkSample(patient, kDecimal);
}

Finding checkMicroseconds(DoctorPatient& patient) {
  return checkSample(patient, kMicroseconds);
}

Finding checkBatch(DoctorPatient& patient) {
  return guarded(patient, [&] {
    Session& session = *patient.sessions.front().session;
    sendIds(session, {"1", "2", "3"});
    session.commit();
    const std::string count = countRows(session);
    session.rollback();
    return count == "3"
               ? Finding::ok("3 rows sent together are all reported, and all there")
               : Finding::failed(ExitCode::kSql,
                                 fmt::format("of 3 rows sent together {} are there", count),
                                 {"the driver does not send arrays as it says",
                                  "use another version of the driver, or --batch 1"});
  });
}

Finding checkBadRow(DoctorPatient& patient) {
  Session& session = *patient.sessions.front().session;
  std::string reason;
  try {
    sendIds(session, {"4", "5", "1", "6"});
  } catch (const Failure& failure) {
    reason = failure.state();
  }
  session.rollback();
  return guarded(patient, [&] {
    const std::string count = countRows(session);
    session.rollback();
    if (reason.empty()) {
      return Finding::failed(ExitCode::kSql, "a key that is there already is not refused",
                             {"the driver does not report the failing row of a batch",
                              "use another version of the driver, or --batch 1"});
    }
    if (count != "3") {
      return Finding::failed(ExitCode::kSql,
                             fmt::format("{} rows are there after the rollback, not 3", count),
                             {"the table's engine knows no transactions",
                              "use one that does; on MariaDB default_storage_engine=InnoDB"});
    }
    return Finding::ok(fmt::format(
        "a batch with one fails (SQLSTATE {}), and a rollback removes all of it", reason));
  });
}

}  // namespace zeldb
