#include "driver/odbc_database_metadata.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "driver/message_keys.h"
#include "driver/odbc_connection.h"
#include "driver2/boundary.h"
#include "host/log_service_impl.h"
#include "odbc/odbc_catalog.h"
#include "odbc/odbc_col.h"
#include "odbc/odbc_dbc.h"
#include "odbc/odbc_error.h"

namespace KORVEX::Zel::DB {

namespace {

using ODBC::Odbc;
using ODBC::OdbcCatalog;

constexpr char kTableTypes[] = "TABLE,VIEW";
constexpr char kAnySchema[] = "%";
constexpr char kNullText[] = "NULL";

// Result columns of the catalog functions, as the ODBC standard numbers them.
constexpr int kTableCatalog = 1;
constexpr int kTableSchema = 2;
constexpr int kTableName = 3;
constexpr int kColumnName = 4;  // of SQLColumns and SQLPrimaryKeys
constexpr int kDataType = 5;
constexpr int kColumnSize = 7;
constexpr int kDecimalDigits = 9;
constexpr int kNullable = 11;

// Tables of these schemas are DB2's own.
constexpr std::string_view kDb2SystemSchemas[] = {"SYSIBM", "SYSCAT", "SYSSTAT", "SYSTOOLS",
                                                  "SYSIBMADM"};

// An empty name means any, which the catalog functions know as a null pointer: an empty pattern
// matches nothing on some databases.
const char* pattern(const std::string& name) {
  return name.empty() ? nullptr : name.c_str();
}

std::string textAt(OdbcCatalog& rows, int column, const char* whenNull) {
  ODBC::OdbcCol* cell = rows.GetColumn(column);
  std::span<const unsigned char> bytes;
  if (cell == nullptr || cell->GetBytes(bytes) != Odbc::e_Ok) return whenNull;
  return {bytes.begin(), bytes.end()};
}

int numberAt(OdbcCatalog& rows, int column) {
  ODBC::OdbcCol* cell = rows.GetColumn(column);
  int number = 0;
  if (cell == nullptr || cell->GetData(number) != Odbc::e_Ok) return 0;
  return number;
}

// Hands every row of a catalog query to `take`. False when the query or a fetch failed.
template <typename Take>
bool forEachRow(OdbcCatalog* scan, Take take) {
  const std::unique_ptr<OdbcCatalog> rows(scan);
  if (rows == nullptr) return false;
  Odbc::e_Status status = rows->Fetch();
  for (; status == Odbc::e_Ok; status = rows->Fetch()) take(*rows);
  return status == Odbc::e_NoData;
}

}  // namespace

OdbcDatabaseMetadata::OdbcDatabaseMetadata(OdbcConnection& connection)
    : DatabaseMetadata(connection), connection_(connection) {}

OdbcDatabaseMetadata::~OdbcDatabaseMetadata() = default;

void OdbcDatabaseMetadata::invalidate() {
  schemas_.reset();
  tables_.clear();
  columns_.clear();
}

ResultCode OdbcDatabaseMetadata::fail(const char* key) {
  ODBC::OdbcDbc* dbc = connection_.getDbc();
  const std::string text = dbc == nullptr ? std::string() : getOdbcError(dbc);
  LogServiceImpl::log(key, text.c_str());
  errors_ += '\n';
  errors_ += text;
  return kFailure;
}

void OdbcDatabaseMetadata::getLastErrors(std::string& errors) {
  guarded(0, [&] {
    errors += errors_;
    errors_.clear();
    return 0;
  });
}

bool OdbcDatabaseMetadata::isHiddenSchema(const std::string& schema) const {
  return connection_.getDbc()->GetDatabaseType() == "DB2" &&
         std::ranges::find(kDb2SystemSchemas, schema) != std::end(kDb2SystemSchemas);
}

ResultCode OdbcDatabaseMetadata::scanSchemas(std::vector<std::string>& names) {
  ODBC::OdbcDbc* dbc = connection_.getDbc();
  if (dbc == nullptr) return fail(keys::kGettingTableList);
  // Empty catalog and table with any schema: the enumeration of schemas.
  const bool read = forEachRow(dbc->ScanTables("", kAnySchema, "", nullptr), [&](auto& rows) {
    std::string name = textAt(rows, kTableSchema, "");
    if (!name.empty() && !isHiddenSchema(name)) names.push_back(std::move(name));
  });
  return read ? kSuccess : fail(keys::kGettingTableList);
}

ResultCode OdbcDatabaseMetadata::scanTables(const std::string& schema, std::vector<Table>& tables) {
  ODBC::OdbcDbc* dbc = connection_.getDbc();
  if (dbc == nullptr) return fail(keys::kGettingTableList);
  OdbcCatalog* scan = dbc->ScanTables(nullptr, pattern(schema), nullptr, kTableTypes);
  const bool read = forEachRow(scan, [&](auto& rows) {
    Table table = {textAt(rows, kTableCatalog, ""), textAt(rows, kTableSchema, ""),
                   textAt(rows, kTableName, "")};
    const bool wanted = schema.empty() || table.schema == schema;  // the argument was a pattern
    if (wanted && !isHiddenSchema(table.schema)) tables.push_back(std::move(table));
  });
  return read ? kSuccess : fail(keys::kGettingTableList);
}

ResultCode OdbcDatabaseMetadata::loadTables(const std::string& schema,
                                            const std::vector<Table>*& tables) {
  auto known = tables_.find(schema);
  if (known == tables_.end()) {
    std::vector<Table> scanned;
    if (scanTables(schema, scanned) != kSuccess) return kFailure;
    known = tables_.emplace(schema, std::move(scanned)).first;
  }
  tables = &known->second;
  return kSuccess;
}

// Of two tables of the same name.
bool OdbcDatabaseMetadata::sameTable(const Table& a, const Table& b) {
  return a.catalog == b.catalog && a.schema == b.schema;
}

// The rows come table by table, in the order of the columns.
ResultCode OdbcDatabaseMetadata::scanColumns(const Table& table,
                                             std::vector<ScannedColumn>& columns) {
  ODBC::OdbcDbc* dbc = connection_.getDbc();
  if (dbc == nullptr) return fail(keys::kGettingColumnInfo);
  const std::string databaseType = dbc->GetDatabaseType();
  OdbcCatalog* scan =
      dbc->ScanTableColumns(nullptr, pattern(table.schema), table.name.c_str(), nullptr);
  const bool read = forEachRow(scan, [&](auto& rows) {
    Table owner = {textAt(rows, kTableCatalog, ""), textAt(rows, kTableSchema, ""),
                   textAt(rows, kTableName, kNullText)};
    if (owner.name != table.name) return;  // the name was taken as a pattern
    if (!table.schema.empty() && owner.schema != table.schema) return;
    const bool first = columns.empty() || !sameTable(columns.back().table, owner);
    const int position = first ? 1 : columns.back().column.getPosition() + 1;
    OdbcColumn column(textAt(rows, kColumnName, kNullText), position,
                      zelDataType(numberAt(rows, kDataType), databaseType),
                      numberAt(rows, kColumnSize), numberAt(rows, kNullable) != SQL_NO_NULLS, false,
                      numberAt(rows, kDecimalDigits), databaseType);
    columns.push_back({std::move(owner), std::move(column)});
  });
  return read ? kSuccess : fail(keys::kGettingColumnInfo);
}

// Of several tables of the same name, in different schemas, leaves the columns of one.
ResultCode OdbcDatabaseMetadata::keepOneTable(const std::string& schema,
                                              std::vector<ScannedColumn>& columns) {
  Table kept = columns.front().table;
  const bool several = std::ranges::any_of(
      columns, [&](const auto& scanned) { return !sameTable(scanned.table, kept); });
  if (!several) return kSuccess;
  const std::vector<Table>* listed = nullptr;
  if (loadTables(schema, listed) != kSuccess) return kFailure;
  const auto shown = std::ranges::find(*listed, kept.name, &Table::name);
  if (shown != listed->end()) kept = *shown;
  std::erase_if(columns, [&](const auto& scanned) { return !sameTable(scanned.table, kept); });
  return kSuccess;
}

ResultCode OdbcDatabaseMetadata::markPrimaryKeys(const Table& table, Columns& columns) {
  OdbcCatalog* scan = connection_.getDbc()->ScanTablePrimaryKey(
      pattern(table.catalog), pattern(table.schema), table.name.c_str(), nullptr);
  const bool read = forEachRow(scan, [&](auto& rows) {
    const auto column =
        std::ranges::find(columns, textAt(rows, kColumnName, kNullText), &OdbcColumn::getName);
    if (column != columns.end()) column->setPrimaryKey(true);
  });
  return read ? kSuccess : fail(keys::kGettingColumnInfo);
}

// "schema.table" at its last dot, unless a table has the whole name.
ResultCode OdbcDatabaseMetadata::splitName(const std::string& name, Table& table) {
  table.name = name;
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return kSuccess;
  const std::vector<Table>* listed = nullptr;
  if (loadTables("", listed) != kSuccess) return kFailure;
  if (std::ranges::find(*listed, name, &Table::name) != listed->end()) return kSuccess;
  table.schema = name.substr(0, dot);
  table.name = name.substr(dot + 1);
  return kSuccess;
}

ResultCode OdbcDatabaseMetadata::loadColumns(const std::string& schema, const std::string& table,
                                             Columns& columns) {
  Table wanted = {"", schema, table};
  if (schema.empty() && splitName(table, wanted) != kSuccess) return kFailure;
  std::vector<ScannedColumn> scanned;
  if (scanColumns(wanted, scanned) != kSuccess) return kFailure;
  if (scanned.empty()) return kSuccess;
  if (keepOneTable(wanted.schema, scanned) != kSuccess) return kFailure;
  for (const ScannedColumn& column : scanned) columns.push_back(column.column);
  return columns.empty() ? kSuccess : markPrimaryKeys(scanned.front().table, columns);
}

ResultCode OdbcDatabaseMetadata::getTableAllColumnInfo(const std::string& schema,
                                                       const std::string& table, bool refresh) {
  return guarded(kFailure, [&] {
    const TableKey key(schema, table);
    if (!refresh && columns_.contains(key)) return kSuccess;
    if (refresh) tables_.clear();
    Columns columns;
    if (loadColumns(schema, table, columns) != kSuccess) return kFailure;
    columns_[key] = std::move(columns);
    return kSuccess;
  });
}

const OdbcDatabaseMetadata::Columns* OdbcDatabaseMetadata::columnsOf(const std::string& schema,
                                                                     const std::string& table) {
  if (getTableAllColumnInfo(schema, table, false) != kSuccess) return nullptr;
  return &columns_.at(TableKey(schema, table));
}

const OdbcColumn* OdbcDatabaseMetadata::columnAt(const std::string& schema,
                                                 const std::string& table, int index) {
  const Columns* columns = columnsOf(schema, table);
  if (columns == nullptr || index < 0 || index >= static_cast<int>(columns->size())) return nullptr;
  return &(*columns)[static_cast<std::size_t>(index)];
}

ResultCode OdbcDatabaseMetadata::getSchemaNames(std::vector<std::string>& names) {
  return guarded(kFailure, [&] {
    if (!schemas_) {
      std::vector<std::string> scanned;
      if (scanSchemas(scanned) != kSuccess) return kFailure;
      schemas_ = std::move(scanned);
    }
    names = *schemas_;
    return kSuccess;
  });
}

ResultCode OdbcDatabaseMetadata::getTableNames(const std::string& schema,
                                               std::vector<std::string>& names) {
  return guarded(kFailure, [&] {
    const std::vector<Table>* tables = nullptr;
    if (loadTables(schema, tables) != kSuccess) return kFailure;
    names.clear();
    for (const Table& table : *tables) names.push_back(table.name);
    return kSuccess;
  });
}

ResultCode OdbcDatabaseMetadata::getTableNumColumns(const std::string& schema,
                                                    const std::string& table, int& count) {
  return guarded(kFailure, [&] {
    const Columns* columns = columnsOf(schema, table);
    if (columns == nullptr) return kFailure;
    count = static_cast<int>(columns->size());
    return kSuccess;
  });
}

ResultCode OdbcDatabaseMetadata::getTableColumnName(const std::string& schema,
                                                    const std::string& table, int index,
                                                    std::string& name) {
  unsigned int type = 0;
  return getTableColumnInfo(schema, table, index, name, type);
}

ResultCode OdbcDatabaseMetadata::getTableColumnType(const std::string& schema,
                                                    const std::string& table, int index,
                                                    unsigned int& type) {
  std::string name;
  return getTableColumnInfo(schema, table, index, name, type);
}

ResultCode OdbcDatabaseMetadata::getTableColumnPrimaryKey(const std::string& schema,
                                                          const std::string& table, int index,
                                                          bool& primaryKey) {
  return guarded(kFailure, [&] {
    const OdbcColumn* column = columnAt(schema, table, index);
    if (column == nullptr) return kFailure;
    primaryKey = column->isPrimaryKey();
    return kSuccess;
  });
}

ResultCode OdbcDatabaseMetadata::getTableColumnInfo(const std::string& schema,
                                                    const std::string& table, int index,
                                                    std::string& name, unsigned int& type) {
  return guarded(kFailure, [&] {
    const OdbcColumn* column = columnAt(schema, table, index);
    if (column == nullptr) return kFailure;
    name = column->getName();
    type = column->getType();
    return kSuccess;
  });
}

ResultCode OdbcDatabaseMetadata::getTableColumnInfo(const std::string& schema,
                                                    const std::string& table, int index,
                                                    const Column*& column) {
  return guarded(kFailure, [&] {
    column = nullptr;
    if (columnsOf(schema, table) == nullptr) return kFailure;
    column = columnAt(schema, table, index);
    return kSuccess;
  });
}

// Without a schema: the empty one.

ResultCode OdbcDatabaseMetadata::getTableNames(std::vector<std::string>& names) {
  return getTableNames("", names);
}

ResultCode OdbcDatabaseMetadata::getTableNumColumns(const std::string& table, int& count) {
  return getTableNumColumns("", table, count);
}

ResultCode OdbcDatabaseMetadata::getTableColumnName(const std::string& table, int index,
                                                    std::string& name) {
  return getTableColumnName("", table, index, name);
}

ResultCode OdbcDatabaseMetadata::getTableColumnType(const std::string& table, int index,
                                                    unsigned int& type) {
  return getTableColumnType("", table, index, type);
}

ResultCode OdbcDatabaseMetadata::getTableColumnPrimaryKey(const std::string& table, int index,
                                                          bool& primaryKey) {
  return getTableColumnPrimaryKey("", table, index, primaryKey);
}

ResultCode OdbcDatabaseMetadata::getTableColumnInfo(const std::string& table, int index,
                                                    std::string& name, unsigned int& type) {
  return getTableColumnInfo("", table, index, name, type);
}

ResultCode OdbcDatabaseMetadata::getTableColumnInfo(const std::string& table, int index,
                                                    const Column*& column) {
  return getTableColumnInfo("", table, index, column);
}

ResultCode OdbcDatabaseMetadata::getTableAllColumnInfo(const std::string& table, bool refresh) {
  return getTableAllColumnInfo("", table, refresh);
}

}  // namespace KORVEX::Zel::DB
