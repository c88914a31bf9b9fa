#include <limits>

#include "tests/odbc/column_fixture.h"

namespace odbc_test {
namespace {

struct Description {
  SQLSMALLINT sqlType;
  SQLULEN size;
  SQLLEN display;
  bool isUnsigned;
  short cType;
  int length;
  const char* call;  // the first piece
};
const SQLULEN kNoTotal = static_cast<SQLULEN>(SQL_NO_TOTAL);
const Description kDescriptions[] = {
    {1, 20, 20, false, 1, 21, "SQLGetData(1,1,21)"},
    {12, 8000, 8000, false, 1, 8001, "SQLGetData(1,1,8001)"},
    {12, 8001, 8001, false, 1, 8001, "SQLGetData(1,1,8001)"},
    {-1, 4294967295, -4, false, 1, 8001, "SQLGetData(1,1,8001)"},
    {12, kNoTotal, -4, false, 1, 8001, "SQLGetData(1,1,8001)"},
    {12, 0, 0, false, 1, 1, "SQLGetData(1,1,4)"},
    {-8, 9, 9, false, 1, 11, "SQLGetData(1,1,12)"},
    {-9, 10, 10, false, 1, 12, "SQLGetData(1,1,12)"},
    {-10, 1073741823, 0, false, 1, 8002, "SQLGetData(1,1,8002)"},
    {2, 18, 20, false, 1, 22, "SQLGetData(1,1,22)"},
    {3, 18, 0, false, 1, 20, "SQLGetData(1,1,20)"},
    {3, 18, -4, false, 1, 20, "SQLGetData(1,1,20)"},
    {4, 10, 11, false, 4, 24, "SQLGetData(1,4,8)"},
    {4, 10, 11, true, -18, 24, "SQLGetData(1,-18,8)"},
    {5, 5, 6, false, 5, 24, "SQLGetData(1,5,2)"},
    {5, 5, 6, true, -17, 24, "SQLGetData(1,-17,2)"},
    {-6, 3, 4, false, -6, 24, "SQLGetData(1,-6,1)"},
    {-6, 3, 4, true, -28, 24, "SQLGetData(1,-28,1)"},
    {-7, 1, 1, false, -7, 24, "SQLGetData(1,-7,1)"},
    {-5, 19, 20, false, -25, 0, "SQLGetData(1,1,21)"},
    {-5, 19, 19, true, -25, 0, "SQLGetData(1,1,21)"},
    {-5, 19, 24, false, -25, 0, "SQLGetData(1,1,25)"},
    {6, 15, 22, false, 8, 24, "SQLGetData(1,8,8)"},
    {7, 7, 13, false, 8, 24, "SQLGetData(1,8,8)"},
    {8, 15, 22, false, 8, 24, "SQLGetData(1,8,8)"},
    {9, 10, 10, false, 93, 16, "SQLGetData(1,93,16)"},
    {10, 8, 8, false, 93, 16, "SQLGetData(1,93,16)"},
    {11, 26, 26, false, 93, 16, "SQLGetData(1,93,16)"},
    {91, 10, 10, false, 93, 16, "SQLGetData(1,93,16)"},
    {93, 26, 26, false, 93, 16, "SQLGetData(1,93,16)"},
    {92, 8, 8, false, 92, 6, "SQLGetData(1,92,6)"},
    {-2, 16, 32, false, -2, 16, "SQLGetData(1,-2,16)"},
    {-3, 0, -4, false, -2, 0, "SQLGetData(1,-2,4)"},
    {-4, 4294967295, 0, false, -2, 8000, "SQLGetData(1,-2,8000)"},
    {-11, 16, 36, false, -2, 16, "SQLGetData(1,-2,16)"},
    {-150, 9000, 9000, false, -2, 9000, "SQLGetData(1,-2,9000)"},
    {-150, kNoTotal, 0, false, -2, 8000, "SQLGetData(1,-2,8000)"},
};

TEST_F(Column, ReadTypeByDescription) {
  for (const Description& c : kDescriptions) {
    SCOPED_TRACE(std::to_string(c.sqlType) + " " + std::to_string(c.size));
    EXPECT_EQ(fetch({"c", c.sqlType, c.size, 5, c.display, c.isUnsigned}, {}), Odbc::e_Ok);
    EXPECT_EQ(log_, Log({c.call}));
    short cType = 0;
    int length = 0;
    EXPECT_EQ(column_->GetCType(cType, length), Odbc::e_Ok);
    EXPECT_EQ(cType, c.cType);
    EXPECT_EQ(length, c.length);
    short sqlType = 0;
    unsigned int size = 0;
    short digits = 0;
    EXPECT_EQ(column_->GetSqlType(sqlType, size, digits), Odbc::e_Ok);
    EXPECT_EQ(sqlType, c.sqlType);
    EXPECT_EQ(size, c.size > 0xFFFFFFFF ? 0xFFFFFFFF : c.size);
    EXPECT_EQ(digits, c.sqlType == 1 || c.sqlType == 12 || c.sqlType == -1 ? 0 : 5);
    short direction = 9;
    column_->GetDirection(direction);
    EXPECT_EQ(direction, 0);
  }
}

TEST_F(Column, LongNamesAreCut) {
  fetch({std::string(400, 'n'), SQL_INTEGER, 10, 0, 11}, fake::Cell::of(1));
  std::string name;
  EXPECT_EQ(column_->GetName(name), Odbc::e_Ok);
  EXPECT_EQ(name, std::string(255, 'n'));
}

std::string counted(std::size_t length) {
  std::string value;
  for (std::size_t i = 0; i < length; ++i) value += static_cast<char>('!' + i % 90);
  return value;
}

TEST_F(Column, LongDataInPieces) {
  using fake::Total;
  struct Case {
    const char* name;
    SQLSMALLINT sqlType;
    SQLULEN size;
    fake::Cell cell;
    std::vector<int> requests;
  };
  const Case cases[] = {
      {"fits", 12, 20, counted(20), {21}},
      {"empty", 12, 20, counted(0), {21}},
      {"one too long", 12, 20, counted(21), {21, 4}},
      {"long", 12, 20000, counted(20000), {8001, 12000, 4}},
      {"8000", 12, 20000, counted(8000), {8001}},
      {"8001", 12, 20000, counted(8001), {8001, 4}},
      {"8002", 12, 20000, counted(8002), {8001, 4}},
      {"no size", 12, 0, counted(10), {4, 7, 4}},
      {"wide", -9, 20000, counted(20000), {8002, 12000}},
      {"wide, odd", -9, 9, counted(33), {12, 22, 4}},
      {"no total", 12, 20, {counted(250000), Total::kUnknown}, {21, 100000, 100000, 100000}},
      {"never a total", 12, 20, {counted(30), Total::kNever}, {21, 100000, 100000}},
      {"never a total, wide", -9, 20, {counted(30), Total::kNever}, {22, 100000, 100000}},
      {"binary fits", -3, 16, counted(16), {16}},
      {"binary long", -3, 20000, counted(20000), {8000, 12000}},
      {"binary of no size", -3, 0, counted(100000), {4, 99996}},
      {"binary, no total", -4, 8, {counted(200000), Total::kUnknown}, {8, 100000, 100000}},
      {"binary with zeros", -3, 4, std::string("\0a\0b\0c", 6), {4, 4}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(fetch({"c", c.sqlType, c.size}, c.cell), Odbc::e_Ok);
    Log expected;
    const std::string cType = c.sqlType == -3 || c.sqlType == -4 ? "-2" : "1";
    for (const int request : c.requests) {
      expected.push_back("SQLGetData(1," + cType + "," + std::to_string(request) + ")");
    }
    EXPECT_EQ(log_, expected);
    EXPECT_EQ(bytes(), c.cell.bytes);
    EXPECT_EQ(bytes(), c.cell.bytes);  // a second time
    EXPECT_EQ(status_, Odbc::e_Ok);
    std::span<const unsigned char> view;
    EXPECT_EQ(column_->GetBytes(view), Odbc::e_Ok);
    EXPECT_EQ(std::string(view.begin(), view.end()), c.cell.bytes);
    EXPECT_EQ(getOdbcError(column_), "");  // the warnings of the pieces are gone
  }
}

// A driver that does not split a character ends a wide piece early.
TEST_F(Column, WidePiecesGoOnAtTheTerminator) {
  for (const SQLLEN shortBy : {1, 2, 3}) {
    EXPECT_EQ(fetch({"c", -9, 19}, {counted(70), fake::Total::kKnown, shortBy}), Odbc::e_Ok);
    EXPECT_EQ(bytes(), counted(70));
    EXPECT_EQ(log_[1], "SQLGetData(1,1,50)");  // 70 - 22 + 1, made even
    EXPECT_EQ(fetch({"c", -9, 19}, {counted(70), fake::Total::kNever, shortBy}), Odbc::e_Ok);
    EXPECT_EQ(bytes(), counted(70));
  }
}

TEST_F(Column, EndOfDataInsideAValue) {
  fetchFirst({{{"c", 12, 10}}, {{counted(50)}}});
  fake_.fail("SQLGetData", 2, {SQL_NO_DATA, {}});
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  column_ = stmt_->GetColumn(1);
  EXPECT_EQ(bytes(), counted(10));
  fetchFirst({{{"c", 12, 10}, {"d", 4, 10}}, {{counted(50), fake::Cell::of(5)}}});
  fake_.fail("SQLGetData", 1, {SQL_NO_DATA, {}});
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Ok);  // the status of the last column
  column_ = stmt_->GetColumn(1);
  EXPECT_EQ(bytes(), "");
  EXPECT_EQ(status_, Odbc::e_Null);
}

TEST_F(Column, AFailingColumnEndsTheRow) {
  fetchFirst({{{"a", 4, 10}, {"b", 12, 10}, {"c", 4, 10}},
              {{fake::Cell::of(1), "one", fake::Cell::of(1)},
               {fake::Cell::of(2), counted(60), fake::Cell::of(2)}}});
  fake_.fail("SQLGetData", 2, fake::failure("22018", 8, "cannot"));
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Error);
  int unread = 7;
  EXPECT_EQ(stmt_->GetColumn(3)->GetData(unread), Odbc::e_Ok);  // its area is there from the start
  EXPECT_EQ(unread, 0);
  fake_.fail("SQLGetData", 3, fake::failure("22018", 9, "cannot"));  // b's second piece
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Error);
  EXPECT_EQ(getOdbcError(stmt_), recordText("[22018][9][cannot]"));
  int value = 7;
  EXPECT_EQ(stmt_->GetColumn(2)->GetData(value), Odbc::e_Null);
  EXPECT_EQ(value, 0);
}

TEST_F(Column, OfOtherCTypesNothingIsRead) {
  for (const short cType : {short{SQL_C_SLONG}, short{SQL_C_UBIGINT}, short{SQL_C_FLOAT}}) {
    fetchFirst({{{"c", 4, 10}}, {{fake::Cell::of(1)}, {fake::Cell::of(2)}}});
    ASSERT_EQ(stmt_->Fetch(), Odbc::e_Ok);
    column_ = stmt_->GetColumn(1);
    EXPECT_EQ(column_->SetCType(cType, 8), Odbc::e_Ok);
    fake_.log.clear();
    EXPECT_EQ(stmt_->Fetch(), Odbc::e_Ok);
    EXPECT_EQ(fake_.takeLog(), Log({"SQLFetch()"}));
  }
}

TEST_F(Column, BigIntegersAreExact) {
  struct Case {
    const char* text;
    Odbc::e_Status status;
    long value;
  };
  const Case cases[] = {
      {"9223372036854775807", Odbc::e_Ok, std::numeric_limits<long>::max()},
      {"-9223372036854775808", Odbc::e_Ok, std::numeric_limits<long>::min()},
      {"0", Odbc::e_Ok, 0},
      {"9223372036854775808", Odbc::e_Error, 0},
      {"18446744073709551615", Odbc::e_Error, 0},
      {"123456789012345678901234567890", Odbc::e_Error, 0},
      {"12 ", Odbc::e_Error, 0},
      {"12.0", Odbc::e_Error, 0},
      {"", Odbc::e_Error, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(fetch({"c", SQL_BIGINT, 19, 0, 20}, c.text), c.status);
    long value = 7;
    EXPECT_EQ(column_->GetData(value), c.status == Odbc::e_Ok ? Odbc::e_Ok : Odbc::e_Null);
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(bytes(), c.status == Odbc::e_Ok ? c.text : "");
  }
}

}  // namespace
}  // namespace odbc_test
