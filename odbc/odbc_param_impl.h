#pragma once

#include "odbc/odbc_cell.h"
#include "odbc/odbc_param.h"

namespace KORVEX::Zel::DB::ODBC {

// A parameter with one value: bound once, refilled before each execution, bound again only when its
// buffer or its description changed.
class OdbcParamImpl : public OdbcCell<OdbcParam> {
 public:
  // Parameter `number` (from 1) of `owner`: an input parameter until SetDirection says otherwise.
  OdbcParamImpl(OdbcQueryImpl* owner, short number) : OdbcCell(owner, number) {
    direction_ = SQL_PARAM_INPUT;
  }

  // The cell's own setters, which have no null flag.
  using OdbcDataImpl::SetData;

  e_Status SetData() override { return OdbcDataImpl::SetData(); }
  e_Status SetData(bool value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(char value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(short value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(int value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(long value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(unsigned char value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(unsigned short value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(unsigned int value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(unsigned long value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(double value, bool isNull) override { return setOrNull(isNull, value); }
  e_Status SetData(ByteStore* value, bool binary, bool isNull) override {
    return setOrNull(isNull, value, binary);
  }
  e_Status SetData(unsigned int typeCode, const DataTypes::DataValue& value, bool isNull) override;
  e_Status SetData(const TIMESTAMP_STRUCT& value, bool isNull) override {
    return setOrNull(isNull, value);
  }
  e_Status SetData(const TIME_STRUCT& value, bool isNull) override {
    return setOrNull(isNull, value);
  }

  bool IsDecided() const override { return false; }
  e_Status SetText(std::string_view text, bool isNull) override {
    return isNull ? setNull() : OdbcDataImpl::SetText(text);
  }

  // Hands the buffer to the driver (SQLBindParameter), unless it knows it already.
  virtual e_Status Bind();
  // Only forgets that it is bound: the driver keeps the old binding until the next Bind.
  virtual e_Status Unbind();

  // Batches: a parameter holds `rows` rows, no more or no fewer; missing ones are NULL.
  virtual void CutRows(int /*rows*/) {}
  virtual void PadRows(int /*rows*/) {}

 private:
  // A NULL sets the indicator only; the bytes of the last value stay, and are not sent.
  e_Status setNull();

  template <typename... Value>
  e_Status setOrNull(bool isNull, const Value&... value) {
    return isNull ? setNull() : OdbcDataImpl::SetData(value...);
  }
};

}  // namespace KORVEX::Zel::DB::ODBC
