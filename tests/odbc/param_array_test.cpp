#include "tests/odbc/param_fixture.h"

namespace odbc_test {
namespace {

class ArrayParam : public Param {
 protected:
  void count() { EXPECT_EQ(stmt_->IncrementBatchSize(), Odbc::e_Ok); }
};

TEST_F(ArrayParam, EveryTypeByRows) {
  for (const Value& value : kValues) {
    SCOPED_TRACE(value.name);
    prepareOne(true);
    param_->SetSqlType(SQL_VARCHAR, 50, 0);
    param_->SetCType(value.cType, 0);
    for (const bool null : {true, false, false, true, false}) {
      EXPECT_EQ(value.set(*param_, null), Odbc::e_Ok);
      count();
    }
    EXPECT_NE(execute(), "");
    ASSERT_EQ(sentRows().size(), 5u);
    for (const std::size_t row : {0U, 1U, 2U, 3U, 4U}) {
      SCOPED_TRACE(row);
      const bool null = row == 0 || row == 3;
      EXPECT_EQ(sentRows()[row][0].indicator, null ? SQL_NULL_DATA : value.inRows);
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
}

template <typename... Value>
void expectUntouched(OdbcParam& param, Value... values) {
  const auto expect = [&param](auto value) {
    const auto before = value;
    EXPECT_EQ(param.GetData(value), Odbc::e_Ok);
    EXPECT_EQ(value, before);
  };
  (expect(values), ...);
}

TEST_F(ArrayParam, NothingIsReadBack) {
  prepareOne(true);
  param_->SetData(1, false);
  expectUntouched(*param_, 'c', true, short{8}, 8, 8L, static_cast<unsigned char>(8),
                  static_cast<unsigned short>(8), 8U, 8UL, 8.0);
  ByteStore bytes = store("old");
  EXPECT_EQ(param_->GetData(&bytes), Odbc::e_Ok);
  EXPECT_STREQ(bytes.Text(), "old");
  TIMESTAMP_STRUCT stamp = kStamp;
  TIME_STRUCT time = kTime;
  EXPECT_EQ(param_->GetData(stamp), Odbc::e_Ok);
  EXPECT_EQ(param_->GetData(time), Odbc::e_Ok);
  EXPECT_EQ(stamp.year, 2026);
  EXPECT_EQ(time.second, 6);
}

TEST_F(ArrayParam, DescribesItselfUntilTheFirstRowDecides) {
  prepareOne(true, 40);
  short type = 9;
  unsigned int size = 0;
  int length = 0;
  EXPECT_EQ(param_->GetSqlType(type, size, type), Odbc::e_Ok);
  EXPECT_EQ(type, 0);  // the described type is not used
  EXPECT_EQ(size, 40u);
  EXPECT_EQ(param_->GetCType(type, length), Odbc::e_Ok);
  EXPECT_EQ(length, 40);
  param_->SetCType(-154, 5);  // of no effect, and so do not decide
  param_->SetDirection(3);
  param_->SetDirection(SQL_PARAM_INPUT_OUTPUT);
  short direction = 0;
  param_->GetDirection(direction);
  EXPECT_EQ(direction, SQL_PARAM_INPUT_OUTPUT);
  param_->SetSqlType(SQL_VARCHAR, 50, 0);
  param_->SetCType(SQL_C_CHAR, 0);
  EXPECT_EQ(param_->SetData(static_cast<ByteStore*>(nullptr), false, false), Odbc::e_Ok);
  count();
  EXPECT_EQ(execute(), "SQLBindParameter(1,2,1,12,50,0,ptr,41,ptr)");
  EXPECT_EQ(sentRows()[0][0].bytes, "");
  EXPECT_FALSE(sentRows()[0][0].isNull());
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
}  // namespace odbc_test
