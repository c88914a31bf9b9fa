#pragma once

#include <string>

#include "host/column.h"

namespace KORVEX::Zel::DB {

// The type code of an ODBC SQL type; 6 (unknown) for a type that has none. `databaseType` is one of
// the values of OdbcDbc::GetDatabaseType: some types belong to one database only.
unsigned int zelDataType(int sqlType, const std::string& databaseType);

// A table column that knows how types map between the server and SQL, in both directions.
class OdbcColumn final : public Column {
 public:
  OdbcColumn();
  // Position from 1; `type` a type code; `size` and `scale` as the driver's catalogue gives them;
  // `databaseType` one of the values of OdbcDbc::GetDatabaseType.
  OdbcColumn(const std::string& name, int position, unsigned int type, int size, bool nullable,
             bool primaryKey, int scale, const std::string& databaseType);
  // The same; the third flag has no meaning here.
  OdbcColumn(const std::string& name, int position, unsigned int type, int size, bool nullable,
             bool primaryKey, bool unused, int scale, const std::string& databaseType);
  OdbcColumn(const OdbcColumn&) = default;
  OdbcColumn& operator=(const OdbcColumn&) = default;

  // In slot order.
  // zelDataType for the column's own database.
  unsigned int getZelDataType(int sqlType) const override;
  // The SQL type in which a created table keeps a type code; "error" for a code that has none.
  std::string getSqlTypeString(unsigned int type, bool keyColumn) const override;

 private:
  std::string databaseType_;
};

}  // namespace KORVEX::Zel::DB
