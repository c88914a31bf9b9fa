#pragma once

// A scripted ODBC: answers what a test says, and remembers what it was asked.
//
// One source, two forms:
//   driver    a driver that the real driver manager loads; what the program calls goes through it
//   stand-in  a libodbc.so.2 that takes the driver manager's place, for what that hides: failing
//             allocations of environments and connections, failing SQLGetDiagRec, old type numbers
// In both forms fakeOdbc() of fake_odbc_client.h gives the one object to script and to look at.

#include <sql.h>
#include <sqlext.h>

#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fake {

// One diagnostic record; texts of any length.
struct Diagnostic {
  std::string state;
  SQLINTEGER native = 0;
  std::string message;
};

// What a call answers. With SQL_SUCCESS and SQL_SUCCESS_WITH_INFO the call also does what it
// always does; with every other code it does nothing.
struct Answer {
  SQLRETURN rc = SQL_SUCCESS;
  std::vector<Diagnostic> records;
};

// A failure with one record, and one without.
inline Answer failure(std::string state, SQLINTEGER native, std::string message) {
  return {SQL_ERROR, {{std::move(state), native, std::move(message)}}};
}
inline Answer failureWithoutRecord() {
  return {SQL_ERROR, {}};
}

// Whether the pieces of a value say how much is left.
enum class Total {
  kKnown,    // each says what was left before it
  kUnknown,  // SQL_NO_TOTAL, but the last says its own length
  kNever,    // SQL_NO_TOTAL, the last too; a further call answers SQL_NO_DATA
};

// A value of a result: its bytes as SQLGetData delivers them, whatever C type is asked for.
struct Cell {
  std::string bytes;
  bool null = false;
  Total total = Total::kKnown;
  SQLLEN shortBy = 0;  // what a piece that is not the last leaves unused of the room it has

  Cell() : null(true) {}
  Cell(const char* text) : bytes(text) {}
  Cell(std::string text, Total howTotal = Total::kKnown, SQLLEN pieceShortBy = 0)
      : bytes(std::move(text)), total(howTotal), shortBy(pieceShortBy) {}

  // A number or an ODBC structure.
  template <typename Raw>
  static Cell of(const Raw& raw) {
    return Cell(std::string(reinterpret_cast<const char*>(&raw), sizeof raw));
  }
};

struct ColumnDescription {
  std::string name;
  SQLSMALLINT sqlType = SQL_VARCHAR;
  SQLULEN columnSize = 0;
  SQLSMALLINT decimalDigits = 0;
  SQLLEN displaySize = 0;
  bool isUnsigned = false;
  SQLSMALLINT nullable = SQL_NULLABLE;
};

// One result of an execution. Without columns it is a row count.
struct Result {
  std::vector<ColumnDescription> columns;
  std::vector<std::vector<Cell>> rows;
  SQLLEN rowCount = 0;
  std::size_t repeat = 1;  // how often the rows come
};

struct ParamDescription {
  SQLSMALLINT sqlType = SQL_VARCHAR;
  SQLULEN size = 100;
  SQLSMALLINT decimalDigits = 0;
  SQLSMALLINT nullable = SQL_NULLABLE;
};

// A parameter value as the driver would read it at SQLExecute.
struct BoundValue {
  SQLSMALLINT cType = 0;
  SQLLEN indicator = 0;
  std::string bytes;  // none for NULL; a text without its terminator

  bool isNull() const { return indicator == SQL_NULL_DATA; }
  template <typename Raw>
  Raw as() const {
    Raw raw = {};
    std::memcpy(&raw, bytes.data(), bytes.size() < sizeof raw ? bytes.size() : sizeof raw);
    return raw;
  }
};

// What one SQLExecute had before it: rows of values, by parameter from 0.
struct Execution {
  std::string sql;
  std::vector<std::vector<BoundValue>> rows;
};

// What SQLBindParameter was told.
struct Binding {
  SQLSMALLINT cType;
  SQLPOINTER data;
  SQLLEN bufferBytes;
  SQLLEN* indicators;
};

struct Handle {
  SQLSMALLINT type = 0;
  Handle* parent = nullptr;
  bool live = true;
  std::vector<Diagnostic> records;
  bool connected = false;
  // Statements.
  std::string key;  // of its results: the SQL text or the catalog function's name
  std::map<SQLUSMALLINT, Binding> bindings;
  SQLULEN paramsetSize = 1;
  SQLUSMALLINT* paramStatus = nullptr;
  bool executed = false;
  std::size_t result = 0;
  std::size_t row = 0;  // from 1; 0: before the first
  SQLUSMALLINT column = 0;
  std::size_t offset = 0;
  bool finished = false;
};

// The size of a C type, 0 for those of variable length.
std::size_t fixedBytes(SQLSMALLINT cType);

inline const char* handleName(SQLSMALLINT type) {
  constexpr const char* kNames[] = {"?", "env", "dbc", "stmt"};
  return type >= SQL_HANDLE_ENV && type <= SQL_HANDLE_STMT ? kNames[type] : kNames[0];
}

// What a driver says that is not so.
struct Lies {
  std::optional<SQLSMALLINT> columnCount;
  std::optional<SQLSMALLINT> paramCount;
  std::optional<SQLSMALLINT> textLength;  // of names, of what SQLGetInfo says, and of diagnostics
  std::optional<SQLLEN> indicator;        // of what SQLGetData delivers
  bool unterminated = false;              // texts fill their room, and no NUL ends them
  bool nullHandles = false;               // made with success, and null
};

class FakeOdbc {
 public:
  // Scripts.
  Lies lies;
  std::string dbmsName = "Fake";
  // By SQL text, or by name for the catalog functions: what each execution gives, one after the
  // other (SQLMoreResults). What is not listed gives a row count of 0.
  std::map<std::string, std::vector<Result>> results;
  // By SQL text; else there is one default description a question mark.
  std::map<std::string, std::vector<ParamDescription>> params;
  // Written to the parameter status array at SQLExecute; null: one success a row; empty: nothing.
  std::optional<std::vector<SQLUSMALLINT>> paramStatus;
  bool linksLost = false;  // what connections say when asked whether they are dead
  // The next call of that name (behind those already waiting) answers this.
  void answer(const std::string& function, Answer answer) {
    answers_[function].push_back(std::move(answer));
  }
  // The `call`-th call from now on (from 1), of that name or (empty) of any, answers this; with
  // `fromThenOn` all later ones too.
  void fail(const std::string& function, int call, Answer answer, bool fromThenOn = false) {
    faults_.push_back({function, calls(function) + call, std::move(answer), fromThenOn});
  }

  void forgetFaults() { faults_.clear(); }

  // Records.
  bool logging = true;
  // One line a call: "SQLBindParameter(1,1,-16,4,10,0,ptr,24,ptr)". Handles are left out, texts are
  // quoted, addresses read "ptr" or "null". SQLGetDiagRec is left out: how often a driver manager
  // asks is its own affair.
  std::vector<std::string> takeLog() { return std::exchange(log, {}); }
  std::vector<std::string> log;
  std::string lastFault;  // the function whose call was the last to be made to fail by fail()
  std::vector<Execution> executions;
  // Calls that a correct program does not make: on freed handles, or freeing a parent first.
  std::vector<std::string> misuses;
  // Calls so far, of that name or (empty) of all, SQLGetDiagRec included.
  int calls(const std::string& function) const {
    const auto found = callCounts_.find(function);
    return found == callCounts_.end() ? 0 : found->second;
  }
  // Handles not freed: "env", "dbc", "stmt".
  std::vector<std::string> liveHandles() const {
    std::vector<std::string> live;
    for (const auto& handle : handles_) {
      if (handle->live) live.push_back(handleName(handle->type));
    }
    return live;
  }
  // Forgets what an earlier program has left behind; none of it may be used any more.
  void forgetHandles() { handles_.clear(); }
  // Forgets scripts and records. Live handles stay valid.
  void reset() {
    lies = {};
    dbmsName = "Fake";
    results.clear();
    params.clear();
    paramStatus.reset();
    linksLost = false;
    answers_.clear();
    faults_.clear();
    callCounts_.clear();
    logging = true;
    log.clear();
    executions.clear();
    misuses.clear();
    lastFault.clear();
    std::erase_if(handles_, [](const auto& handle) { return !handle->live; });
  }

  // The driver's side; only the scripted ODBC itself defines and calls these.
  struct Fault {
    std::string function;
    int call;
    Answer answer;
    bool fromThenOn;
  };
  // Counts and logs a call, and gives the answer that a script has for it.
  Answer enter(const char* function, Handle* handle, const std::string& arguments);
  Handle* makeHandle(SQLSMALLINT type, Handle* parent);
  void freeHandle(Handle* handle);
  void freeChildren(const Handle* handle);
  // Whether a handle is one of this object's and not freed; notes a misuse if not.
  bool check(const char* function, SQLSMALLINT type, Handle* handle);
  bool hasLiveChildren(const Handle* handle) const;
  const std::vector<ParamDescription>& describeParams(const std::string& sql);
  // The current result of a statement, or null.
  const Result* currentResult(const Handle* statement) const;
  Execution snapshot(const Handle& statement) const;
  std::recursive_mutex mutex;

 private:
  std::deque<std::unique_ptr<Handle>> handles_;
  std::map<std::string, std::deque<Answer>> answers_;
  std::vector<Fault> faults_;
  std::map<std::string, int> callCounts_;
};

}  // namespace fake
