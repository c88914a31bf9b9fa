#pragma once

#include "host/statement.h"

namespace KORVEX::Zel::DB {

// A statement that is not this driver's. Nothing of it is ever called.
class ForeignStatement final : public Statement {
 public:
  using Statement::Statement;
  using R = ResultCode;
  using Params = const std::vector<Parameter>&;
  using Text = const std::string&;
  using Value = const DataTypes::DataValue&;

  R close() override { return kFailure; }
  R executeQuery(Params, int, ResultSet*&) override { return kFailure; }
  R executeQuery(Text, Params, int, ResultSet*&) override { return kFailure; }
  R executeUpdate(Params, int&) override { return kFailure; }
  R executeUpdate(Text, Params, int&) override { return kFailure; }
  R nextResultSet(bool&) override { return kFailure; }
  R getResultSet(ResultSet*&) override { return kFailure; }
  R createBatch(Text) override { return kFailure; }
  R addToBatch(Params) override { return kFailure; }
  R clearBatch() override { return kFailure; }
  R executeBatch(std::vector<int>&) override { return kFailure; }
  R bindParameters(Params) override { return kFailure; }
  R bindParameterInt16(void*, Value) override { return kFailure; }
  R bindParameterInt32(void*, Value) override { return kFailure; }
  R bindParameterInt64(void*, Value) override { return kFailure; }
  R bindParameterDouble(void*, Value) override { return kFailure; }
  R bindParameterDate(void*, Value) override { return kFailure; }
  R bindParameterString(void*, Value) override { return kFailure; }
  R bindParameterMoney(void*, unsigned int, Value) override { return kFailure; }
  R bindParameterTimestamp(void*, Value) override { return kFailure; }
  R bindParameterBoolean(void*, Value) override { return kFailure; }
  R bindParameterInterval(void*, Value) override { return kFailure; }
  R bindParameterBigDateTime(void*, Value) override { return kFailure; }
  R bindParameterTime(void*, Value) override { return kFailure; }
  R bindParameterFixedDecimal(void*, unsigned int, Value) override { return kFailure; }
  R bindParameterBinary(void*, Value) override { return kFailure; }
};

}  // namespace KORVEX::Zel::DB
