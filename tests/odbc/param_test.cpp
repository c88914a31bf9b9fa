#include "tests/odbc/param_fixture.h"

namespace odbc_test {
namespace {

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
  ByteStore whole;
  EXPECT_EQ(param_->GetData(&whole), Odbc::e_Ok);
  EXPECT_EQ(std::string(whole.Text(), whole.Length()), std::string("abc\0\0\0\0", 7));
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

TEST_F(Param, EveryChangeOfTheDescriptionBindsAgain) {
  prepareOne(false);
  param_->SetSqlType(SQL_VARCHAR, 9, 0);
  param_->SetData(7, false);
  fake_.answer("SQLBindParameter", fake::failure("HY000", 5, "no"));
  EXPECT_EQ(stmt_->Execute(), Odbc::e_Error);
  EXPECT_EQ(getOdbcError(param_), recordText("[HY000][5][no]"));
  EXPECT_EQ(execute(),
            "SQLBindParameter(1,1,-16,12,9,0,ptr,24,ptr)");  // a failed one does not hold
  param_->SetData(7U, false);                                // another type in the same buffer
  EXPECT_EQ(execute(), "SQLBindParameter(1,1,-18,12,9,0,ptr,24,ptr)");
  param_->SetDirection(SQL_PARAM_INPUT_OUTPUT);
  EXPECT_EQ(execute(), "SQLBindParameter(1,2,-18,12,9,0,ptr,24,ptr)");
  param_->SetData(7L, false);
  EXPECT_EQ(execute(), "SQLBindParameter(1,2,-25,12,9,0,ptr,0,ptr)");
  param_->SetCType(SQL_C_SBIGINT, 8);  // another length alone; the value is gone
  EXPECT_EQ(execute(), "SQLBindParameter(1,2,-25,12,9,0,ptr,8,ptr)");
  EXPECT_TRUE(sent().isNull());
  param_->SetData();
  EXPECT_NE(execute(), "");
  EXPECT_EQ(sent().as<long>(), 0);
  EXPECT_FALSE(sent().isNull());
}

// What the setters have in common: they forget the record.
TEST_F(Param, SettersForgetTheDiagnostics) {
  using Operation = void (*)(OdbcStmt&, OdbcParam&);
  constexpr Operation kOperations[] = {
      [](OdbcStmt&, OdbcParam& p) { p.SetSqlType(SQL_INTEGER, 0, 0); },
      [](OdbcStmt&, OdbcParam& p) { p.SetCType(SQL_C_SLONG, 0); },
      [](OdbcStmt&, OdbcParam& p) { p.SetDirection(SQL_PARAM_INPUT); },
      [](OdbcStmt&, OdbcParam& p) { p.SetData(1, false); },
      [](OdbcStmt&, OdbcParam& p) { p.SetData(1, true); },
      [](OdbcStmt& s, OdbcParam&) { s.IncrementBatchSize(); },
      [](OdbcStmt& s, OdbcParam&) {
        int rows = 0;
        s.GetBatchSize(rows);
      },
  };
  for (const bool batch : {false, true}) {
    prepareOne(batch);
    for (const Operation operation : kOperations) {
      SCOPED_TRACE(&operation - kOperations);
      fake_.answer("SQLRowCount", fake::failure("HY000", 6, "no"));
      int count = 0;
      EXPECT_EQ(stmt_->RowCount(count), Odbc::e_Error);
      EXPECT_TRUE(param_->HasInfo());
      operation(*stmt_, *param_);
      EXPECT_FALSE(stmt_->HasInfo());
    }
  }
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
  // Through other getters.
  bool yes = false;
  int number = 0;
  param_->SetData(short{-300}, false);
  EXPECT_EQ(param_->GetData(yes), Odbc::e_Ok);
  EXPECT_TRUE(yes);
  EXPECT_EQ(param_->GetData(number), Odbc::e_Ok);
  EXPECT_EQ(number, -300);
  param_->SetData(char{0}, false);
  EXPECT_EQ(param_->GetData(yes), Odbc::e_Ok);
  EXPECT_FALSE(yes);
  param_->SetData(char{-3}, false);
  EXPECT_EQ(param_->GetData(number), Odbc::e_Ok);
  EXPECT_EQ(number, -3);
  double real = 1;
  param_->SetCType(SQL_C_FLOAT, 0);
  param_->SetData();
  EXPECT_EQ(param_->GetData(real), Odbc::e_Ok);
  EXPECT_EQ(real, 0);
}

}  // namespace
}  // namespace odbc_test
