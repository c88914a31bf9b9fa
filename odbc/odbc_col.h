#pragma once

#include <sql.h>
#include <sqlext.h>

#include <span>
#include <string>

#include "odbc/odbc.h"

namespace KORVEX::Zel::DB::ODBC {

class ByteStore;

// One column of a result set, holding the value of the row fetched last. It belongs to its query,
// and goes when the query moves on to another result, or is prepared anew. The driver's description
// decides the C type in which the value is read:
//   integers            their C type by size and sign; BIGINT: SQL_C_SBIGINT, read through text
//   floats              SQL_C_DOUBLE
//   dates, timestamps   SQL_C_TYPE_TIMESTAMP (16 bytes); TIME of ODBC 3: SQL_C_TYPE_TIME (6 bytes)
//   numeric, all texts  SQL_C_CHAR
//   anything else       SQL_C_BINARY
class OdbcCol : public virtual Odbc {
 public:
  // In slot order.
  // As for parameters (OdbcParam). They describe the cell anew, for reads of the rows to come.
  virtual e_Status SetSqlType(short sqlType, unsigned int columnSize, short decimalDigits) = 0;
  virtual e_Status SetCType(short cType, int lengthBytes) = 0;
  virtual e_Status SetDirection(short direction) = 0;
  virtual e_Status SetData() = 0;

  // The name as the driver gives it, cut to 255 bytes.
  virtual e_Status GetName(std::string& name) = 0;
  virtual e_Status GetSqlType(short& sqlType, unsigned int& columnSize, short& decimalDigits) = 0;
  virtual e_Status GetCType(short& cType, int& lengthBytes) = 0;
  virtual e_Status GetDirection(short& direction) = 0;

  // The value, converted from the column's C type.
  //   e_Ok     `value` is set
  //   e_Null   NULL; `value` is 0
  //   e_Error  the C type is not one that this getter reads (`value` is left alone), or a text
  //            that is no number of the wanted range
  // char, short, long and their unsigned kin read their own C types, `unsigned` ones also their
  // signed twin; int, unsigned int, bool read all smaller ones too; bool, int, long, unsigned int,
  // unsigned long and double also read text, which must be a number from end to end.
  virtual e_Status GetData(char& value) = 0;
  // Reads a NULL text as false with e_Ok.
  virtual e_Status GetData(bool& value) = 0;
  virtual e_Status GetData(short& value) = 0;
  virtual e_Status GetData(int& value) = 0;
  virtual e_Status GetData(long& value) = 0;
  virtual e_Status GetData(unsigned char& value) = 0;
  virtual e_Status GetData(unsigned short& value) = 0;
  virtual e_Status GetData(unsigned int& value) = 0;
  virtual e_Status GetData(unsigned long& value) = 0;
  virtual e_Status GetData(double& value) = 0;
  // Copies the bytes of texts, binaries and date structures into the store; of a BIGINT its
  // decimal text; of SQL_C_LONG, _SHORT, _TINYINT and _DOUBLE nothing, the store is emptied; of the
  // bit and the unsigned types the number as it lies. It can be called again, with the same answer.
  // e_Error for a null store. e_Null with an empty store for NULL.
  virtual e_Status GetData(ByteStore* value) = 0;
  // Copy the structure and yet return e_Error; e_Null and a zeroed structure for NULL.
  virtual e_Status GetData(TIMESTAMP_STRUCT& value) = 0;
  virtual e_Status GetData(TIME_STRUCT& value) = 0;

  // The value where it lies, without a copy: a text without its terminator (which stands behind
  // it), bytes, or the number or structure of the C type. Good until the next fetch. e_Null with no
  // bytes for NULL.
  virtual e_Status GetBytes(std::span<const unsigned char>& bytes) = 0;
};

}  // namespace KORVEX::Zel::DB::ODBC
