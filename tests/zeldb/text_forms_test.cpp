#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "datatypes/data_types.h"
#include "zeldb/diagnostic.h"
#include "zeldb/identifier_quotes.h"
#include "zeldb/statement_kind.h"
#include "zeldb/table_writer.h"

namespace zeldb {
namespace {

TEST(Diagnostic, TakesTheDriversTextApart) {
  const auto diagnostic = Diagnostic::parse("[42S02][-7][[driver][lib]no\ntable]");
  EXPECT_EQ(diagnostic.value_or(Diagnostic{}).toString(),
            "[driver][lib]no table (SQLSTATE 42S02, native -7)");
  for (const char* const text :
       {"", "42S02", "[42S02]", "[42S02][1]", "[4][1][x]", "[42S02][1]x"}) {
    EXPECT_FALSE(Diagnostic::parse(text)) << text;
  }
}

TEST(Diagnostic, ChoosesTheExitCodeByState) {
  struct Case {
    const char* text;
    int exitCode;
  };
  for (const Case& row : {Case{"[IM002][0][x]", 3},
                          {"[08S01][0][x]", 3},
                          {"[28000][0][x]", 3},
                          {"[HYT00][0][x]", 5},
                          {"[HYT01][0][x]", 5},
                          {"[HY000][0][x]", 4},
                          {"[23000][0][x]", 4},
                          {"[42000][0][x]", 4}}) {
    EXPECT_EQ(static_cast<int>(Diagnostic::parse(row.text).value_or(Diagnostic{}).exitCode()),
              row.exitCode)
        << row.text;
  }
}

TEST(IdentifierQuotes, FollowTheDatabase) {
  EXPECT_EQ(quotedIdentifier("a\"b`c", "POSTGRESQL"), "\"a\"\"b`c\"");
  EXPECT_EQ(quotedIdentifier("a\"b`c", "OTHERS"), "`a\"b``c`");
  EXPECT_EQ(quotedIdentifier("a]b", "MSSQL"), "[a]]b]");
}

TEST(StatementKind, TellsUpdatesByTheFirstWord) {
  struct Case {
    const char* sql;
    bool update;
  };
  for (const Case& row : {Case{"select 1", false},
                          {" \n INSERT into t values (1)", true},
                          {"-- note\n/* more */ update t set a = 1", true},
                          {"/* open", false},
                          {"--", false},
                          {"", false},
                          {"creates", false},
                          {"drop table t", true},
                          {"insert into t values (1) RETURNING a", false},
                          {"with x as (select 1) select * from x", false}}) {
    EXPECT_EQ(isUpdateStatement(row.sql), row.update) << row.sql;
  }
}

TEST(StatementKind, TellsStatementsFromTables) {
  for (const char* const text : {"select 1", "SELECT\n1", " values(1)", "with/**/x as (select 1)",
                                 "-- note\nselect 1", "drop table t"}) {
    EXPECT_TRUE(isStatement(text)) << text;
  }
  for (const char* const text : {"", "t", "main.t", "\"my table\"", "[my table]", "`a b`", "t1 "}) {
    EXPECT_FALSE(isStatement(text)) << text;
  }
}

TEST(TableWriter, AlignsByDisplayWidth) {
  std::ostringstream out;
  TableWriter writer(out);
  writer.begin({{"name", DataTypes::kString}, {"n", DataTypes::kInteger}});
  std::array<DataTypes::DataValue, 2> row;
  struct Case {
    const char* name;
    int number;
  };
  for (const Case& values : {Case{"e\xCC\x81t\xC3\xA9", 1},
                             {"\xE6\x97\xA5\xE6\x9C\xAC", -20},
                             {"a\nb", 3},
                             {nullptr, 0}}) {
    row[0].clear();
    row[0].string = values.name;
    row[1].int32 = values.number;
    row[0].null = values.name == nullptr;
    row[1].null = row[0].null;
    writer.row(row);
  }
  writer.end();
  EXPECT_EQ(out.str(),
            "name    n\n"
            "----  ---\n"
            "e\xCC\x81t\xC3\xA9     1\n"
            "\xE6\x97\xA5\xE6\x9C\xAC  -20\n"
            "a b     3\n"
            "\n"
            "(4 rows)\n");
}

}  // namespace
}  // namespace zeldb
