#pragma once

#include <string>

#include "host/export.h"

namespace KORVEX::Zel::DB {

// The description of a table column.
class ZEL_EXPORT Column {
 public:
  Column();
  Column(const std::string& name, int position, const unsigned int& type, int size, int scale,
         bool nullable, bool primaryKey);
  Column(const Column&);
  Column& operator=(const Column&);
  virtual ~Column();

  // In slot order.
  // The type code for an ODBC SQL type number.
  virtual unsigned int getZelDataType(int sqlType) const = 0;
  // The SQL type text for a type code; a key column gets the short variable lengths.
  virtual std::string getSqlTypeString(unsigned int type, bool keyColumn) const = 0;

  const std::string& getName() const { return name_; }
  int getPosition() const { return position_; }
  unsigned int getType() const { return type_; }
  int getSize() const { return size_; }
  int getScale() const { return scale_; }
  bool isNullable() const { return nullable_; }
  bool isPrimaryKey() const { return primaryKey_; }
  void setPrimaryKey(bool primaryKey) { primaryKey_ = primaryKey; }

 private:
  std::string name_;
  int position_ = 0;
  unsigned int type_ = 0;
  int size_ = 0;
  int scale_ = 0;
  bool nullable_ = false;
  bool primaryKey_ = false;
};

}  // namespace KORVEX::Zel::DB
