#pragma once

#include "datatypes/type_code.h"
#include "odbc/byte_store.h"
#include "odbc/odbc_param_impl.h"
#include "tests/odbc/odbc_fixture.h"

namespace odbc_test {

using DataTypes::DataValue;
using KORVEX::Zel::DB::ODBC::ByteStore;
using KORVEX::Zel::DB::ODBC::OdbcParam;
using KORVEX::Zel::DB::ODBC::OdbcParamImpl;

inline DataValue text(const char* value) {
  DataValue cell;
  cell.string = value;
  return cell;
}

inline DataValue binary(const std::string& value) {
  DataValue cell;
  cell.binary = {reinterpret_cast<const unsigned char*>(value.data()),
                 static_cast<std::uint32_t>(value.size())};
  return cell;
}

inline ByteStore store(const std::string& value) {
  return ByteStore(value.data(), static_cast<unsigned int>(value.size()));
}

inline const std::string kZeros("a\0b", 3);
inline const TIMESTAMP_STRUCT kStamp = {2026, 11, 21, 4, 5, 6, 789000000};
inline const TIME_STRUCT kTime = {4, 5, 6};

template <typename Raw>
std::string raw(Raw value) {
  return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

class Param : public OdbcTest {
 protected:
  void prepareOne(bool batch, SQLULEN describedSize = 10) {
    fake_.params["insert ?"] = {{SQL_VARCHAR, describedSize}};
    prepare("insert ?", batch);
    param_ = stmt_->GetParam(1);
  }

  // Executes, and returns how the parameter was bound; "" when it was not.
  std::string execute() {
    fake_.log.clear();
    EXPECT_EQ(stmt_->Execute(), Odbc::e_Ok);
    for (const std::string& line : fake_.takeLog()) {
      if (line.starts_with("SQLBindParameter")) return line;
    }
    return "";
  }

  const std::vector<std::vector<fake::BoundValue>>& sentRows() {
    return fake_.executions.back().rows;
  }
  const fake::BoundValue& sent() { return sentRows().at(0).at(0); }

  OdbcParam* param_ = nullptr;
};

using Set = Odbc::e_Status (*)(OdbcParam&, bool isNull);

struct Value {
  const char* name;
  Set set;
  const char* single;  // how a single value is bound
  SQLLEN indicator;
  short cType;    // to be set before rows of it
  SQLLEN inRows;  // the indicator of each
  std::string bytes;
};

inline Odbc::e_Status setText(OdbcParam& p, bool isNull) {
  return p.SetData(5, text("h\xC3\xA9"), isNull);
}
inline Odbc::e_Status setBinary(OdbcParam& p, bool isNull) {
  return p.SetData(28, binary(kZeros), isNull);
}
template <bool binary>
Odbc::e_Status setStore(OdbcParam& p, bool isNull) {
  ByteStore value = store("12.50");
  return p.SetData(&value, binary, isNull);
}

inline const Value kValues[] = {
    {"bool", [](OdbcParam& p, bool n) { return p.SetData(true, n); },
     "SQLBindParameter(1,1,-7,12,50,0,ptr,24,ptr)", 0, -7, 0, raw(true)},
    {"char", [](OdbcParam& p, bool n) { return p.SetData(char{-3}, n); },
     "SQLBindParameter(1,1,-26,12,50,0,ptr,24,ptr)", 0, -26, 0, raw(char{-3})},
    {"unsigned char",
     [](OdbcParam& p, bool n) { return p.SetData(static_cast<unsigned char>(200), n); },
     "SQLBindParameter(1,1,-28,12,50,0,ptr,24,ptr)", 0, -28, 0, "\xC8"},
    {"short", [](OdbcParam& p, bool n) { return p.SetData(short{-300}, n); },
     "SQLBindParameter(1,1,-15,12,50,0,ptr,24,ptr)", 0, -15, 0, raw(short{-300})},
    {"unsigned short",
     [](OdbcParam& p, bool n) { return p.SetData(static_cast<unsigned short>(60000), n); },
     "SQLBindParameter(1,1,-17,12,50,0,ptr,24,ptr)", 0, -17, 0,
     raw(static_cast<unsigned short>(60000))},
    {"int", [](OdbcParam& p, bool n) { return p.SetData(-70000, n); },
     "SQLBindParameter(1,1,-16,12,50,0,ptr,24,ptr)", 0, -16, 0, raw(-70000)},
    {"unsigned int", [](OdbcParam& p, bool n) { return p.SetData(4000000000U, n); },
     "SQLBindParameter(1,1,-18,12,50,0,ptr,24,ptr)", 0, -18, 0, raw(4000000000U)},
    {"long", [](OdbcParam& p, bool n) { return p.SetData(-5000000000L, n); },
     "SQLBindParameter(1,1,-25,12,50,0,ptr,0,ptr)", 0, -25, 0, raw(-5000000000L)},
    {"unsigned long", [](OdbcParam& p, bool n) { return p.SetData(~0UL, n); },
     "SQLBindParameter(1,1,-27,12,50,0,ptr,0,ptr)", 0, -27, 0, raw(~0UL)},
    {"double", [](OdbcParam& p, bool n) { return p.SetData(2.5, n); },
     "SQLBindParameter(1,1,8,12,50,0,ptr,24,ptr)", 0, 8, 0, raw(2.5)},
    {"timestamp", [](OdbcParam& p, bool n) { return p.SetData(kStamp, n); },
     "SQLBindParameter(1,1,93,12,50,0,ptr,16,ptr)", 16, 93, 0, raw(kStamp)},
    {"time", [](OdbcParam& p, bool n) { return p.SetData(kTime, n); },
     "SQLBindParameter(1,1,92,12,50,0,ptr,6,ptr)", 6, 92, 0, raw(kTime)},
    {"text", setText, "SQLBindParameter(1,1,1,12,50,0,ptr,3,ptr)", 3, 1, SQL_NTS, "h\xC3\xA9"},
    {"bytes", setBinary, "SQLBindParameter(1,1,-2,12,50,0,ptr,3,ptr)", 3, -2, 3, kZeros},
    {"text store", setStore<false>, "SQLBindParameter(1,1,1,12,50,0,ptr,5,ptr)", 5, 1, SQL_NTS,
     "12.50"},
    {"bytes store", setStore<true>, "SQLBindParameter(1,1,-2,12,50,0,ptr,5,ptr)", 5, -2, 5,
     "12.50"},
};

}  // namespace odbc_test
