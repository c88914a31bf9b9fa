#pragma once

#include <sql.h>
#include <sqlext.h>

#include <string_view>

#include "datatypes/data_value.h"
#include "odbc/odbc.h"

namespace KORVEX::Zel::DB::ODBC {

class ByteStore;

// One parameter of a statement. In single execution it holds one value, in a batch a column of
// values to which every SetData with a null flag appends one row; there the first call of
// SetSqlType, SetCType and SetDirection decides and later ones are ignored.
//
// Values are copied when they are set; the driver reads them at Execute. The object belongs to its
// statement and goes when that is prepared anew.
//
// Setters return e_Ok unless something else is said. They do not check that a value fits the SQL
// type; the driver does, when the statement is executed.
class OdbcParam : public virtual Odbc {
 public:
  // In slot order.
  // The SQL type, its size and its decimal digits. Types of one size (integers, floats, bit) get
  // that size whatever is passed, and only types outside the usual ones keep `decimalDigits`.
  virtual e_Status SetSqlType(short sqlType, unsigned int columnSize, short decimalDigits) = 0;
  // The C type, and for the types of no fixed size the buffer length in bytes. Unknown types change
  // nothing.
  virtual e_Status SetCType(short cType, int lengthBytes) = 0;
  // SQL_PARAM_INPUT, _INPUT_OUTPUT or _OUTPUT; others change nothing. A new parameter is input.
  virtual e_Status SetDirection(short direction) = 0;
  // An empty value: the buffer of the current C type, zeroed.
  virtual e_Status SetData() = 0;

  // A value, or NULL when `isNull` is set; the value is then not looked at. A single parameter
  // takes the C type that belongs to the value's type.
  virtual e_Status SetData(bool value, bool isNull) = 0;
  virtual e_Status SetData(char value, bool isNull) = 0;
  virtual e_Status SetData(short value, bool isNull) = 0;
  virtual e_Status SetData(int value, bool isNull) = 0;
  virtual e_Status SetData(long value, bool isNull) = 0;
  virtual e_Status SetData(unsigned char value, bool isNull) = 0;
  virtual e_Status SetData(unsigned short value, bool isNull) = 0;
  virtual e_Status SetData(unsigned int value, bool isNull) = 0;
  virtual e_Status SetData(unsigned long value, bool isNull) = 0;
  virtual e_Status SetData(double value, bool isNull) = 0;
  // Text or bytes, copied; a null store counts as empty. In a batch the caller's store is cut or
  // padded with NULs to the size that the driver described, when that is below 64 KiB; a value
  // of a numeric SQL type is never cut.
  virtual e_Status SetData(ByteStore* value, bool binary, bool isNull) = 0;
  // A string or binary cell, by type code, copied. e_Error for any other type code.
  virtual e_Status SetData(unsigned int typeCode, const DataTypes::DataValue& value,
                           bool isNull) = 0;
  virtual e_Status SetData(const TIMESTAMP_STRUCT& value, bool isNull) = 0;
  virtual e_Status SetData(const TIME_STRUCT& value, bool isNull) = 0;

  // What the setters left.
  virtual e_Status GetSqlType(short& sqlType, unsigned int& columnSize, short& decimalDigits) = 0;
  virtual e_Status GetCType(short& cType, int& lengthBytes) = 0;
  virtual e_Status GetDirection(short& direction) = 0;

  // The value of a single parameter, as OdbcCol reads a column's. In a batch: e_Ok, no change.
  virtual e_Status GetData(char& value) = 0;
  virtual e_Status GetData(bool& value) = 0;
  virtual e_Status GetData(short& value) = 0;
  virtual e_Status GetData(int& value) = 0;
  virtual e_Status GetData(long& value) = 0;
  virtual e_Status GetData(unsigned char& value) = 0;
  virtual e_Status GetData(unsigned short& value) = 0;
  virtual e_Status GetData(unsigned int& value) = 0;
  virtual e_Status GetData(unsigned long& value) = 0;
  virtual e_Status GetData(double& value) = 0;
  virtual e_Status GetData(ByteStore* value) = 0;
  virtual e_Status GetData(TIMESTAMP_STRUCT& value) = 0;
  virtual e_Status GetData(TIME_STRUCT& value) = 0;

  // Behind the slots above.
  // Whether types, sizes and direction are decided for good, so that their setters change nothing.
  virtual bool IsDecided() const = 0;
  // What SetData does with a store of these characters, for callers without one.
  virtual e_Status SetText(std::string_view text, bool isNull) = 0;
};

}  // namespace KORVEX::Zel::DB::ODBC
