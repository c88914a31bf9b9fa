#include "driver/odbc_database_metadata.h"

#include <algorithm>
#include <string_view>

#include "driver/catalog_rows.h"
#include "driver/message_keys.h"
#include "driver/odbc_connection.h"
#include "driver2/boundary.h"
#include "host/log_service_impl.h"
#include "odbc/odbc_dbc.h"
#include "odbc/odbc_error.h"

namespace KORVEX::Zel::DB {

namespace {

using ODBC::OdbcCatalog;

constexpr char kTableTypes[] = "TABLE,VIEW";
constexpr char kAny[] = "%";

// Tables of these schemas are DB2's own.
constexpr std::string_view kDb2SystemSchemas[] = {"SYSIBM", "SYSCAT", "SYSSTAT", "SYSTOOLS",
                                                  "SYSIBMADM"};

// The system's own where catalogs stand for schemas.
constexpr std::string_view kSystemCatalogs[] = {"information_schema", "mysql", "performance_schema",
                                                "sys"};

// What some drivers add to the tables and views that they are asked for.
constexpr std::string_view kUnlistedTypes[] = {"MATVIEW", "SYSTEM TABLE", "SYSTEM VIEW"};

template <typename Names>
bool contains(const Names& names, std::string_view name) {
  return std::ranges::find(names, name) != std::end(names);
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

bool OdbcDatabaseMetadata::isHidden(const Table& table) const {
  if (table.schema.empty()) return contains(kSystemCatalogs, table.catalog);
  return connection_.getDbc()->GetDatabaseType() == "DB2" &&
         contains(kDb2SystemSchemas, table.schema);
}

// The name that stands before a table's own in a statement.
const std::string& OdbcDatabaseMetadata::qualifierOf(const Table& table) {
  return table.schema.empty() ? table.catalog : table.schema;
}

OdbcDatabaseMetadata::Qualifier OdbcDatabaseMetadata::qualifierFor(
    const std::string& schema) const {
  if (schema.empty()) return {};
  if (connection_.getDbc()->NamesTablesByCatalog()) return {.catalog = schema.c_str()};
  return {.schema = schema.c_str()};
}

ResultCode OdbcDatabaseMetadata::scanSchemas(std::vector<std::string>& names) {
  ODBC::OdbcDbc* dbc = connection_.getDbc();
  if (dbc == nullptr) return fail(keys::kGettingTableList);
  // Any schema, or any catalog, with the other names empty: the enumeration of schemas or catalogs.
  OdbcCatalog* scan = dbc->NamesTablesByCatalog() ? dbc->ScanTables(kAny, "", "", nullptr)
                                                  : dbc->ScanTables("", kAny, "", nullptr);
  const bool read = forEachRow(scan, [&](auto& rows) {
    const Table row = {textAt(rows, kTableCatalog, ""), textAt(rows, kTableSchema, ""), ""};
    if (!qualifierOf(row).empty() && !isHidden(row)) names.push_back(qualifierOf(row));
  });
  return read ? kSuccess : fail(keys::kGettingTableList);
}

ResultCode OdbcDatabaseMetadata::scanTables(const std::string& schema, std::vector<Table>& tables) {
  ODBC::OdbcDbc* dbc = connection_.getDbc();
  if (dbc == nullptr) return fail(keys::kGettingTableList);
  const Qualifier qualifier = qualifierFor(schema);
  OdbcCatalog* scan = dbc->ScanTables(qualifier.catalog, qualifier.schema, nullptr, kTableTypes);
  const bool read = forEachRow(scan, [&](auto& rows) {
    Table table = {textAt(rows, kTableCatalog, ""), textAt(rows, kTableSchema, ""),
                   textAt(rows, kTableName, "")};
    if (!schema.empty() && qualifierOf(table) != schema) return;  // the argument was a pattern
    if (isHidden(table) || contains(kUnlistedTypes, textAt(rows, kTableType, ""))) return;
    tables.push_back(std::move(table));
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
  const Qualifier qualifier = qualifierFor(table.schema);
  OdbcCatalog* scan =
      dbc->ScanTableColumns(qualifier.catalog, qualifier.schema, table.name.c_str(), nullptr);
  const bool read = forEachRow(scan, [&](auto& rows) {
    Table owner = {textAt(rows, kTableCatalog, ""), textAt(rows, kTableSchema, ""),
                   textAt(rows, kTableName, kNullText)};
    if (owner.name != table.name) return;  // the name was taken as a pattern
    if (!table.schema.empty() && qualifierOf(owner) != table.schema) return;
    const bool first = columns.empty() || !sameTable(columns.back().table, owner);
    const int position = first ? 1 : columns.back().column.getPosition() + 1;
    // A negative size is one that the driver cannot tell.
    OdbcColumn column(textAt(rows, kColumnName, kNullText), position,
                      zelDataType(numberAt(rows, kDataType), databaseType),
                      std::max(numberAt(rows, kColumnSize), 0),
                      numberAt(rows, kNullable) != SQL_NO_NULLS, false,
                      numberAt(rows, kDecimalDigits), databaseType);
    columns.push_back({std::move(owner), column});
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

// A column scan without a schema may look in the current one alone, while the table list shows all.
// Fills in the schema of a table that the list shows elsewhere.
bool OdbcDatabaseMetadata::isListedElsewhere(Table& table) {
  if (!table.schema.empty()) return false;
  const std::vector<Table>* listed = nullptr;
  if (loadTables("", listed) != kSuccess) return false;
  const auto shown = std::ranges::find(*listed, table.name, &Table::name);
  if (shown == listed->end()) return false;
  table.schema = qualifierOf(*shown);
  return !table.schema.empty();
}

ResultCode OdbcDatabaseMetadata::loadColumns(const std::string& schema, const std::string& table,
                                             Columns& columns) {
  Table wanted = {"", schema, table};
  if (schema.empty() && splitName(table, wanted) != kSuccess) return kFailure;
  std::vector<ScannedColumn> scanned;
  if (scanColumns(wanted, scanned) != kSuccess) return kFailure;
  if (scanned.empty() && isListedElsewhere(wanted) && scanColumns(wanted, scanned) != kSuccess) {
    return kFailure;
  }
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
