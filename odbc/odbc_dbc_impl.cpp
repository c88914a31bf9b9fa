#include "odbc/odbc_dbc_impl.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "odbc/catalog_functions.h"
#include "odbc/odbc_env_impl.h"
#include "odbc/odbc_stmt_impl.h"
#include "odbc/print_record.h"
#include "odbc/sql_argument.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

struct DatabaseKeyword {
  std::string_view keyword;  // in the upper-case name that the driver gives
  const char* databaseType;
  // The driver sends arrays row by row once it has described the parameters, and in one go again
  // when the text is prepared anew.
  bool preparesArraysTwice = false;
};

// The first keyword found anywhere in the name decides.
constexpr DatabaseKeyword kDatabaseKeywords[] = {
    {"MICROSOFT", "MSSQL"},
    {"SQL SERVER", "OPX"},
    {"KORVEX WH", "WH"},
    {"DB2", "DB2"},
    {"ORACLE", "ORACLE"},
    {"POSTGRESQL", "POSTGRESQL", true},
    {"MYSQL", "MYSQL"},
    // Kept: the next row covers this one; both names are in use.
    {"VLTODBC", "VELTA"},
    {"VLT", "VELTA"},
};
constexpr DatabaseKeyword kOtherDatabase = {"", "OTHERS"};

constexpr SQLSMALLINT kDbmsNameBytes = 256;

char asciiUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

OdbcDbcImpl::OdbcDbcImpl(OdbcEnvImpl* env)
    : OdbcImpl(env), envHandle_(env->GetHandle(e_Env)), env_(env) {}

OdbcDbcImpl::~OdbcDbcImpl() {
  DeleteChildren();
  OdbcDbcImpl::Finalize();
}

Odbc::e_Status OdbcDbcImpl::setIntegerAttribute(SQLINTEGER attribute, unsigned int value) {
  return GetStatus(
      this, SQLSetConnectAttr(dbcHandle_.get(), attribute, attributeValue(value), SQL_IS_UINTEGER));
}

Odbc::e_Status OdbcDbcImpl::Initialize() {
  e_Status status = GetStatus(env_, dbcHandle_.allocate(envHandle_));
  if (status == e_Ok) status = setIntegerAttribute(SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF);
  if (status == e_Ok) status = SetIsolationLevel(SQL_TXN_READ_COMMITTED);
  return status;
}

Odbc::e_Status OdbcDbcImpl::Finalize() {
  Disconnect();
  dbcHandle_.reset();
  return e_Ok;
}

SQLHANDLE OdbcDbcImpl::GetHandle(e_Handle kind) {
  if (kind == e_Dbc) return dbcHandle_.get();
  return kind == e_Env ? envHandle_ : SQL_NULL_HANDLE;
}

OdbcStmt* OdbcDbcImpl::CreateStmt() {
  auto* stmt = new OdbcStmtImpl(this);
  // Kept: without a record nothing is printed here, unlike where environments and connections are
  // made.
  const bool made =
      initializeOrDelete(stmt, "OdbcDbcImpl::CreateStmt()  Failed to initialize stmt.", false);
  return made ? stmt : nullptr;
}

Odbc::e_Status OdbcDbcImpl::Connect(const std::string& dsn, const std::string& user,
                                    const std::string& password) {
  Disconnect();
  e_Status status = GetStatus(
      this, SQLConnect(dbcHandle_.get(), inputText(dsn.c_str()), SQL_NTS, inputText(user.c_str()),
                       SQL_NTS, inputText(password.c_str()), SQL_NTS));
  if (status != e_Ok) return status;
  connected_ = true;

  char name[kDbmsNameBytes] = {};
  SQLSMALLINT length = 0;
  status = GetStatus(this, SQLGetInfo(dbcHandle_.get(), SQL_DBMS_NAME, name, sizeof name, &length));
  // Kept: a connection that cannot name its database stays open, with the type of the last one.
  if (status == e_Ok) SetDatabaseType(std::string(name, strnlen(name, sizeof name)));
  return status;
}

void OdbcDbcImpl::SetDatabaseType(const std::string& dbmsName) {
  std::string upper;
  std::transform(dbmsName.begin(), dbmsName.end(), std::back_inserter(upper), asciiUpper);
  const auto* found = std::find_if(
      std::begin(kDatabaseKeywords), std::end(kDatabaseKeywords),
      [&upper](const DatabaseKeyword& row) { return upper.find(row.keyword) != upper.npos; });
  const DatabaseKeyword& row = found == std::end(kDatabaseKeywords) ? kOtherDatabase : *found;
  databaseType_ = row.databaseType;
  preparesArraysTwice_ = row.preparesArraysTwice;
}

bool OdbcDbcImpl::NamesTablesByCatalog() {
  SQLUINTEGER schemaUsage = 0;
  SQLUINTEGER catalogUsage = 0;
  return SQL_SUCCEEDED(SQLGetInfo(dbcHandle_.get(), SQL_SCHEMA_USAGE, &schemaUsage,
                                  sizeof schemaUsage, nullptr)) &&
         SQL_SUCCEEDED(SQLGetInfo(dbcHandle_.get(), SQL_CATALOG_USAGE, &catalogUsage,
                                  sizeof catalogUsage, nullptr)) &&
         schemaUsage == 0 && catalogUsage != 0;
}

Odbc::e_Status OdbcDbcImpl::Disconnect() {
  if (!connected_) return e_Ok;
  Rollback();  // nothing is ever committed by leaving
  // Before SQLDisconnect: it takes the statement handles with it.
  DeleteChildren();
  SQLDisconnect(dbcHandle_.get());
  connected_ = false;
  return e_Ok;
}

Odbc::e_Status OdbcDbcImpl::SetIsolationLevel(unsigned int level) {
  return setIntegerAttribute(SQL_ATTR_TXN_ISOLATION, level);
}

Odbc::e_Status OdbcDbcImpl::endTransaction(SQLSMALLINT completion) {
  return GetStatus(this, SQLEndTran(SQL_HANDLE_DBC, dbcHandle_.get(), completion));
}

OdbcCatalog* OdbcDbcImpl::ScanTables(const char* catalog, const char* schema, const char* table,
                                     const char* tableType) {
  return InitCatalog(new OdbcTableCatalogImpl(this, catalog, schema, table, tableType));
}

OdbcCatalog* OdbcDbcImpl::ScanTableColumns(const char* catalog, const char* schema,
                                           const char* table, const char* column) {
  return InitCatalog(new OdbcTableColumnCatalogImpl(this, catalog, schema, table, column));
}

OdbcCatalog* OdbcDbcImpl::ScanTablePrimaryKey(const char* catalog, const char* schema,
                                              const char* table, const char* unused) {
  return InitCatalog(new OdbcTablePrimaryKeyCatalogImpl(this, catalog, schema, table, unused));
}

OdbcCatalog* OdbcDbcImpl::ScanProcedures(const char* catalog, const char* schema,
                                         const char* procedure) {
  return InitCatalog(new OdbcProcedureCatalogImpl(this, catalog, schema, procedure));
}

OdbcCatalog* OdbcDbcImpl::ScanProcedureColumns(const char* catalog, const char* schema,
                                               const char* procedure, const char* column) {
  return InitCatalog(new OdbcProcedureColumnCatalogImpl(this, catalog, schema, procedure, column));
}

OdbcCatalog* OdbcDbcImpl::InitCatalog(OdbcCatalogImpl* catalog) {
  if (catalog->Initialize() != e_Ok) {
    // Kept: the texts name CreateStmt; making a statement handle is what failed.
    printRecord(*this, {"OdbcDbcImpl::CreateStmt()  state: ", "OdbcDbcImpl::CreateStmt()  error: ",
                        "OdbcDbcImpl::CreateStmt()  message: "});
    delete catalog;
    return nullptr;
  }
  if (catalog->Execute() != e_Ok) {
    delete catalog;
    return nullptr;
  }
  return catalog;
}

}  // namespace KORVEX::Zel::DB::ODBC
