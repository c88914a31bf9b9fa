#pragma once

#include <memory>
#include <span>
#include <string>

#include "odbc/odbc_catalog.h"
#include "odbc/odbc_col.h"

// How the rows of the catalog functions are read.
namespace KORVEX::Zel::DB {

// Result columns of the catalog functions, as the ODBC standard numbers them.
inline constexpr int kTableCatalog = 1;
inline constexpr int kTableSchema = 2;
inline constexpr int kTableName = 3;
inline constexpr int kTableType = 4;
inline constexpr int kColumnName = 4;  // of SQLColumns and SQLPrimaryKeys
inline constexpr int kDataType = 5;
inline constexpr int kColumnSize = 7;
inline constexpr int kDecimalDigits = 9;
inline constexpr int kNullable = 11;

// What stands for a text that the driver gives as NULL.
inline constexpr char kNullText[] = "NULL";

// An empty name means any, which the catalog functions know as a null pointer: an empty pattern
// matches nothing on some databases.
inline const char* pattern(const std::string& name) {
  return name.empty() ? nullptr : name.c_str();
}

// The text of a column, or `whenNull`.
inline std::string textAt(ODBC::OdbcCatalog& rows, int column, const char* whenNull) {
  ODBC::OdbcCol* cell = rows.GetColumn(column);
  std::span<const unsigned char> bytes;
  if (cell == nullptr || cell->GetBytes(bytes) != ODBC::Odbc::e_Ok) return whenNull;
  return {bytes.begin(), bytes.end()};
}

// The number of a column, 0 for NULL.
inline int numberAt(ODBC::OdbcCatalog& rows, int column) {
  ODBC::OdbcCol* cell = rows.GetColumn(column);
  int number = 0;
  if (cell == nullptr || cell->GetData(number) != ODBC::Odbc::e_Ok) return 0;
  return number;
}

// Hands every row of a catalog query to `take`. False when the query or a fetch failed.
template <typename Take>
bool forEachRow(ODBC::OdbcCatalog* scan, Take take) {
  const std::unique_ptr<ODBC::OdbcCatalog> rows(scan);
  if (rows == nullptr) return false;
  ODBC::Odbc::e_Status status = rows->Fetch();
  for (; status == ODBC::Odbc::e_Ok; status = rows->Fetch()) take(*rows);
  return status == ODBC::Odbc::e_NoData;
}

}  // namespace KORVEX::Zel::DB
