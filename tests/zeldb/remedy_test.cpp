#include "zeldb/remedy.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

#include "zeldb/remedy_table.h"

namespace zeldb {
namespace {

// A failure as a row describes it, in the least general way.
std::string failureOf(const Remedy& row) {
  const std::string state = std::string(row.state.empty() ? "HY000" : row.state) + "00000";
  return fmt::format("a {} b (SQLSTATE {}, native {})", row.message, state.substr(0, 5),
                     row.native);
}

TEST(Remedy, EveryRowCanBeReached) {
  const RemedyNames names{"{dsn}", "{user}", "{database}", "{server}", "{section}", "{services}"};
  for (const Remedy& row : kRemedies) {
    const Advice advice = adviceFor(row.kind, failureOf(row), names).value_or(Advice());
    EXPECT_EQ(advice.cause, row.cause) << failureOf(row);
    EXPECT_EQ(advice.remedy, row.remedy) << failureOf(row);
  }
}

TEST(Remedy, IsFoundByStateCodeAndMessage) {
  struct Case {
    const char* failure;
    const char* cause;
    DriverKind kind = DriverKind::kAny;
  };
  const Case cases[] = {
      {"[x]not found (SQLSTATE IM002, native 0)", "the DSN is in no odbc.ini, or has no Driver"},
      {"no (SQLSTATE IM003, native 0)", "the ODBC driver cannot be loaded"},
      {"Can't open lib 'x' (SQLSTATE 01000, native 0)",
       "the driver's file is missing, is no library, or a library that it needs is missing"},
      {"no (SQLSTATE 28000, native 18456)",
       "the server does not know the user, or the password is wrong"},
      {"FATAL:  password authentication failed for user (SQLSTATE 08001, native 101)",
       "the server does not know the user, or the password is wrong"},
      {"FATAL:  database \"x\" does not exist (SQLSTATE 08001, native 101)",
       "the database is missing on the server", DriverKind::kPostgresql},
      {"gone (SQLSTATE 08001, native 1)", "the server cannot be reached or lets nobody in"},
      {"gone (SQLSTATE 08S01, native 26)", "the connection to the server was lost"},
      {"late (SQLSTATE HYT00, native 0)", "the server did not answer in time"},
      {"no (SQLSTATE 42S02, native 1)", "there is no table or view of this name"},
      {"no (SQLSTATE 42000, native 1)",
       "the statement is wrong, or the user has not the right to do this"},
      {"no (SQLSTATE 22001, native 1)", "a text is longer than its column"},
      {"no (SQLSTATE 22003, native 1)", "a number is outside the range of its column"},
      {"no (SQLSTATE 23505, native 1)", "a key comes twice, a value is missing, or a check fails"},
      {"no (SQLSTATE 25000, native 0)", "the transaction is in a state that does not allow this"},
      {"no (SQLSTATE 40001, native 1)", "the transaction was ended because of another one"},
      {"no (SQLSTATE HYC00, native 0)", "the driver does not support this"},
      {"no (SQLSTATE HY010, native 0)", "calls came in an order that the driver does not allow"},
      {"[ma-3.1.15]Can't connect (115) (SQLSTATE HY000, native 2002)",
       "nothing listens on the server's address"},
      {"[ma-3.1.15]WSREP has not yet prepared (SQLSTATE 08S01, native 1047)",
       "the cluster's node is not in the majority and takes no statements"},
      // The same code of a driver that has not said its name.
      {"no (SQLSTATE HY000, native 19)", "the driver gives this reason only"},
      {"[SQLite]UNIQUE constraint failed: t.id (19) (SQLSTATE HY000, native 19)",
       "a key comes twice, a value is missing, or a check fails"},
  };
  for (const Case& row : cases) {
    const Advice advice = adviceFor(row.kind, row.failure).value_or(Advice());
    EXPECT_EQ(advice.cause, row.cause) << row.failure;
  }
  EXPECT_FALSE(adviceFor(DriverKind::kAny, "file.csv:2:1: \"x\" is no number"));
}

}  // namespace
}  // namespace zeldb
