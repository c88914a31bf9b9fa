#include "tests/verify/world.h"

#include <map>

#include "standin/property_data_service.h"

namespace verify {
namespace {

using namespace DataTypes;

using KORVEX::Zel::PropertyDataService;

struct QueryColumn {
  fake::ColumnDescription column;
  fake::Cell cell;
  unsigned int type;
};

constexpr std::size_t kLongColumn = 1;

// A column of every family of types, and its value in the row.
const std::vector<QueryColumn>& queryColumns() {
  const fake::Cell stamp = fake::Cell::of(TIMESTAMP_STRUCT{2000, 2, 29, 12, 34, 56, 999999000});
  static const std::vector<QueryColumn> columns = {
      {{"a", SQL_INTEGER, 10, 0, 11}, fake::Cell::of(7), kInteger},
      {{"b", SQL_BIGINT, 19, 0, 20}, fake::Cell::of(1L << 40), kLong},
      {{"c", SQL_DOUBLE, 15, 0, 24}, fake::Cell::of(0.5), kFloat},
      {{"d", SQL_VARCHAR, 300, 0, 300}, std::string(200, 'x'), kString},
      {{"e", SQL_TYPE_TIMESTAMP, 26, 6, 26}, stamp, kBigDateTime},
      {{"f", SQL_TYPE_TIMESTAMP, 26, 6, 26}, stamp, kDate},
      {{"g", SQL_DECIMAL, 18, 4, 20}, "12.5", createFixedDecimal(18, 4)},
      {{"h", SQL_DECIMAL, 18, 4, 20}, "1.5", kMoney},
      {{"i", SQL_BIT, 1, 0, 1}, "\x01", kBoolean},
      {{"j", SQL_VARBINARY, 300, 0, 300}, std::string(100, 'b'), kBinary},
      {{"k", SQL_LONGVARCHAR, 60000, 0, 60000}, std::string(20000, 'l'), kString},
      {{"l", SQL_VARCHAR, 300, 0, 300}, {}, kString},
  };
  return columns;
}

std::vector<unsigned int> queryTypes() {
  std::vector<unsigned int> types;
  for (const QueryColumn& column : queryColumns()) types.push_back(column.type);
  return types;
}

fake::Result texts(const std::vector<const char*>& columnNames,
                   std::vector<std::vector<fake::Cell>> rows) {
  fake::Result result;
  for (const char* name : columnNames) {
    result.columns.push_back({name, SQL_VARCHAR, 64, 0, 64, false, SQL_NULLABLE});
  }
  result.rows = std::move(rows);
  return result;
}

using Results = std::map<std::string, std::vector<fake::Result>>;

void addCatalogue(Results& results) {
  results["SQLTables"] = {
      texts({"TABLE_CAT", "TABLE_SCHEM", "TABLE_NAME", "TABLE_TYPE", "REMARKS"},
            {{{}, "schema", kTable, "TABLE", {}}, {{}, "schema", "other", "VIEW", {}}})};
  fake::Result columns = texts({"TABLE_CAT", "TABLE_SCHEM", "TABLE_NAME", "COLUMN_NAME"}, {});
  for (const char* name : {"DATA_TYPE", "TYPE_NAME", "COLUMN_SIZE", "BUFFER_LENGTH",
                           "DECIMAL_DIGITS", "NUM_PREC_RADIX", "NULLABLE"}) {
    columns.columns.push_back({name, SQL_INTEGER, 10, 0, 11});
  }
  columns.columns[5].sqlType = SQL_VARCHAR;
  columns.columns[5].columnSize = 64;
  const auto number = [](int value) { return fake::Cell::of(value); };
  columns.rows = {{{},
                   "schema",
                   kTable,
                   "id",
                   number(SQL_INTEGER),
                   "int",
                   number(10),
                   number(4),
                   number(0),
                   number(10),
                   number(0)},
                  {{},
                   "schema",
                   kTable,
                   "name",
                   number(SQL_VARCHAR),
                   "text",
                   number(50),
                   number(50),
                   number(0),
                   number(10),
                   number(1)}};
  results["SQLColumns"] = {columns};
  results["SQLPrimaryKeys"] = {texts({"TABLE_CAT", "TABLE_SCHEM", "TABLE_NAME", "COLUMN_NAME"},
                                     {{{}, "schema", kTable, "id"}})};
}

Results makeResults() {
  Results results;
  addCatalogue(results);
  fake::Result rows;
  rows.rows = {{}};
  rows.repeat = 3;
  for (const QueryColumn& column : queryColumns()) {
    rows.columns.push_back(column.column);
    rows.rows.front().push_back(column.cell);
  }
  results[kQuery2] = {rows, rows};
  // The first generation asks for 64-bit integers as text.
  rows.rows.front()[kLongColumn] = "1099511627776";
  results[kQuery] = {rows, rows};
  return results;
}

Parameter parameter(unsigned int type) {
  Parameter made;
  made.type = type;
  return made;
}

}  // namespace

void script(fake::FakeOdbc& odbc) {
  static const Results results = makeResults();
  odbc.reset();
  odbc.logging = false;
  odbc.results = results;
  for (const char* query : {kQuery, kQuery2}) odbc.params[query] = {{SQL_INTEGER, 10}};
  odbc.params[kInsert] = {{SQL_INTEGER, 10}, {SQL_VARCHAR, 50}};
}

World::World(bool safeTransfer)
    : safe(safeTransfer),
      types(queryTypes()),
      cellTypes(types),
      descriptor(types),
      cells(types.size()),
      parameterCells(1),
      packedRow({rawBytes(7)}) {
  odbc.forgetHandles();
  script(odbc);
  service = std::make_unique<PropertyDataService>(
      "service", PropertyDataService::Properties{{"DSN", fake::kDataSource},
                                                 {"User", "u"},
                                                 {"Password", "p"},
                                                 {"SafeTransfer", safe ? "true" : "false"}});
  Parameter number = parameter(kInteger);
  number.value.int32 = 7;
  Parameter text = parameter(kString);
  text.value.string = "seven";
  queryParameters = {number};
  rowParameters = {number, text};
  parameterCells[0].int32 = 7;
  // Counts without keeping anything, so that a check of allocations sees none of its own.
  previousSink = KORVEX::Zel::installLogSink([this](const auto& message) {
    ++logLines;
    keysLogged |= std::uint64_t{1} << ((message.key[4] - '0') * 10 + message.key[5] - '0');
    for (const std::string_view part : {message.text1, message.text2}) {
      diagnosticLogged |= part.find(kDiagnostic) != part.npos;
    }
  });
  driver.reset(FactoryDriver("odbc"));
  error = driver->createError("");
}

World::~World() {
  close();
  driver->releaseError(error);
  driver.reset();
  KORVEX::Zel::installLogSink(std::move(previousSink));
}

void World::releaseCells() {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (cells[i].isNull()) continue;
    if (typeNumber(cellTypes[i]) == kString) std::free(const_cast<char*>(cells[i].string));
    if (typeNumber(cellTypes[i]) == kBinary) {
      std::free(const_cast<unsigned char*>(cells[i].binary.data));
    }
  }
  // Not NULL: without safe transfer a value leaves the flag alone.
  cells.assign(cells.size(), DataValue());
}

void World::close() {
  releaseCells();
  metadata.reset();
  newStatement();
  if (connection != nullptr) driver->releaseConnection(connection);
  connection = nullptr;
  statement = nullptr;
  if (connection2 != nullptr) driver->releaseConnection2(connection2, error);
  connection2 = nullptr;
}

}  // namespace verify
