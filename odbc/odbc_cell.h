#pragma once

#include "odbc/odbc_data_impl.h"

namespace KORVEX::Zel::DB::ODBC {

// A cell behind one of the two interfaces that show cells, OdbcCol and OdbcParam: answers what they
// have in common.
template <typename Interface>
class OdbcCell : public OdbcDataImpl, public Interface {
 public:
  using OdbcDataImpl::OdbcDataImpl;
  using e_Status = Odbc::e_Status;
  using Interface::SetData;

  e_Status SetSqlType(short sqlType, unsigned int columnSize, short decimalDigits) override {
    return OdbcDataImpl::SetSqlType(sqlType, columnSize, decimalDigits);
  }
  e_Status SetCType(short cType, int lengthBytes) override {
    return OdbcDataImpl::SetCType(cType, lengthBytes);
  }
  e_Status SetDirection(short direction) override { return OdbcDataImpl::SetDirection(direction); }
  e_Status SetData() override { return OdbcDataImpl::SetData(); }

  e_Status GetSqlType(short& sqlType, unsigned int& columnSize, short& decimalDigits) override {
    return OdbcDataImpl::GetSqlType(sqlType, columnSize, decimalDigits);
  }
  e_Status GetCType(short& cType, int& lengthBytes) override {
    return OdbcDataImpl::GetCType(cType, lengthBytes);
  }
  e_Status GetDirection(short& direction) override { return OdbcDataImpl::GetDirection(direction); }

  e_Status GetData(char& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(bool& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(short& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(int& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(long& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(unsigned char& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(unsigned short& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(unsigned int& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(unsigned long& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(double& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(ByteStore* value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(TIMESTAMP_STRUCT& value) override { return OdbcDataImpl::GetData(value); }
  e_Status GetData(TIME_STRUCT& value) override { return OdbcDataImpl::GetData(value); }
};

}  // namespace KORVEX::Zel::DB::ODBC
