#pragma once

// The five catalog queries: one template over the catalog function, one line each.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "odbc/odbc_catalog_impl.h"
#include "odbc/sql_argument.h"

namespace KORVEX::Zel::DB::ODBC {

// A catalog function with its pattern texts, of which it keeps copies; null means "any". Only the
// first `Passed` texts go to the function.
template <auto Function, std::size_t Texts, std::size_t Passed = Texts>
class CatalogFunctionImpl final : public OdbcCatalogImpl {
 public:
  template <typename... Text>
  explicit CatalogFunctionImpl(OdbcDbcImpl* dbc, Text... texts)
      : OdbcCatalogImpl(dbc), texts_{copyOf(texts)...} {
    static_assert(sizeof...(texts) == Texts);
  }

  e_Status Execute() override { return execute(std::make_index_sequence<Passed>()); }

 private:
  static std::optional<std::string> copyOf(const char* text) {
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
  }

  // A null pointer with length 0 for "any", else the text with its length.
  std::tuple<SQLCHAR*, SQLSMALLINT> argument(std::size_t index) const {
    const std::optional<std::string>& text = texts_[index];
    if (!text) return {nullptr, SQLSMALLINT{0}};
    return {inputText(text->c_str()), static_cast<SQLSMALLINT>(text->size())};
  }

  template <std::size_t... Index>
  e_Status execute(std::index_sequence<Index...>) {
    return GetStatus(this, std::apply(Function, std::tuple_cat(std::tuple<SQLHSTMT>(GetHandle()),
                                                               argument(Index)...)));
  }

  std::array<std::optional<std::string>, Texts> texts_;
};

// Catalog, schema, table, table type.
using OdbcTableCatalogImpl = CatalogFunctionImpl<SQLTables, 4>;
// Catalog, schema, table, column.
using OdbcTableColumnCatalogImpl = CatalogFunctionImpl<SQLColumns, 4>;
// Catalog, schema, table.
// Kept: a fourth text is taken, and never passed on.
using OdbcTablePrimaryKeyCatalogImpl = CatalogFunctionImpl<SQLPrimaryKeys, 4, 3>;
// Catalog, schema, procedure.
using OdbcProcedureCatalogImpl = CatalogFunctionImpl<SQLProcedures, 3>;
// Catalog, schema, procedure, column.
using OdbcProcedureColumnCatalogImpl = CatalogFunctionImpl<SQLProcedureColumns, 4>;

}  // namespace KORVEX::Zel::DB::ODBC
