// The catalogue of a schema with many tables, against what the database itself says in SQL, and the
// creation of tables.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "datatypes/data_types.h"
#include "tests/live/live_connection.h"

namespace live {
namespace {

using namespace KORVEX::Zel::DB;
using namespace DataTypes;
using Strings = std::vector<std::string>;

constexpr int kTables = 200;
constexpr int kSizeFromSql = -1;

struct ColumnType {
  const char* sqlType;
  const char* sqlName;  // as the database's own catalogue calls it
  unsigned int type;
  int size;
};

struct Catalogue {
  const Quirks& quirks;
  const char* schema;  // empty where there are none
  char quote;
  Strings setUp;
  // table, column, type, length or precision, nullable, key; in the order of the columns
  const char* columnsSql;
  std::vector<ColumnType> types;
  Strings unlisted;  // tables that are described although no list shows them
  Strings refused;   // SQLSTATEs of createTable, by the rows of kCreatedTypes; empty: accepted
  const char* columnTable;  // SQLSTATE of the creation of a column table
};

// clang-format off
const Catalogue kCatalogues[] = {
    {kQuirks[0], "", '"', {},
     "select m.name, p.name, p.type, 0, case p.\"notnull\" when 0 then 'YES' else 'NO' end,"
     " case p.pk when 0 then 'NO' else 'YES' end"
     " from sqlite_master m, pragma_table_info(m.name) p"
     " where m.type in ('table', 'view') order by m.name, p.cid",
     {{"integer", "INTEGER", kInteger, 9}, {"varchar(20)", "varchar(20)", kString, 20},
      {"bigint", "bigint", kLong, 19}, {"smallint", "smallint", kInteger, 5},
      {"double", "double", kFloat, 53}, {"decimal(12,3)", "decimal(12,3)", kString, 3},
      {"timestamp", "timestamp", kBigDateTime, 3}, {"time", "time", kTime, 0},
      {"bit", "bit", kBoolean, 1}, {"blob", "BLOB", kBinary, 0}, {"date", "date", kTimestamp, 0}},
     {},
     {"", "", "", "", "", "", "", "", "", ""}, "HY000"},
    {kQuirks[1], "Mixed Schema", '"',
     {"drop schema if exists \"Mixed Schema\" cascade", "create schema \"Mixed Schema\"",
      "create materialized view \"Mixed Schema\".kept as select 1 as a, 2 as b"},
     "select c.table_name, c.column_name, c.data_type,"
     " coalesce(c.character_maximum_length, c.numeric_precision, 0), c.is_nullable,"
     " case when k.column_name is null then 'NO' else 'YES' end from information_schema.columns c"
     " left join (select k.table_name, k.column_name from information_schema.key_column_usage k"
     "  join information_schema.table_constraints t using (constraint_name, table_schema)"
     "  where t.constraint_type = 'PRIMARY KEY' and k.table_schema = 'Mixed Schema') k"
     " on k.table_name = c.table_name and k.column_name = c.column_name"
     " where c.table_schema = 'Mixed Schema' order by c.table_name, c.ordinal_position",
     {{"integer", "integer", kInteger, 10}, {"varchar(20)", "character varying", kString,
      kSizeFromSql}, {"bigint", "bigint", kLong, 19}, {"smallint", "smallint", kInteger, 5},
      {"double precision", "double precision", kFloat, 17},
      {"numeric(12,3)", "numeric", kFixedDecimal, kSizeFromSql},
      {"timestamp(6)", "timestamp without time zone", kBigDateTime, 26},
      {"time", "time without time zone", kTime, 8}, {"boolean", "boolean", kBoolean, 1},
      {"bytea", "bytea", kBinary, 0}, {"date", "date", kTimestamp, 10}},
     {"Mixed Schema.kept", "pg_catalog.pg_class", "information_schema.tables"},
     {"", "", "", "", "42704", "", "42704", "42704", "42704", ""}, "42601"},
    {kQuirks[2], "otherdb", '`', {"set sql_mode = 'ANSI_QUOTES'"},
     "select table_name, column_name, data_type,"
     " coalesce(character_maximum_length, numeric_precision, 0), is_nullable,"
     " case column_key when 'PRI' then 'YES' else 'NO' end from information_schema.columns"
     " where table_schema = 'otherdb' order by table_name, ordinal_position",
     {{"integer", "int", kInteger, kSizeFromSql}, {"varchar(20)", "varchar", kString,
      kSizeFromSql}, {"bigint", "bigint", kLong, kSizeFromSql},
      {"smallint", "smallint", kInteger, kSizeFromSql}, {"double", "double", kFloat, 15},
      {"decimal(12,3)", "decimal", kFixedDecimal, kSizeFromSql},
      {"datetime(6)", "datetime", kBigDateTime, 19}, {"time", "time", kTime, 8},
      {"bit(1)", "bit", kBoolean, 1}, {"varbinary(50)", "varbinary", kBinary, kSizeFromSql},
      {"date", "date", kTimestamp, 10}},
     {"information_schema.TABLES"},
     {"", "", "", "", "", "", "", "", "HY000", ""}, "42000"},
};

const unsigned int kCreatedTypes[] = {kInteger, kLong, kFloat, kBigDateTime, kString,
                                      kMoney, kBoolean, kBinary, kInt16,
                                      createFixedDecimal(34, 10)};
// clang-format on

// Names that a pattern, a split or a change of case would lose.
constexpr const char* kOddNames[] = {"MixedCase", "with blank", "under_score", "underXscore",
                                     "per%cent",  "dot.ted",    "umläut",      "quote'd"};

class CatalogueOf : public testing::TestWithParam<const Catalogue*> {
 protected:
  using Key = std::string;

  void SetUp() override {
    for (const std::string& sql : of_.setUp) connection_.run(sql);
    if (*of_.schema == 0) dropEverything();
  }

  // Of SQLite's one schema, where the other tests leave their tables.
  void dropEverything() {
    const char kAll[] =
        "select type, name from sqlite_master where type in ('table', 'view') order by type desc";
    for (const Strings& row : connection_.rows(kAll, 2)) {
      connection_.run("drop " + row[0] + " " + quoted(row[1]));
    }
  }

  std::string quoted(const std::string& name) const { return of_.quote + name + of_.quote; }
  std::string qualified(const std::string& name) const {
    return (*of_.schema == 0 ? "" : quoted(of_.schema) + ".") + quoted(name);
  }

  static std::string tableName(int number) {
    const auto odd = static_cast<std::size_t>(number);
    return odd < std::size(kOddNames) ? kOddNames[odd] : "table_" + std::to_string(number);
  }

  // One to three key columns at changing places, and one column of each further type.
  void makeTable(int number) {
    std::string columns;
    std::string keys;
    const int count = 3 + number % static_cast<int>(of_.types.size());
    for (int at = 0; at < count; ++at) {
      const ColumnType& type = of_.types[static_cast<std::size_t>(at) % of_.types.size()];
      const std::string name = quoted((at % 2 == 0 ? "Col " : "col_") + std::to_string(at));
      const bool key = at <= number % 3;
      columns += name + " " + type.sqlType + (key || at % 3 == 0 ? " not null" : "") + ", ";
      if (key) keys.insert(0, name + (keys.empty() ? "" : ", "));
    }
    const std::string table = qualified(tableName(number));
    connection_.run("drop table if exists " + table);
    connection_.run("create table " + table + " (" + columns + "primary key (" + keys + "))");
  }

  void expectColumn(const Strings& row, int index) {
    const std::string what = row[0] + "." + row[1];
    const Column* column = nullptr;
    ASSERT_EQ(connection_->getTableColumnInfo(of_.schema, row[0], index, column), kSuccess) << what;
    ASSERT_NE(column, nullptr) << what;
    EXPECT_EQ(column->getName(), row[1]) << row[0];
    EXPECT_EQ(column->getPosition(), index + 1) << what;
    EXPECT_EQ(column->isNullable(), row[4] == "YES") << what;
    EXPECT_EQ(column->isPrimaryKey(), row[5] == "YES") << what;
    const auto type = std::ranges::find_if(
        of_.types, [&](const ColumnType& known) { return row[2] == known.sqlName; });
    ASSERT_NE(type, of_.types.end()) << row[2];
    EXPECT_EQ(column->getType(), type->type) << what << " " << row[2];
    EXPECT_EQ(column->getSize(), type->size == kSizeFromSql ? std::stoi(row[3]) : type->size)
        << what << " " << row[2];
  }

  const Catalogue& of_ = *GetParam();
  LiveConnection connection_{of_.quirks};
};

TEST_P(CatalogueOf, EqualsWhatTheDatabaseSays) {
  connection_.run("drop view if exists " + qualified("a_view"));
  for (int number = 0; number < kTables; ++number) makeTable(number);
  connection_.run("create view " + qualified("a_view") + " as select * from " +
                  qualified(tableName(3)));
  ASSERT_EQ(connection_->commit(), kSuccess);

  std::map<std::string, int> columns;  // by table
  for (const Strings& row : connection_.rows(of_.columnsSql, 6)) {
    ASSERT_NO_FATAL_FAILURE(expectColumn(row, columns[row[0]]++));
  }
  EXPECT_GE(columns.size(), static_cast<std::size_t>(kTables + 1));
  Strings expected;
  for (const auto& [table, count] : columns) {
    expected.push_back(table);
    int described = 0;
    EXPECT_EQ(connection_->getTableNumColumns(of_.schema, table, described), kSuccess);
    EXPECT_EQ(described, count) << table;
  }
  Strings names;
  EXPECT_EQ(connection_->getTableNames(of_.schema, names), kSuccess);
  std::ranges::sort(names);
  EXPECT_EQ(names, expected);
}

TEST_P(CatalogueOf, FindsTablesByEveryNameTheyHave) {
  for (const int number : {2, 5}) makeTable(number);
  ASSERT_EQ(connection_->commit(), kSuccess);
  const std::string prefix = *of_.schema == 0 ? "" : std::string(of_.schema) + ".";
  for (const std::string& name : {std::string("dot.ted"), prefix + "under_score"}) {
    int count = 0;
    EXPECT_EQ(connection_->getTableNumColumns(name, count), kSuccess);
    EXPECT_EQ(count, name == "dot.ted" ? 8 : 5) << name;
  }
  Strings names;
  EXPECT_EQ(connection_->getTableNames(names), kSuccess);
  for (const std::string& name : of_.unlisted) {
    int count = 0;
    EXPECT_EQ(connection_->getTableNumColumns(name, count), kSuccess);
    EXPECT_GT(count, 1) << name;
    const std::string table = name.substr(name.rfind('.') + 1);
    EXPECT_EQ(std::ranges::count(names, table), 0) << name;
  }
  Strings schemas;
  EXPECT_EQ(connection_->getSchemaNames(schemas), kSuccess);
  EXPECT_EQ(std::ranges::count(schemas, of_.schema), *of_.schema == 0 ? 0 : 1);
  EXPECT_EQ(std::ranges::count(schemas, "information_schema"), 0);
  EXPECT_EQ(connection_.log().diagnostic(), nullptr);
}

TEST_P(CatalogueOf, CreatesTheTablesThatTheDatabaseAccepts) {
  ASSERT_EQ(std::size(kCreatedTypes), of_.refused.size());
  const auto create = [&](unsigned int type, bool plain) {
    connection_.log().clear();
    return connection_->createTable(of_.schema, "Made Table", {"Key Column", "v"}, {kLong, type},
                                    {true, false}, plain, false);
  };
  for (std::size_t at = 0; at < std::size(kCreatedTypes); ++at) {
    const std::string& state = of_.refused[at];
    EXPECT_EQ(create(kCreatedTypes[at], true), state.empty() ? kSuccess : kFailure)
        << at << connection_.log().explanation();
    const zeldb::Diagnostic* const diagnostic = connection_.log().diagnostic();
    EXPECT_EQ(diagnostic == nullptr ? "" : diagnostic->state, state) << at;
    EXPECT_EQ(state.empty() ? connection_->commit() : connection_->rollback(), kSuccess);
    if (!state.empty()) continue;
    bool key = false;
    EXPECT_EQ(connection_->getTableColumnPrimaryKey(of_.schema, "Made Table", 0, key), kSuccess);
    EXPECT_TRUE(key) << at;
  }
  EXPECT_EQ(create(kInteger, false), kFailure);
  ASSERT_NE(connection_.log().diagnostic(), nullptr);
  EXPECT_EQ(connection_.log().diagnostic()->state, of_.columnTable);
  EXPECT_EQ(connection_->rollback(), kSuccess);
}

INSTANTIATE_TEST_SUITE_P(Live, CatalogueOf,
                         testing::Values(&kCatalogues[0], &kCatalogues[1], &kCatalogues[2]),
                         [](const auto& parameter) {
                           return std::string(parameter.param->quirks.name);
                         });

}  // namespace
}  // namespace live
