#include "odbc/odbc_param_impl.h"

#include "odbc/data_value_bytes.h"

namespace KORVEX::Zel::DB::ODBC {

Odbc::e_Status OdbcParamImpl::setNull() {
  content_.indicator = SQL_NULL_DATA;
  return GetStatus(SQL_SUCCESS);
}

Odbc::e_Status OdbcParamImpl::SetData(unsigned int typeCode, const DataTypes::DataValue& value,
                                      bool isNull) {
  if (!dataValueBytes(typeCode, value, true)) return e_Error;
  return setOrNull(isNull, typeCode, value);
}

Odbc::e_Status OdbcParamImpl::Bind() {
  return bound_ ? e_Ok : bindParameter(content_.buffer.Data(), lengthBytes_, &content_.indicator);
}

Odbc::e_Status OdbcParamImpl::Unbind() {
  bound_ = false;
  return e_Ok;
}

}  // namespace KORVEX::Zel::DB::ODBC
