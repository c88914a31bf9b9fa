#include "driver/odbc_column.h"
#include "driver/odbc_connection.h"
#include "driver/odbc_database_metadata.h"
#include "tests/driver/driver_fixture.h"

namespace KORVEX::Zel::DB {
namespace {

using namespace DataTypes;

TEST(OdbcColumnTest, MapsSqlTypes) {
  struct Case {
    std::vector<int> sqlTypes;
    unsigned type;
  };
  const Case kCases[] = {{{-98, -4, -3, -2}, 28},
                         {{-10, -9, -8, -1, 1, 12}, 5},
                         {{-7}, 10},
                         {{-6, 4, 5}, 1},
                         {{-5}, 2},
                         {{0, 3000, -154, 99}, 6},
                         {{2, 3}, 30},
                         {{6, 7, 8}, 3},
                         {{9, 10, 91}, 8},
                         {{11, 93}, 27},
                         {{92}, 29}};
  const OdbcColumn other("c", 1, 5, 10, true, false, 0, "ORACLE");
  for (const Case& c : kCases) {
    for (const int sqlType : c.sqlTypes)
      EXPECT_EQ(other.getZelDataType(sqlType), c.type) << sqlType;
  }
  const OdbcColumn velta("c", 1, 5, 10, true, false, true, 2, "VELTA");
  EXPECT_EQ(velta.getZelDataType(3000), 3u);
  EXPECT_EQ(velta.getScale(), 2);
}

TEST(OdbcColumnTest, NamesTheTypesOfCreatedTables) {
  struct Case {
    unsigned type;
    const char* text;
    const char* keyText;
  };
  const Case kCases[] = {{0, "error", "error"},
                         {1, "INTEGER", "INTEGER"},
                         {2, "BIGINT", "BIGINT"},
                         {3, "REAL", "REAL"},
                         {4, "TIMESTAMP", "TIMESTAMP"},
                         {5, "NVARCHAR(5000)", "NVARCHAR(500)"},
                         {6, "error", "error"},
                         {7, "DECIMAL(19, 4)", "DECIMAL(19, 4)"},
                         {8, "TIMESTAMP", "TIMESTAMP"},
                         {9, "error", "error"},
                         {10, "TINYINT", "TINYINT"},
                         {11, "DECIMAL(19, 1)", "DECIMAL(19, 1)"},
                         {25, "DECIMAL(19, 15)", "DECIMAL(19, 15)"},
                         {26, "BIGINT", "BIGINT"},
                         {27, "TIMESTAMP", "TIMESTAMP"},
                         {28, "VARBINARY(5000)", "VARBINARY(500)"},
                         {29, "TIME", "TIME"},
                         {164382, "DECIMAL(10,2)", "DECIMAL(10,2)"},
                         {31, "error", "error"}};
  const OdbcColumn column;
  for (const Case& c : kCases) {
    EXPECT_EQ(column.getSqlTypeString(c.type, false), c.text) << c.type;
    EXPECT_EQ(column.getSqlTypeString(c.type, true), c.keyText) << c.type;
  }
}

class CatalogueTest : public DriverFixture {
 protected:
  static std::vector<fake::ColumnDescription> texts(int count) {
    return std::vector<fake::ColumnDescription>(static_cast<std::size_t>(count),
                                                {"c", SQL_VARCHAR, 128, 0, 128, false, 1});
  }

  static std::vector<fake::Cell> columnRow(const char* schema, const char* table, const char* name,
                                           const char* sqlType, const char* nullable) {
    return {{},      schema == nullptr ? fake::Cell() : schema,
            table,   name == nullptr ? fake::Cell() : name,
            sqlType, "type",
            "20",    "20",
            "3",     "10",
            nullable};
  }

  void scriptTables() {
    odbc.results["SQLTables"] = {{texts(5),
                                  {{{}, "s1", "t", "TABLE", {}},
                                   {{}, "SYSIBM", "hidden", "TABLE", {}},
                                   {{}, "SYSCAT", "hidden", "TABLE", {}},
                                   {{}, "SYSSTAT", "hidden", "TABLE", {}},
                                   {{}, "SYSTOOLS", "hidden", "TABLE", {}},
                                   {{}, "SYSIBMADM", "hidden", "TABLE", {}},
                                   {{}, "s1", "a.b", "VIEW", {}}}}};
    odbc.results["SQLColumns"] = {
        {texts(11),
         {columnRow("s0", "t", "other", "4", "1"), columnRow("s1", "t", "id", "4", "0"),
          columnRow("s1", "tx", "wrong", "4", "0"), columnRow("s1", "t", nullptr, "12", "1")}}};
    odbc.results["SQLPrimaryKeys"] = {{texts(6), {{{}, "s1", "t", "id", "1", "pk"}}}};
  }

  int calls(const std::string& start) {
    int count = 0;
    for (const std::string& line : odbc.takeLog()) count += line.starts_with(start) ? 1 : 0;
    return count;
  }
};

TEST_F(CatalogueTest, ListsTablesOnceAndHidesSystemSchemasOfDb2) {
  for (const bool db2 : {false, true}) {
    odbc.dbmsName = db2 ? "DB2/LINUX" : "Fake";
    scriptTables();
    open();
    Strings names;
    EXPECT_EQ(connection->getTableNames(names), kSuccess);
    EXPECT_EQ(names, db2 ? (Strings{"t", "a.b"})
                         : Strings({"t", "hidden", "hidden", "hidden", "hidden", "hidden", "a.b"}));
    EXPECT_EQ(connection->getTableNames(names), kSuccess);
    EXPECT_EQ(calls("SQLTables(null,0,null,0,null,0,\"TABLE,VIEW\",10)"), 1);
    EXPECT_EQ(connection->getTableNames("s1", names), kSuccess);
    EXPECT_EQ(names, (Strings{"t", "a.b"}));
    EXPECT_EQ(calls("SQLTables(null,0,\"s1\",2,null,0,\"TABLE,VIEW\",10)"), 1);
    close();
  }
}

TEST_F(CatalogueTest, DescribesTheListedTableOfSeveralWithOneName) {
  scriptTables();
  open();
  int count = 0;
  std::string name;
  unsigned type = 0;
  bool key = false;
  const Column* column = nullptr;
  EXPECT_EQ(connection->getTableNumColumns("t", count), kSuccess);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(connection->getTableColumnInfo("t", 0, name, type), kSuccess);
  EXPECT_EQ(name, "id");
  EXPECT_EQ(type, 1u);
  EXPECT_EQ(connection->getTableColumnPrimaryKey("t", 0, key), kSuccess);
  EXPECT_TRUE(key);
  EXPECT_EQ(connection->getTableColumnInfo("t", 1, column), kSuccess);
  EXPECT_EQ(column->getName(), "NULL");  // as the driver has it
  EXPECT_EQ(column->getPosition(), 2);
  EXPECT_EQ(column->getSize(), 20);
  EXPECT_EQ(column->getScale(), 3);
  EXPECT_TRUE(column->isNullable());
  EXPECT_FALSE(column->isPrimaryKey());
  EXPECT_EQ(connection->getTableColumnInfo("t", 2, column), kSuccess);
  EXPECT_EQ(column, nullptr);
  EXPECT_EQ(calls("SQLColumns"), 1);
  EXPECT_EQ(connection->getTableNumColumns("s0.t", count), kSuccess);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(connection->getTableNumColumns("s1", "t", count), kSuccess);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(connection->getTableNumColumns("a.b", count), kSuccess);  // a table of that name
  EXPECT_EQ(calls("SQLColumns(null,0,null,0,\"a.b\",3"), 1);
  EXPECT_EQ(connection->getTableNumColumns("s1", "c.d", count), kSuccess);  // a name of its own
  EXPECT_EQ(calls("SQLColumns(null,0,\"s1\",2,\"c.d\",3"), 1);
}

TEST_F(CatalogueTest, ColumnsAreReadAgainOnDemand) {
  scriptTables();
  open();
  OdbcDatabaseMetadata metadata(static_cast<OdbcConnection&>(*connection));
  std::string name;
  unsigned type = 0;
  for (const int scans : {1, 0}) {
    EXPECT_EQ(metadata.getTableAllColumnInfo("t", false), kSuccess);
    EXPECT_EQ(calls("SQLColumns"), scans);
  }
  EXPECT_EQ(metadata.getTableAllColumnInfo("t", true), kSuccess);
  EXPECT_EQ(calls("SQLColumns"), 1);
  EXPECT_EQ(metadata.getTableColumnName("t", 0, name), kSuccess);
  EXPECT_EQ(metadata.getTableColumnType("t", 1, type), kSuccess);
  EXPECT_EQ(name, "id");
  EXPECT_EQ(type, 5u);
  EXPECT_EQ(calls("SQLColumns"), 0);
}

TEST_F(CatalogueTest, FailuresJoinTheConnectionsErrors) {
  open();
  Strings names;
  int count = 0;
  odbc.answer("SQLTables", failing());
  EXPECT_EQ(connection->getSchemaNames(names), kFailure);
  odbc.answer("SQLColumns", failing());
  EXPECT_EQ(connection->getTableNumColumns("t", count), kFailure);
  const std::string text = kDiagnostic;
  EXPECT_EQ(log.take().back(), "801006-3_ERROR_GETTING_COLUMN_INFO|" + text + "|");
  EXPECT_EQ(lastErrors(), "\n" + text + '\0' + "\n" + text + '\0');
  close();
  make();
  EXPECT_EQ(connection->getTableNames(names), kFailure);  // not open
  EXPECT_EQ(log.take(), (Strings{"801005-3_ERROR_GETTING_TABLE_LIST||"}));
}

TEST_F(CatalogueTest, CreatesTablesAfterDroppingThemFirst) {
  struct Case {
    const char* schema;
    const char* table;
    bool firstKey;
    bool secondKey;
    bool plain;
    const char* statements;
  };
  const Case kCases[] = {
      {"S", "T", true, false, true,
       R"(CREATE TABLE "S"."T" ("a" INTEGER, "b" NVARCHAR(5000), PRIMARY KEY ("a"));)"},
      {"", "T", true, true, false,
       R"(CREATE COLUMN TABLE "T" ("a" INTEGER, "b" NVARCHAR(500), PRIMARY KEY ("a", "b"));)"},
      {"", "t", false, false, true,
       R"(drop table "t";CREATE TABLE "t" ("a" INTEGER, "b" NVARCHAR(5000));)"},
      {"s1", "t", false, false, true,
       R"(drop table "s1"."t";CREATE TABLE "s1"."t" ("a" INTEGER, "b" NVARCHAR(5000));)"},
  };
  scriptTables();
  open();
  const std::vector<unsigned> types = {kInteger, kString};
  for (const Case& c : kCases) {
    odbc.executions.clear();
    const std::vector<bool> keys = {c.firstKey, c.secondKey};
    EXPECT_EQ(
        *c.schema == 0
            ? connection->createTable(c.table, {"a", "b"}, types, keys, c.plain, false)
            : connection->createTable(c.schema, c.table, {"a", "b"}, types, keys, c.plain, false),
        kSuccess);
    std::string statements;
    for (const auto& execution : odbc.executions) {
      if (!execution.sql.starts_with("SQL")) statements += execution.sql + ';';
    }
    EXPECT_EQ(statements, c.statements);
  }
  // Of another's making, after the list was last read.
  Strings names;
  EXPECT_EQ(connection->getTableNames(names), kSuccess);
  odbc.results["SQLTables"][0].rows = {{{}, "s1", "later", "TABLE", {}}};
  odbc.takeLog();
  EXPECT_EQ(connection->createTable("later", {"a"}, {kInteger}, {false}, true, false), kSuccess);
  EXPECT_EQ(calls("SQLPrepare(\"drop table \"later\"\")"), 1);
  odbc.answer("SQLTables", failing());
  EXPECT_EQ(connection->createTable("T", {"a"}, {kInteger}, {false}, true, false), kFailure);
  EXPECT_EQ(connection->createTable("T", {"a"}, {}, {false}, true, false), kFailure);
}

}  // namespace
}  // namespace KORVEX::Zel::DB
