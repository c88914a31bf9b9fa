#include "datatypes/type_code.h"
#include "odbc/byte_store.h"
#include "odbc/odbc_param_impl.h"
#include "tests/odbc/odbc_fixture.h"

namespace {

using DataTypes::DataValue;
using KORVEX::Zel::DB::ODBC::ByteStore;
using KORVEX::Zel::DB::ODBC::OdbcParam;
using KORVEX::Zel::DB::ODBC::OdbcParamImpl;
using odbc_test::getOdbcError;
using odbc_test::Log;
using odbc_test::Odbc;
using odbc_test::OdbcTest;
using odbc_test::recordText;

DataValue text(const char* value) {
  DataValue cell;
  cell.string = value;
  return cell;
}

DataValue binary(const std::string& value) {
  DataValue cell;
  cell.binary = {reinterpret_cast<const unsigned char*>(value.data()),
                 static_cast<std::uint32_t>(value.size())};
  return cell;
}

ByteStore store(const std::string& value) {
  return ByteStore(value.data(), static_cast<unsigned int>(value.size()));
}

const std::string kZeros("a\0b", 3);
const TIMESTAMP_STRUCT kStamp = {2026, 11, 21, 4, 5, 6, 789000000};
const TIME_STRUCT kTime = {4, 5, 6};

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
  std::string bytes;
};

Odbc::e_Status setText(OdbcParam& p, bool isNull) {
  return p.SetData(5, text("h\xC3\xA9"), isNull);
}
Odbc::e_Status setBinary(OdbcParam& p, bool isNull) {
  return p.SetData(28, binary(kZeros), isNull);
}
template <bool binary>
Odbc::e_Status setStore(OdbcParam& p, bool isNull) {
  ByteStore value = store("12.50");
  return p.SetData(&value, binary, isNull);
}

const Value kValues[] = {
    {"bool", [](OdbcParam& p, bool n) { return p.SetData(true, n); },
     "SQLBindParameter(1,1,-7,12,50,0,ptr,24,ptr)", 0, raw(true)},
    {"char", [](OdbcParam& p, bool n) { return p.SetData(char{-3}, n); },
     "SQLBindParameter(1,1,-26,12,50,0,ptr,24,ptr)", 0, raw(char{-3})},
    {"unsigned char",
     [](OdbcParam& p, bool n) { return p.SetData(static_cast<unsigned char>(200), n); },
     "SQLBindParameter(1,1,-28,12,50,0,ptr,24,ptr)", 0, "\xC8"},
    {"short", [](OdbcParam& p, bool n) { return p.SetData(short{-300}, n); },
     "SQLBindParameter(1,1,-15,12,50,0,ptr,24,ptr)", 0, raw(short{-300})},
    {"unsigned short",
     [](OdbcParam& p, bool n) { return p.SetData(static_cast<unsigned short>(60000), n); },
     "SQLBindParameter(1,1,-17,12,50,0,ptr,24,ptr)", 0, raw(static_cast<unsigned short>(60000))},
    {"int", [](OdbcParam& p, bool n) { return p.SetData(-70000, n); },
     "SQLBindParameter(1,1,-16,12,50,0,ptr,24,ptr)", 0, raw(-70000)},
    {"unsigned int", [](OdbcParam& p, bool n) { return p.SetData(4000000000U, n); },
     "SQLBindParameter(1,1,-18,12,50,0,ptr,24,ptr)", 0, raw(4000000000U)},
    {"long", [](OdbcParam& p, bool n) { return p.SetData(-5000000000L, n); },
     "SQLBindParameter(1,1,-25,12,50,0,ptr,0,ptr)", 0, raw(-5000000000L)},
    {"unsigned long", [](OdbcParam& p, bool n) { return p.SetData(~0UL, n); },
     "SQLBindParameter(1,1,-27,12,50,0,ptr,0,ptr)", 0, raw(~0UL)},
    {"double", [](OdbcParam& p, bool n) { return p.SetData(2.5, n); },
     "SQLBindParameter(1,1,8,12,50,0,ptr,24,ptr)", 0, raw(2.5)},
    {"timestamp", [](OdbcParam& p, bool n) { return p.SetData(kStamp, n); },
     "SQLBindParameter(1,1,93,12,50,0,ptr,16,ptr)", 16, raw(kStamp)},
    {"time", [](OdbcParam& p, bool n) { return p.SetData(kTime, n); },
     "SQLBindParameter(1,1,92,12,50,0,ptr,6,ptr)", 6, raw(kTime)},
    {"text", setText, "SQLBindParameter(1,1,1,12,50,0,ptr,3,ptr)", 3, "h\xC3\xA9"},
    {"bytes", setBinary, "SQLBindParameter(1,1,-2,12,50,0,ptr,3,ptr)", 3, kZeros},
    {"text store", setStore<false>, "SQLBindParameter(1,1,1,12,50,0,ptr,5,ptr)", 5, "12.50"},
    {"bytes store", setStore<true>, "SQLBindParameter(1,1,-2,12,50,0,ptr,5,ptr)", 5, "12.50"},
};

TEST_F(Param, SingleValues) {
  for (const Value& value : kValues) {
    SCOPED_TRACE(value.name);
    prepareOne(false);
    param_->SetSqlType(SQL_VARCHAR, 50, 3);
    EXPECT_EQ(value.set(*param_, false), Odbc::e_Ok);
    EXPECT_EQ(execute(), value.single);
    EXPECT_EQ(sent().indicator, value.indicator);
    EXPECT_EQ(sent().bytes, value.bytes);
    // The same again, then NULL, then the value: the binding stays.
    EXPECT_EQ(value.set(*param_, false), Odbc::e_Ok);
    EXPECT_EQ(execute(), "");
    EXPECT_EQ(value.set(*param_, true), Odbc::e_Ok);
    EXPECT_EQ(execute(), "");
    EXPECT_TRUE(sent().isNull());
    EXPECT_EQ(value.set(*param_, false), Odbc::e_Ok);
    EXPECT_EQ(execute(), "");
    EXPECT_EQ(sent().bytes, value.bytes);
  }
}

TEST_F(Param, SingleBindingFollowsTheBuffer) {
  prepareOne(false);
  param_->SetData(5, text("longer"), false);
  EXPECT_EQ(execute(), "SQLBindParameter(1,1,1,0,0,0,ptr,6,ptr)");
  param_->SetData(5, text("abc"), false);
  EXPECT_EQ(execute(), "");  // the buffer keeps its length
  EXPECT_EQ(sent().bytes, "abc");
  param_->SetData(5, text(""), false);
  EXPECT_EQ(execute(), "");
  EXPECT_EQ(sent().bytes, "");
  EXPECT_EQ(sent().indicator, 0);
  param_->SetData(5, text("the longest"), false);
  EXPECT_EQ(execute(), "SQLBindParameter(1,1,1,0,0,0,ptr,11,ptr)");
  EXPECT_EQ(sent().bytes, "the longest");
  param_->SetSqlType(SQL_VARCHAR, 11, 0);
  EXPECT_EQ(execute(), "SQLBindParameter(1,1,1,12,11,0,ptr,11,ptr)");
  dynamic_cast<OdbcParamImpl*>(param_)->Unbind();
  EXPECT_NE(execute(), "");
  param_->SetData(static_cast<ByteStore*>(nullptr), false, false);
  EXPECT_EQ(execute(), "");
  EXPECT_EQ(sent().bytes, "");
  param_->SetData(5, text(nullptr), false);  // counts as empty
  EXPECT_EQ(param_->SetData(4, text("x"), false), Odbc::e_Error);
  EXPECT_EQ(param_->SetData(4, text("x"), true), Odbc::e_Error);
  execute();
  EXPECT_EQ(sent().bytes, "");
  param_->SetCType(SQL_C_CHAR, 4);
  param_->SetData();
  EXPECT_EQ(execute(), "SQLBindParameter(1,1,1,12,11,0,ptr,4,ptr)");
  EXPECT_EQ(sent().bytes, "");
}

TEST_F(Param, NullBeforeAnyValue) {
  prepareOne(false);
  param_->SetSqlType(SQL_INTEGER, 0, 0);
  param_->SetCType(SQL_C_SLONG, 0);
  param_->SetData(0, true);
  EXPECT_EQ(execute(), "SQLBindParameter(1,1,-16,4,10,0,null,24,ptr)");
  EXPECT_TRUE(sent().isNull());
}

TEST_F(Param, SqlTypesHaveTheirSizes) {
  struct Case {
    short type;
    unsigned int size;  // for 77 digits 3
    short digits;
  };
  const Case cases[] = {{-7, 1, 0},  {-6, 3, 0},  {-5, 19, 0}, {4, 10, 0},  {5, 5, 0},
                        {7, 7, 0},   {6, 15, 0},  {8, 15, 0},  {-4, 77, 0}, {-3, 77, 0},
                        {-2, 77, 0}, {-1, 77, 0}, {1, 77, 0},  {12, 77, 0}, {3, 77, 3},
                        {93, 77, 3}, {92, 77, 3}, {-9, 77, 3}};
  for (const bool batch : {false, true}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.type);
      prepareOne(batch);
      EXPECT_EQ(param_->SetSqlType(c.type, 77, 3), Odbc::e_Ok);
      short type = 0;
      unsigned int size = 0;
      short digits = 9;
      EXPECT_EQ(param_->GetSqlType(type, size, digits), Odbc::e_Ok);
      EXPECT_EQ(type, c.type);
      EXPECT_EQ(size, c.size);
      EXPECT_EQ(digits, c.digits);
    }
  }
}

TEST_F(Param, CTypesAndDirections) {
  struct Case {
    short type;
    int single;  // for length 33
    int batch;   // for length 33 and a described size of 10
    int batchNoLength;
  };
  const Case cases[] = {
      {-28, 24, 24, 24}, {-26, 24, 24, 24}, {-18, 24, 24, 24}, {-17, 24, 24, 24}, {-16, 24, 24, 24},
      {-15, 24, 24, 24}, {-7, 24, 24, 24},  {-6, 24, 24, 24},  {4, 24, 24, 24},   {5, 24, 24, 24},
      {7, 24, 24, 24},   {8, 24, 24, 24},   {-27, 33, 8, 8},   {-25, 33, 8, 8},   {-2, 33, 10, 10},
      {1, 33, 34, 11},   {92, 33, 33, 0},   {93, 33, 33, 0},
  };
  for (const Case& c : cases) {
    for (const int row : {0, 1, 2}) {
      SCOPED_TRACE(std::to_string(c.type) + "/" + std::to_string(row));
      prepareOne(row > 0);
      EXPECT_EQ(param_->SetCType(c.type, row == 2 ? 0 : 33), Odbc::e_Ok);
      EXPECT_EQ(param_->SetCType(-154, 5), Odbc::e_Ok);  // unknown: nothing changes
      short type = 0;
      int length = 0;
      EXPECT_EQ(param_->GetCType(type, length), Odbc::e_Ok);
      EXPECT_EQ(type, c.type);
      const int expected[] = {c.single, c.batch, c.batchNoLength};
      EXPECT_EQ(length, expected[row]);
    }
  }
  prepareOne(false);
  short direction = 0;
  for (const auto& [set, now] : {std::pair<short, short>{3, 1}, {2, 2}, {0, 2}, {4, 4}, {1, 1}}) {
    EXPECT_EQ(param_->SetDirection(set), Odbc::e_Ok);
    param_->GetDirection(direction);
    EXPECT_EQ(direction, now);
  }
}

TEST_F(Param, SingleValuesReadBack) {
  prepareOne(false);
  const auto expect = [this](auto value) {
    EXPECT_EQ(param_->SetData(value, false), Odbc::e_Ok);
    decltype(value) back = 0;
    EXPECT_EQ(param_->GetData(back), Odbc::e_Ok);
    EXPECT_EQ(back, value);
    EXPECT_EQ(param_->SetData(value, true), Odbc::e_Ok);
    EXPECT_EQ(param_->GetData(back), Odbc::e_Null);
  };
  expect(true);
  expect(char{-3});
  expect(static_cast<unsigned char>(200));
  expect(short{-300});
  expect(static_cast<unsigned short>(60000));
  expect(-70000);
  expect(4000000000U);
  expect(-5000000000L);
  expect(~0UL);
  expect(2.5);
}

class ArrayParam : public Param {
 protected:
  void count() { EXPECT_EQ(stmt_->IncrementBatchSize(), Odbc::e_Ok); }
};

TEST_F(ArrayParam, EveryTypeByRows) {
  const std::map<std::string, std::pair<short, SQLLEN>> types = {
      {"bool", {-7, 0}},          {"char", {-26, 0}},           {"unsigned char", {-28, 0}},
      {"short", {-15, 0}},        {"unsigned short", {-17, 0}}, {"int", {-16, 0}},
      {"unsigned int", {-18, 0}}, {"long", {-25, 0}},           {"unsigned long", {-27, 0}},
      {"double", {8, 0}},         {"timestamp", {93, 0}},       {"time", {92, 0}},
      {"text", {1, SQL_NTS}},     {"bytes", {-2, 3}},           {"text store", {1, SQL_NTS}},
      {"bytes store", {-2, 5}},
  };
  for (const Value& value : kValues) {
    SCOPED_TRACE(value.name);
    const auto [cType, indicator] = types.at(value.name);
    prepareOne(true);
    param_->SetSqlType(SQL_VARCHAR, 50, 0);
    param_->SetCType(cType, 0);
    for (const bool null : {true, false, false, true, false}) {
      EXPECT_EQ(value.set(*param_, null), Odbc::e_Ok);
      count();
    }
    EXPECT_NE(execute(), "");
    ASSERT_EQ(sentRows().size(), 5u);
    for (const std::size_t row : {0U, 1U, 2U, 3U, 4U}) {
      SCOPED_TRACE(row);
      const bool null = row == 0 || row == 3;
      EXPECT_EQ(sentRows()[row][0].indicator, null ? SQL_NULL_DATA : indicator);
      EXPECT_EQ(sentRows()[row][0].bytes, null ? "" : value.bytes);
    }
    EXPECT_EQ(execute(), "");  // nothing new: still bound
    value.set(*param_, false);
    count();
    EXPECT_NE(execute(), "");  // more rows: bound again, the old ones still there
    ASSERT_EQ(sentRows().size(), 6u);
    EXPECT_EQ(sentRows()[1][0].bytes, value.bytes);
    EXPECT_EQ(sentRows()[5][0].bytes, value.bytes);
  }
}

TEST_F(ArrayParam, TheFirstRowDecidesTheTypes) {
  prepareOne(true);
  for (const int row : {0, 1}) {
    EXPECT_EQ(param_->SetSqlType(row == 0 ? SQL_VARCHAR : SQL_INTEGER, 50, 0), Odbc::e_Ok);
    EXPECT_EQ(param_->SetCType(SQL_C_CHAR, row == 0 ? 10 : 99), Odbc::e_Ok);
    EXPECT_EQ(param_->SetDirection(row == 0 ? SQL_PARAM_INPUT : SQL_PARAM_OUTPUT), Odbc::e_Ok);
    ByteStore value = store("abc");
    param_->SetData(&value, false, false);
    count();
  }
  EXPECT_EQ(execute(), "SQLBindParameter(1,1,1,12,50,0,ptr,11,ptr)");
}

TEST_F(ArrayParam, VariableLengthRowsArePackedToTheWidest) {
  struct Case {
    const char* name;
    bool bytes;
    std::vector<const char*> values;  // null: NULL
    const char* bound;
  };
  const Case cases[] = {
      {"texts", false, {"a", nullptr, "", "abcd"}, "SQLBindParameter(1,1,1,12,9,0,ptr,5,ptr)"},
      {"empty texts", false, {"", ""}, "SQLBindParameter(1,1,1,12,9,0,ptr,1,ptr)"},
      {"NULL texts", false, {nullptr}, "SQLBindParameter(1,1,1,12,9,0,ptr,1,ptr)"},
      {"bytes", true, {"", "abc", nullptr}, "SQLBindParameter(1,1,-2,12,9,0,ptr,3,ptr)"},
      {"NULL bytes", true, {nullptr, nullptr}, "SQLBindParameter(1,1,-2,12,9,0,ptr,1,ptr)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    prepareOne(true);
    param_->SetSqlType(SQL_VARCHAR, 9, 0);
    param_->SetCType(c.bytes ? SQL_C_BINARY : SQL_C_CHAR, 0);
    for (const char* value : c.values) {
      const std::string content = value == nullptr ? "" : value;
      param_->SetData(c.bytes ? 28 : 5, c.bytes ? binary(content) : text(content.c_str()),
                      value == nullptr);
      count();
    }
    EXPECT_EQ(execute(), c.bound);
    for (std::size_t row = 0; row < c.values.size(); ++row) {
      EXPECT_EQ(sentRows()[row][0].isNull(), c.values[row] == nullptr);
      EXPECT_EQ(sentRows()[row][0].bytes, c.values[row] == nullptr ? "" : c.values[row]);
    }
    EXPECT_EQ(param_->SetData(4, text("x"), false), Odbc::e_Error);
  }
}

// Stores: cut or padded to the described size, and laid out in slots of the bound length.
TEST_F(ArrayParam, StoresFollowTheDescribedSize) {
  struct Case {
    const char* name;
    SQLULEN described;
    short sqlType;
    bool bytes;
    int length;  // given to SetCType
    std::string value;
    std::string storeAfter;
    std::string sent;
    SQLLEN bufferBytes;
  };
  const std::string pad5(5, '\0');
  const std::string megabyte(1000000, 'm');
  const SQLULEN unknown = static_cast<SQLULEN>(SQL_NO_TOTAL);
  const Case cases[] = {
      {"padded", 10, 12, false, 0, "12.50", "12.50" + pad5, "12.50", 11},
      {"cut", 3, 12, false, 0, "12.50", "12.", "12.", 4},
      {"length given", 10, 12, false, 21, "12.50", "12.50" + pad5, "12.50", 22},
      {"length too short", 10, 12, false, 2, "12.50", "12.50" + pad5, "12.50", 6},
      {"a number is not cut", 3, 3, false, 0, "12.50", "12.50", "12.50", 6},
      {"a number is padded", 10, 3, false, 21, "12.50", "12.50" + pad5, "12.50", 22},
      {"bytes padded", 10, -3, true, 0, "12.50", "12.50" + pad5, "12.50", 10},
      {"bytes cut", 3, -3, true, 0, "12.50", "12.", "12.", 3},
      {"described as 64 KiB", 65536, 12, false, 0, "12.50", "12.50", "12.50", 6},
      {"described as 64 KiB, length given", 65536, 3, false, 21, "12.50", "12.50", "12.50", 22},
      {"described as 24 MiB", 25165824, -4, true, 0, "12.50", "12.50", "12.50", 5},
      {"described as unknown", unknown, -4, true, 0, megabyte, megabyte, megabyte, 1000000},
      {"described as 0", 0, 12, false, 0, "12.50", "12.50", "12.50", 6},
      {"empty", 65536, 12, false, 0, "", "", "", 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    prepareOne(true, c.described);
    param_->SetSqlType(c.sqlType, 50, 0);
    param_->SetCType(c.bytes ? SQL_C_BINARY : SQL_C_CHAR, c.length);
    for (const int row : {0, 1}) {
      ByteStore value = store(c.value);
      EXPECT_EQ(param_->SetData(&value, c.bytes, false), Odbc::e_Ok);
      EXPECT_EQ(std::string(value.Text(), value.Length()), c.storeAfter) << row;
      count();
    }
    const std::string bound = execute();
    EXPECT_TRUE(bound.ends_with(",ptr," + std::to_string(c.bufferBytes) + ",ptr)")) << bound;
    for (const auto& row : sentRows()) EXPECT_EQ(row[0].bytes, c.sent);
  }
}

TEST_F(ArrayParam, RefusesValuesOfAnotherSize) {
  prepareOne(true);
  param_->SetCType(SQL_C_SLONG, 0);
  EXPECT_EQ(param_->SetData(1, false), Odbc::e_Ok);
  count();
  EXPECT_EQ(param_->SetData(2L, false), Odbc::e_Error);
  EXPECT_EQ(param_->SetData(5, text("x"), false), Odbc::e_Error);
  count();  // the row that was refused is NULL
  EXPECT_EQ(param_->SetData(3, false), Odbc::e_Ok);
  count();
  execute();
  ASSERT_EQ(sentRows().size(), 3u);
  EXPECT_TRUE(sentRows()[1][0].isNull());
  EXPECT_EQ(sentRows()[2][0].as<int>(), 3);
  int untouched = 8;
  EXPECT_EQ(param_->GetData(untouched), Odbc::e_Ok);
  EXPECT_EQ(untouched, 8);
}

TEST_F(ArrayParam, NeedsADriverThatDescribes) {
  fake_.params["insert ?"] = {{}};
  connect();
  stmt_ = dbc_->CreateStmt();
  fake_.answer("SQLDescribeParam", fake::failure("IM001", 0, "not supported"));
  EXPECT_EQ(stmt_->SetSql("insert ?", true), Odbc::e_Error);
  EXPECT_EQ(getOdbcError(stmt_), recordText("[IM001][0][not supported]"));
  EXPECT_EQ(stmt_->GetParam(1), nullptr);
}

}  // namespace
