// Each ODBC call of a life from preparation to disconnect is made to answer each return code.

#include <functional>

#include "tests/driver2/driver2_fixture.h"
#include "tests/support/packed_row.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

class Fault2Test : public Driver2Fixture {
 protected:
  struct Outcome {
    int result = 0;
    std::string said;  // at the step that failed
    Strings calls;
  };

  void script() {
    odbc.reset();
    odbc.results["q ?"] = {
        {{{"n", SQL_INTEGER, 10}, {"s", SQL_VARCHAR, 99}, {"b", SQL_VARBINARY, 9}},
         {{fake::Cell::of(1), "text", "xyz"}, {fake::Cell::of(2), "", ""}}}};
  }

  // Writes, reads in both forms and ends the connection; stops at the first step that fails.
  Outcome live() {
    const Types types = {kInteger, kString, kBinary};
    Types one = {kInteger};
    std::vector<int> columns = {0};
    Cells parameter(1);
    Cells row(3);
    PreparedStatement* statement = nullptr;
    bool more = false;
    const std::function<int()> steps[] = {
        [&] { return (statement = prepare("q ?", types)) == nullptr ? -1 : 0; },
        [&] { return statement->execute(parameter, one, error); },
        [&] { return statement->setBindings(columns, one.data(), error); },
        [&] { return statement->execute(PackedRow({rawBytes(5)}).get(), error); },
        [&] { return statement->nextResultSet(more, error); },
        [&] { return statement->hasMoreData(more, error); },
        [&] { return statement->nextRow(row, error); },
        [&] { return statement->hasMoreData(more, error); },
        [&] {
          const RowInternal2* packed = statement->nextRow(error);
          std::free(const_cast<RowInternal2*>(packed));
          return packed == nullptr ? -1 : 0;
        },
        [&] { return statement->nextResultSet(more, error); },
        [&] { return connection->releaseStatement(statement, error); },
        [&] { return connection->commit(error); },
        [&] { return connection->rollback(error); },
        [&] { return connection->disconnect(false, error); },
    };
    Outcome outcome;
    for (const auto& step : steps) {
      outcome.result = step();
      if (outcome.result != 0) break;
    }
    outcome.said = said();
    std::free(const_cast<char*>(row[1].string));
    std::free(const_cast<unsigned char*>(row[2].binary.data));
    outcome.calls = odbc.takeLog();
    return outcome;
  }

  static std::string functionOf(const std::string& line) { return line.substr(0, line.find('(')); }
};

TEST_F(Fault2Test, EveryCallAnswersEveryReturnCode) {
  struct Code {
    fake::Answer answer;
    const char* text;
  };
  const Code kCodes[] = {{failing(), "[-1][42000]no"},
                         {fake::failureWithoutRecord(), "[-1][]"},
                         {{SQL_SUCCESS_WITH_INFO, {}}, "[1][]"},
                         {{SQL_STILL_EXECUTING, {}}, "[2]Still executing"},
                         {{SQL_NEED_DATA, {}}, "[99]Need data"},
                         {{SQL_NO_DATA, {}}, "[100]No data"},
                         {{SQL_INVALID_HANDLE, {}}, "[-2]Invalid handle"},
                         {{7, {}}, "[7]Unknown error"}};
  for (const bool safe : {false, true}) {
    script();
    open(safe);
    const std::size_t count = live().calls.size();
    close();
    ASSERT_GT(count, 20u);
    for (std::size_t call = 1; call <= count; ++call) {
      for (const Code& code : kCodes) {
        script();
        open(safe);
        odbc.fail("", static_cast<int>(call), code.answer);
        const Outcome outcome = live();
        ASSERT_GE(outcome.calls.size(), call);
        const std::string function = functionOf(outcome.calls[call - 1]);
        const SQLRETURN rc = code.answer.rc;
        // What a released statement frees, and that a driver does not know of its link, is not
        // looked at, and a warning is none in safe transfer. What stands behind an execution that
        // hits no row, or behind the last row or result, goes its own way.
        const bool afterRelease = function == "SQLFreeHandle" || function == "SQLGetConnectAttr" ||
                                  (function == "SQLFreeStmt" && outcome.result == 0);
        const bool atEnd =
            (rc == SQL_NO_DATA && (function == "SQLMoreResults" || function == "SQLFetch" ||
                                   (safe && function == "SQLExecute"))) ||
            (rc == SQL_SUCCESS_WITH_INFO && function == "SQLMoreResults");
        if (afterRelease || (rc == SQL_SUCCESS_WITH_INFO && safe)) {
          EXPECT_EQ(outcome.result, 0) << function << call << code.text << outcome.said;
        } else if (!atEnd) {
          // A statement without a handle has no record.
          const std::string text =
              function == "SQLAllocHandle" && rc == SQL_ERROR ? "[-1][]" : code.text;
          EXPECT_EQ(outcome.result, -1) << function << call << code.text;
          EXPECT_EQ(outcome.said, "odbc|" + text) << function << call;
        }
        odbc.reset();  // the fault must not reach the release
        close();
        EXPECT_EQ(odbc.liveHandles(), Strings({"env"})) << function << call << code.text;
      }
    }
  }
}

}  // namespace
}  // namespace KORVEX::Zel::DB
