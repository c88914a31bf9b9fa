// A driver that says what no driver should, below every operation. What is read then may be
// anything; that it is read within bounds, and that everything ends well, is what the sanitizers
// and this check see to.

#include <limits>

#include "tests/verify/check.h"
#include "tests/verify/operations.h"

namespace verify {
namespace {

constexpr SQLSMALLINT kMost = std::numeric_limits<SQLSMALLINT>::max();
constexpr SQLSMALLINT kLeast = std::numeric_limits<SQLSMALLINT>::min();
constexpr SQLULEN kHuge = SQLULEN{1} << 62;
constexpr SQLLEN kNegative = -7;

template <typename Change>
void changeColumns(fake::FakeOdbc& odbc, Change change) {
  for (auto& [key, results] : odbc.results) {
    for (fake::Result& result : results) {
      for (fake::ColumnDescription& column : result.columns) change(column);
    }
  }
}

template <typename Change>
void changeParams(fake::FakeOdbc& odbc, Change change) {
  for (auto& [key, params] : odbc.params) {
    for (fake::ParamDescription& param : params) change(param);
  }
}

struct Hostility {
  const char* name;
  void (*script)(fake::FakeOdbc&);
};

constexpr Hostility kHostilities[] = {
    {"2000 columns", [](auto& odbc) { odbc.lies.columnCount = 2000; }},
    {"32767 columns, none of them described",
     [](auto& odbc) {
       odbc.lies.columnCount = kMost;
       for (const char* call : {"SQLDescribeCol", "SQLColAttribute"}) {
         odbc.fail(call, 1, fake::failureWithoutRecord(), true);
       }
     }},
    {"-32768 columns", [](auto& odbc) { odbc.lies.columnCount = kLeast; }},
    {"no columns", [](auto& odbc) { odbc.lies.columnCount = 0; }},
    {"a column more", [](auto& odbc) { odbc.lies.columnCount = 13; }},
    {"2000 parameters", [](auto& odbc) { odbc.lies.paramCount = 2000; }},
    {"-1 parameters", [](auto& odbc) { odbc.lies.paramCount = -1; }},
    {"no parameters", [](auto& odbc) { odbc.lies.paramCount = 0; }},
    {"names of 32767 bytes", [](auto& odbc) { odbc.lies.textLength = kMost; }},
    {"names of -1 bytes", [](auto& odbc) { odbc.lies.textLength = -1; }},
    {"names of 257 bytes", [](auto& odbc) { odbc.lies.textLength = 257; }},
    {"names of 64 KB",
     [](auto& odbc) {
       changeColumns(odbc, [](auto& column) { column.name.assign(65536, 'n'); });
       odbc.dbmsName.assign(65536, 'd');
     }},
    {"unterminated texts", [](auto& odbc) { odbc.lies.unterminated = true; }},
    {"values beyond their room", [](auto& odbc) { odbc.lies.indicator = 1 << 20; }},
    {"values of 2^62 bytes", [](auto& odbc) { odbc.lies.indicator = SQLLEN{1} << 62; }},
    {"values of 2^32 + 3 bytes", [](auto& odbc) { odbc.lies.indicator = (SQLLEN{1} << 32) + 3; }},
    {"values of -7 bytes", [](auto& odbc) { odbc.lies.indicator = kNegative; }},
    {"values to be ended by NUL", [](auto& odbc) { odbc.lies.indicator = SQL_NTS; }},
    {"values without bytes", [](auto& odbc) { odbc.lies.indicator = 0; }},
    {"columns of 2^62 bytes",
     [](auto& odbc) {
       changeColumns(odbc, [](auto& column) {
         column.columnSize = kHuge;
         column.displaySize = static_cast<SQLLEN>(kHuge);
       });
     }},
    {"columns of -7 bytes",
     [](auto& odbc) {
       changeColumns(odbc, [](auto& column) {
         column.columnSize = static_cast<SQLULEN>(kNegative);
         column.displaySize = kNegative;
       });
     }},
    {"columns of no bytes",
     [](auto& odbc) {
       changeColumns(odbc, [](auto& column) { column.columnSize = column.displaySize = 0; });
     }},
    {"digits without number",
     [](auto& odbc) { changeColumns(odbc, [](auto& column) { column.decimalDigits = kMost; }); }},
    {"columns of an unknown type",
     [](auto& odbc) { changeColumns(odbc, [](auto& column) { column.sqlType = -9999; }); }},
    {"binary columns alone",
     [](auto& odbc) {
       changeColumns(odbc, [](auto& column) { column.sqlType = SQL_LONGVARBINARY; });
     }},
    {"wide columns alone",
     [](auto& odbc) { changeColumns(odbc, [](auto& column) { column.sqlType = SQL_WVARCHAR; }); }},
    {"time stamps alone",
     [](auto& odbc) {
       changeColumns(odbc, [](auto& column) { column.sqlType = SQL_TYPE_TIMESTAMP; });
     }},
    {"parameters of 2^62 bytes",
     [](auto& odbc) { changeParams(odbc, [](auto& param) { param.size = kHuge; }); }},
    {"parameters of an unknown type",
     [](auto& odbc) { changeParams(odbc, [](auto& param) { param.sqlType = -9999; }); }},
    {"a row status that is none",
     [](auto& odbc) { odbc.paramStatus = std::vector<SQLUSMALLINT>(3, 65535); }},
    {"no row status", [](auto& odbc) { odbc.paramStatus = std::vector<SQLUSMALLINT>(); }},
    {"more rows than the table has",
     [](auto& odbc) {
       for (auto& [key, results] : odbc.results) {
         for (fake::Result& result : results) result.repeat = 100;
       }
     }},
    {"a row count below zero",
     [](auto& odbc) { odbc.results[kInsert] = {fake::Result{{}, {}, -(SQLLEN{1} << 40), 1}}; }},
    {"null handles", [](auto& odbc) { odbc.lies.nullHandles = true; }},
    {"diagnostics of 1 MB",
     [](auto& odbc) {
       odbc.fail("", 1, fake::failure("42000", 7, std::string(1U << 20U, 'd')), true);
     }},
    {"diagnostics without state",
     [](auto& odbc) { odbc.fail("", 1, fake::failure("", 0, ""), true); }},
    {"diagnostics with a NUL and bytes that are no text",
     [](auto& odbc) {
       odbc.fail("", 1, fake::failure("\xff\xfe", -1, std::string("a\0\x80%s%n", 7)), true);
     }},
};

void tryHostility(Check& check, const Operation& operation, const Hostility& hostility, bool safe,
                  bool fromTheStart) {
  const std::string what = std::string(operation.name) + (safe ? ", safe" : "") + ", " +
                           hostility.name + (fromTheStart ? " from the start" : "");
  World world(safe);
  if (fromTheStart) hostility.script(world.odbc);
  operation.prepare(world);
  if (!fromTheStart) hostility.script(world.odbc);
  if (!operation.possible(world)) return;
  check.tried();
  if (operation.run(world) == Outcome::kImpossible) check.found(what + ": an impossible result");
  script(world.odbc);
  expectNothingLeft(check, world, operation.name, what);
}

}  // namespace

bool checkHostileDriver(const Options&) {
  Check check("hostile driver");
  for (const Hostility& hostility : kHostilities) {
    for (const Operation& operation : operations()) {
      for (const bool safe : {false, true}) {
        tryHostility(check, operation, hostility, safe, false);
        tryHostility(check, operation, hostility, safe, true);
      }
    }
  }
  return check.report();
}

}  // namespace verify
