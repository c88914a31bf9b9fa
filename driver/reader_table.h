#pragma once

#include <array>
#include <limits>

#include "datatypes/data_value.h"
#include "datatypes/type_code.h"
#include "odbc/cell_content.h"
#include "odbc/odbc.h"

namespace KORVEX::Zel::DB {

// How a column reader ended.
struct ReadResult {
  enum Outcome {
    kValue,      // the cell holds the value
    kNull,       // the database has NULL
    kFailed,     // the column's type or content cannot become the wanted type
    kUnparsable  // a text that should be a time of day is not
  };

  Outcome outcome = kFailed;
  const char* reason = nullptr;  // why it failed, where the conversion says so; a constant text
};

// How the status of a column accessor reads: a value, NULL, or a failure that the driver's
// diagnostic tells.
ReadResult readResultOf(ODBC::Odbc::e_Status status);

// Reads the current value of a column as the given type into `value`; for strings and bytes the
// cell receives a malloc'ed buffer that belongs to the caller. The null flag is the caller's to
// set.
using ColumnReader = ReadResult (*)(const ODBC::CellContent& column, unsigned int type,
                                    DataTypes::DataValue& value);

// The readers of each type number; null for numbers that cannot be read.
struct TypeReaders {
  ColumnReader plain = nullptr;
  ColumnReader safe = nullptr;
};
extern const std::array<TypeReaders, DataTypes::kTypeCount> kColumnReaders;

// The reader for a type code (its low 8 bits count), or null for a code that cannot be read. Read
// safely, dates before 1970 are right in every time zone.
inline ColumnReader findColumnReader(unsigned int type, bool safely) {
  const unsigned number = DataTypes::typeNumber(type);
  if (number >= kColumnReaders.size()) return nullptr;
  return safely ? kColumnReaders[number].safe : kColumnReaders[number].plain;
}

// The reader of one column as one type, settled before its first value. Gives what the reader of
// findColumnReader gives, as long as the column's C type stays.
ColumnReader settleColumnReader(unsigned int type, short cType, bool safely);

// How a column is read as a type: what the readers' table says, looked up once and not once a
// value.
struct ColumnPlan {
  static constexpr short kUnsettled = std::numeric_limits<short>::min();  // no C type

  unsigned int type = 0;
  short cType = kUnsettled;
  bool carriesBuffer = false;
  ColumnReader read = nullptr;

  // Whether this is the plan for such a column and a type, and is settled. What else a column says
  // about itself is looked at with each value.
  bool isFor(const ODBC::CellContent& column, unsigned int wantedType) const {
    return type == wantedType && cType == column.cType;
  }
};

}  // namespace KORVEX::Zel::DB
