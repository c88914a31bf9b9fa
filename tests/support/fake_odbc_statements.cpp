// The ODBC functions of the scripted ODBC: statements, results and the catalog.

#include "tests/support/fake_odbc_call.h"

using fake::address;
using fake::attribute;
using fake::Call;
using fake::give;
using fake::Handle;
using fake::join;
using fake::quoted;
using fake::self;
using fake::text;

namespace {

const fake::ColumnDescription* columnOf(const Handle& statement, SQLUSMALLINT number) {
  const fake::Result* result = self().currentResult(&statement);
  if (result == nullptr || result->columns.empty() || number < 1) return nullptr;
  if (self().lies.columnCount) return &result->columns[(number - 1U) % result->columns.size()];
  if (number > result->columns.size()) return nullptr;
  return &result->columns[number - 1U];
}

void startResult(Handle& statement, std::size_t result) {
  statement.executed = true;
  statement.result = result;
  statement.row = 0;
  statement.column = 0;
}

SQLRETURN runCatalogFunction(const char* function, SQLHSTMT handle, const std::string& arguments) {
  Call call(function, SQL_HANDLE_STMT, handle, arguments);
  if (call.refused()) return call.rc();
  call->key = function;
  startResult(*call, 0);
  return call.rc();
}

// A name and its length.
std::string named(const SQLCHAR* name, SQLSMALLINT length) {
  return join(quoted(name, length), length);
}

}  // namespace

extern "C" {

SQLRETURN SQLSetStmtAttr(SQLHSTMT stmt, SQLINTEGER name, SQLPOINTER value, SQLINTEGER length) {
  Call call("SQLSetStmtAttr", SQL_HANDLE_STMT, stmt, join(name, attribute(value), length));
  if (call.refused()) return call.rc();
  if (name == SQL_ATTR_PARAMSET_SIZE) call->paramsetSize = reinterpret_cast<SQLULEN>(value);
  if (name == SQL_ATTR_PARAM_STATUS_PTR) call->paramStatus = static_cast<SQLUSMALLINT*>(value);
  return call.rc();
}

SQLRETURN SQLPrepare(SQLHSTMT stmt, SQLCHAR* sql, SQLINTEGER length) {
  Call call("SQLPrepare", SQL_HANDLE_STMT, stmt, quoted(sql, length));
  if (call.refused()) return call.rc();
  call->key = text(sql, length);
  call->executed = false;
  call->result = 0;
  return call.rc();
}

SQLRETURN SQLNumParams(SQLHSTMT stmt, SQLSMALLINT* count) {
  Call call("SQLNumParams", SQL_HANDLE_STMT, stmt, "");
  if (call.refused()) return call.rc();
  give(count, self().describeParams(call->key).size());
  if (const auto& lie = self().lies.paramCount) give(count, *lie);
  return call.rc();
}

SQLRETURN SQLDescribeParam(SQLHSTMT stmt, SQLUSMALLINT number, SQLSMALLINT* type, SQLULEN* size,
                           SQLSMALLINT* digits, SQLSMALLINT* nullable) {
  Call call("SQLDescribeParam", SQL_HANDLE_STMT, stmt, join(number));
  if (call.refused()) return call.rc();
  const auto& params = self().describeParams(call->key);
  if (number < 1 || number > params.size()) {
    return call.answer(SQL_ERROR, "07009", "no such parameter");
  }
  const fake::ParamDescription& param = params[number - 1U];
  give(type, param.sqlType);
  give(size, param.size);
  give(digits, param.decimalDigits);
  give(nullable, param.nullable);
  return call.rc();
}

SQLRETURN SQLBindParameter(SQLHSTMT stmt, SQLUSMALLINT number, SQLSMALLINT direction,
                           SQLSMALLINT cType, SQLSMALLINT sqlType, SQLULEN columnSize,
                           SQLSMALLINT digits, SQLPOINTER data, SQLLEN bufferBytes,
                           SQLLEN* indicators) {
  Call call("SQLBindParameter", SQL_HANDLE_STMT, stmt,
            join(number, direction, cType, sqlType, columnSize, digits, address(data), bufferBytes,
                 address(indicators)));
  if (!call.refused()) call->bindings[number] = {cType, data, bufferBytes, indicators};
  return call.rc();
}

SQLRETURN SQLExecute(SQLHSTMT stmt) {
  Call call("SQLExecute", SQL_HANDLE_STMT, stmt, "");
  if (!call.valid()) return call.rc();
  self().executions.push_back(self().snapshot(*call));
  if (call->paramStatus != nullptr) {
    const auto scripted = self().paramStatus.value_or(
        std::vector<SQLUSMALLINT>(call->paramsetSize, SQL_PARAM_SUCCESS));
    std::copy_n(scripted.begin(), std::min<SQLULEN>(scripted.size(), call->paramsetSize),
                call->paramStatus);
  }
  if (!call.refused()) startResult(*call, 0);
  return call.rc();
}

SQLRETURN SQLNumResultCols(SQLHSTMT stmt, SQLSMALLINT* count) {
  Call call("SQLNumResultCols", SQL_HANDLE_STMT, stmt, "");
  if (call.refused()) return call.rc();
  const fake::Result* result = self().currentResult(&*call);
  give(count, result == nullptr ? 0 : result->columns.size());
  if (const auto& lie = self().lies.columnCount) give(count, *lie);
  return call.rc();
}

SQLRETURN SQLDescribeCol(SQLHSTMT stmt, SQLUSMALLINT number, SQLCHAR* name, SQLSMALLINT room,
                         SQLSMALLINT* nameLength, SQLSMALLINT* type, SQLULEN* size,
                         SQLSMALLINT* digits, SQLSMALLINT* nullable) {
  Call call("SQLDescribeCol", SQL_HANDLE_STMT, stmt, join(number, room));
  if (call.refused()) return call.rc();
  const fake::ColumnDescription* column = columnOf(*call, number);
  if (column == nullptr) return call.answer(SQL_ERROR, "07009", "no such column");
  give(type, column->sqlType);
  give(size, column->columnSize);
  give(digits, column->decimalDigits);
  give(nullable, column->nullable);
  if (give(column->name, name, room, nameLength)) return call.rc();
  return call.answer(SQL_SUCCESS_WITH_INFO, "01004", "name cut");
}

SQLRETURN SQLColAttribute(SQLHSTMT stmt, SQLUSMALLINT number, SQLUSMALLINT field, SQLPOINTER chars,
                          SQLSMALLINT room, SQLSMALLINT* length, SQLLEN* value) {
  Call call("SQLColAttribute", SQL_HANDLE_STMT, stmt, join(number, field, room));
  if (call.refused()) return call.rc();
  const fake::ColumnDescription* column = columnOf(*call, number);
  if (column == nullptr) return call.answer(SQL_ERROR, "07009", "no such column");
  switch (field) {
    case SQL_DESC_NAME:
      if (give(column->name, chars, room, length)) return call.rc();
      return call.answer(SQL_SUCCESS_WITH_INFO, "01004", "name cut");
    case SQL_DESC_CONCISE_TYPE:
      give(value, column->sqlType);
      break;
    case SQL_DESC_DISPLAY_SIZE:
      give(value, column->displaySize);
      break;
    case SQL_DESC_UNSIGNED:
      give(value, column->isUnsigned ? SQL_TRUE : SQL_FALSE);
      break;
    default:
      return call.answer(SQL_ERROR, "HY091", "no such field");
  }
  return call.rc();
}

SQLRETURN SQLFetch(SQLHSTMT stmt) {
  Call call("SQLFetch", SQL_HANDLE_STMT, stmt, "");
  if (call.refused()) return call.rc();
  const fake::Result* result = self().currentResult(&*call);
  if (!call->executed || result == nullptr || result->columns.empty()) {
    return call.answer(SQL_ERROR, "24000", "no open cursor");
  }
  call->column = 0;
  if (call->row >= result->rows.size() * result->repeat) return SQL_NO_DATA;
  ++call->row;
  return call.rc();
}

SQLRETURN SQLGetData(SQLHSTMT stmt, SQLUSMALLINT number, SQLSMALLINT cType, SQLPOINTER data,
                     SQLLEN room, SQLLEN* indicator) {
  Call call("SQLGetData", SQL_HANDLE_STMT, stmt, join(number, cType, room));
  if (call.refused()) return call.rc();
  if (columnOf(*call, number) == nullptr || call->row == 0) {
    return call.answer(SQL_ERROR, "07009", "no such column");
  }
  const fake::Result& result = *self().currentResult(&*call);
  const auto& row = result.rows[(call->row - 1) % result.rows.size()];
  const fake::Cell& cell = row[(number - 1U) % row.size()];
  if (const fake::Lies& lies = self().lies; lies.indicator || lies.unterminated) {
    const std::size_t fixed = fake::fixedBytes(cType);
    const SQLLEN bytes = fixed != 0 ? static_cast<SQLLEN>(fixed) : std::max<SQLLEN>(room, 0);
    std::memset(data, 'x', static_cast<std::size_t>(bytes));
    give(indicator, lies.indicator.value_or(bytes));
    return call.rc();
  }
  if (call->column != number) {
    call->column = number;
    call->offset = 0;
    call->finished = false;
  }
  if (call->finished) return SQL_NO_DATA;
  if (cell.null) {
    call->finished = true;
    give(indicator, SQL_NULL_DATA);
    return call.rc();
  }
  if (const std::size_t fixed = fake::fixedBytes(cType); fixed != 0) {
    call->finished = true;
    std::memcpy(data, cell.bytes.data(), std::min(fixed, cell.bytes.size()));
    give(indicator, fixed);
    return call.rc();
  }
  const auto left = static_cast<SQLLEN>(cell.bytes.size() - call->offset);
  SQLLEN piece = std::max<SQLLEN>(0, cType == SQL_C_CHAR ? room - 1 : room);
  piece = piece < left ? std::max<SQLLEN>(piece - cell.shortBy, 1) : left;
  std::memcpy(data, cell.bytes.data() + call->offset, static_cast<std::size_t>(piece));
  if (cType == SQL_C_CHAR && room > 0) static_cast<char*>(data)[piece] = 0;
  call->offset += static_cast<std::size_t>(piece);
  call->finished = piece == left;
  const bool known =
      cell.total == fake::Total::kKnown || (cell.total == fake::Total::kUnknown && call->finished);
  give(indicator, known ? left : SQLLEN{SQL_NO_TOTAL});
  if (call->finished) return call.rc();
  return call.answer(SQL_SUCCESS_WITH_INFO, "01004", "data cut");
}

SQLRETURN SQLRowCount(SQLHSTMT stmt, SQLLEN* count) {
  Call call("SQLRowCount", SQL_HANDLE_STMT, stmt, "");
  if (call.refused()) return call.rc();
  const fake::Result* result = self().currentResult(&*call);
  give(count, result == nullptr ? 0 : result->rowCount);
  return call.rc();
}

SQLRETURN SQLMoreResults(SQLHSTMT stmt) {
  Call call("SQLMoreResults", SQL_HANDLE_STMT, stmt, "");
  if (call.refused()) return call.rc();
  startResult(*call, call->result + 1);
  return self().currentResult(&*call) == nullptr ? SQLRETURN{SQL_NO_DATA} : call.rc();
}

SQLRETURN SQLFreeStmt(SQLHSTMT stmt, SQLUSMALLINT option) {
  Call call("SQLFreeStmt", SQL_HANDLE_STMT, stmt, join(option));
  if (call.refused()) return call.rc();
  if (option == SQL_RESET_PARAMS) call->bindings.clear();
  if (option == SQL_CLOSE) {
    call->executed = false;
    call->result = 0;
    call->row = 0;
  }
  return call.rc();
}

SQLRETURN SQLTables(SQLHSTMT stmt, SQLCHAR* catalog, SQLSMALLINT catalogLength, SQLCHAR* schema,
                    SQLSMALLINT schemaLength, SQLCHAR* table, SQLSMALLINT tableLength,
                    SQLCHAR* type, SQLSMALLINT typeLength) {
  return runCatalogFunction("SQLTables", stmt,
                            join(named(catalog, catalogLength), named(schema, schemaLength),
                                 named(table, tableLength), named(type, typeLength)));
}

SQLRETURN SQLColumns(SQLHSTMT stmt, SQLCHAR* catalog, SQLSMALLINT catalogLength, SQLCHAR* schema,
                     SQLSMALLINT schemaLength, SQLCHAR* table, SQLSMALLINT tableLength,
                     SQLCHAR* column, SQLSMALLINT columnLength) {
  return runCatalogFunction("SQLColumns", stmt,
                            join(named(catalog, catalogLength), named(schema, schemaLength),
                                 named(table, tableLength), named(column, columnLength)));
}

SQLRETURN SQLPrimaryKeys(SQLHSTMT stmt, SQLCHAR* catalog, SQLSMALLINT catalogLength,
                         SQLCHAR* schema, SQLSMALLINT schemaLength, SQLCHAR* table,
                         SQLSMALLINT tableLength) {
  return runCatalogFunction(
      "SQLPrimaryKeys", stmt,
      join(named(catalog, catalogLength), named(schema, schemaLength), named(table, tableLength)));
}

SQLRETURN SQLProcedures(SQLHSTMT stmt, SQLCHAR* catalog, SQLSMALLINT catalogLength, SQLCHAR* schema,
                        SQLSMALLINT schemaLength, SQLCHAR* procedure, SQLSMALLINT procedureLength) {
  return runCatalogFunction("SQLProcedures", stmt,
                            join(named(catalog, catalogLength), named(schema, schemaLength),
                                 named(procedure, procedureLength)));
}

SQLRETURN SQLProcedureColumns(SQLHSTMT stmt, SQLCHAR* catalog, SQLSMALLINT catalogLength,
                              SQLCHAR* schema, SQLSMALLINT schemaLength, SQLCHAR* procedure,
                              SQLSMALLINT procedureLength, SQLCHAR* column,
                              SQLSMALLINT columnLength) {
  return runCatalogFunction("SQLProcedureColumns", stmt,
                            join(named(catalog, catalogLength), named(schema, schemaLength),
                                 named(procedure, procedureLength), named(column, columnLength)));
}

}  // extern "C"
