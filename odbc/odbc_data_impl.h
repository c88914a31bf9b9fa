#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "datatypes/data_value.h"
#include "odbc/byte_store.h"
#include "odbc/cell_content.h"
#include "odbc/odbc_impl.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcQueryImpl;

// One typed value cell of a statement: the value of a result column in the current row, or of a
// parameter. It has no handle of its own; the diagnostics of its ODBC calls are read from its
// owner. OdbcCol and OdbcParam say what the operations do for a caller.
class OdbcDataImpl : public OdbcImpl {
 public:
  OdbcDataImpl(OdbcQueryImpl* owner, short number);
  ~OdbcDataImpl() override;

  // In slot order.
  // e_Error for a number below 1.
  e_Status Initialize() override;
  e_Status Finalize() override { return e_Ok; }
  SQLHANDLE GetHandle(e_Handle kind) override;
  SQLHANDLE GetHandle() override { return SQL_NULL_HANDLE; }
  e_Handle GetHandleType() override { return e_None; }

  // Description. Setters forget the previous diagnostics, and clear IsBound where the driver would
  // have to be told. The buffer itself is made by SetBindArea or by the first value.
  e_Status SetCType(short cType, int lengthBytes);
  e_Status SetSqlType(short sqlType, unsigned int columnSize, short decimalDigits);
  e_Status SetDirection(short direction);
  e_Status GetCType(short& cType, int& lengthBytes);
  e_Status GetSqlType(short& sqlType, unsigned int& columnSize, short& decimalDigits);
  e_Status GetDirection(short& direction);

  // Makes the buffer one of `length + 1` zero bytes. As long as the size stays the block does, and
  // only the bytes that a value has used are zeroed again.
  e_Status SetBindArea();
  // Whether the driver knows the buffer as it is now. Every change of type, size, direction or
  // buffer clears it.
  bool IsBound() const { return bound_; }
  void IsBound(bool bound) { bound_ = bound; }

  // Values. Each takes the C type that belongs to the value's type; integers of 64 bits leave the
  // buffer length at 0, which ODBC ignores for types of a fixed size.
  e_Status SetData();
  e_Status SetData(bool value) { return store(SQL_C_BIT, value); }
  e_Status SetData(char value) { return store(SQL_C_STINYINT, value); }
  e_Status SetData(short value) { return store(SQL_C_SSHORT, value); }
  e_Status SetData(int value) { return store(SQL_C_SLONG, value); }
  e_Status SetData(long value) { return store(SQL_C_SBIGINT, value); }
  e_Status SetData(unsigned char value) { return store(SQL_C_UTINYINT, value); }
  e_Status SetData(unsigned short value) { return store(SQL_C_USHORT, value); }
  e_Status SetData(unsigned int value) { return store(SQL_C_ULONG, value); }
  e_Status SetData(unsigned long value) { return store(SQL_C_UBIGINT, value); }
  e_Status SetData(double value) { return store(SQL_C_DOUBLE, value); }
  e_Status SetData(const TIMESTAMP_STRUCT& value) {
    return store(SQL_C_TYPE_TIMESTAMP, value, sizeof value);
  }
  e_Status SetData(const TIME_STRUCT& value) { return store(SQL_C_TYPE_TIME, value, sizeof value); }
  e_Status SetData(ByteStore* value, bool binary);
  e_Status SetText(std::string_view text) {
    return storeText(SQL_C_CHAR, text.data(), text.size());
  }
  e_Status SetData(unsigned int typeCode, const DataTypes::DataValue& value);

  // The typed getters: a table of C types each (cell_readers.h).
  e_Status GetData(char& value);
  e_Status GetData(bool& value);
  e_Status GetData(short& value);
  e_Status GetData(int& value);
  e_Status GetData(long& value);
  e_Status GetData(unsigned char& value);
  e_Status GetData(unsigned short& value);
  e_Status GetData(unsigned int& value);
  e_Status GetData(unsigned long& value);
  e_Status GetData(double& value);
  e_Status GetData(TIMESTAMP_STRUCT& value);
  e_Status GetData(TIME_STRUCT& value);
  // The bytes of the buffer: copied, and where they lie.
  e_Status GetData(ByteStore* value);
  e_Status GetBytes(std::span<const unsigned char>& bytes);
  const CellContent& Content() const { return content_; }

 protected:
  bool isNull() const { return content_.isNull(); }
  // The status of one of the cell's ODBC calls.
  e_Status statusFromOwner(SQLRETURN rc) {
    return rc == SQL_SUCCESS ? GetStatus(rc) : failureFromOwner(rc);
  }
  // SQLBindParameter with the cell's description; on success the cell is bound. `data` and
  // `indicators` must stay where they are until the next binding.
  e_Status bindParameter(SQLPOINTER data, SQLLEN bufferBytes, SQLLEN* indicators);

  OdbcQueryImpl* owner_;
  // The owner's; not freed here.
  SQLHANDLE envHandle_;
  SQLHANDLE dbcHandle_;
  SQLHANDLE stmtHandle_;
  bool bound_ = false;
  bool wide_ = false;             // a column of a wide character type
  std::int16_t number_;           // of the column or parameter, from 1
  std::int16_t direction_ = 0;    // SQL_PARAM_ ..., 0: never set
  std::int32_t lengthBytes_ = 0;  // as told to ODBC; the buffer is one byte longer
  std::int16_t nullable_ = SQL_NULLABLE_UNKNOWN;
  CellContent content_;

 private:
  e_Status failureFromOwner(SQLRETURN rc);
  // Takes C type and length, remakes the buffer and puts the value at its start.
  e_Status storeBytes(short cType, int lengthBytes, const void* value, std::size_t valueBytes,
                      SQLLEN indicator);
  e_Status storeText(short cType, const void* value, std::size_t valueBytes);

  template <typename Value>
  e_Status store(short cType, const Value& value, int lengthBytes = 0) {
    return storeBytes(cType, lengthBytes, &value, sizeof value, lengthBytes);
  }

  // How much of the buffer may differ from zero since SetBindArea.
  std::uint32_t writtenBytes_ = 0;
};

}  // namespace KORVEX::Zel::DB::ODBC
