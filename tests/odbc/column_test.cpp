#include <clocale>
#include <limits>

#include "odbc/byte_store.h"
#include "odbc/odbc_col.h"
#include "tests/odbc/odbc_fixture.h"

namespace {

using KORVEX::Zel::DB::ODBC::ByteStore;
using KORVEX::Zel::DB::ODBC::OdbcCol;
using odbc_test::getOdbcError;
using odbc_test::Log;
using odbc_test::Odbc;
using odbc_test::OdbcTest;
using odbc_test::recordText;

class Column : public OdbcTest {
 protected:
  // Fetches one row of one column.
  Odbc::e_Status fetch(const fake::ColumnDescription& column, const fake::Cell& cell) {
    fetchFirst({{column}, {{cell}}});
    const Odbc::e_Status status = stmt_->Fetch();
    column_ = stmt_->GetColumn(1);
    log_.clear();
    for (const std::string& line : fake_.takeLog()) {
      if (line.starts_with("SQLGetData")) log_.push_back(line);
    }
    return status;
  }

  std::string bytes() {
    ByteStore store("old", 3);
    status_ = column_->GetData(&store);
    return std::string(store.Text(), store.Length());
  }

  OdbcCol* column_ = nullptr;
  Log log_;
  Odbc::e_Status status_ = Odbc::e_Ok;
};

TEST_F(Column, ReadTypeByDescription) {
  struct Case {
    SQLSMALLINT sqlType;
    SQLULEN size;
    SQLLEN display;
    bool isUnsigned;
    short cType;
    int length;
    const char* call;  // the first piece
  };
  const SQLULEN noTotal = static_cast<SQLULEN>(SQL_NO_TOTAL);
  const Case cases[] = {
      {1, 20, 20, false, 1, 21, "SQLGetData(1,1,21)"},
      {12, 8000, 8000, false, 1, 8001, "SQLGetData(1,1,8001)"},
      {12, 8001, 8001, false, 1, 8001, "SQLGetData(1,1,8001)"},
      {-1, 4294967295, -4, false, 1, 8001, "SQLGetData(1,1,8001)"},
      {12, noTotal, -4, false, 1, 8001, "SQLGetData(1,1,8001)"},
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
      {-150, noTotal, 0, false, -2, 8000, "SQLGetData(1,-2,8000)"},
  };
  for (const Case& c : cases) {
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
  ASSERT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  fake_.fail("SQLGetData", 3, fake::failure("22018", 9, "cannot"));  // b's second piece
  EXPECT_EQ(stmt_->Fetch(), Odbc::e_Error);
  EXPECT_EQ(getOdbcError(stmt_), recordText("[22018][9][cannot]"));
  int value = 7;
  EXPECT_EQ(stmt_->GetColumn(2)->GetData(value), Odbc::e_Null);
  EXPECT_EQ(value, 0);
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

// One typed getter, its value as a double.
template <typename Value>
std::pair<Odbc::e_Status, double> read(OdbcCol& column) {
  Value value = static_cast<Value>(1);
  const Odbc::e_Status status = column.GetData(value);
  return {status, static_cast<double>(value)};
}

enum Getter { kBool, kChar, kUChar, kShort, kUShort, kInt, kUInt, kLong, kULong, kDouble, kCount };

std::pair<Odbc::e_Status, double> readAs(int getter, OdbcCol& column) {
  using Read = std::pair<Odbc::e_Status, double> (*)(OdbcCol&);
  constexpr Read kReads[] = {read<bool>,           read<char>,  read<unsigned char>, read<short>,
                             read<unsigned short>, read<int>,   read<unsigned int>,  read<long>,
                             read<unsigned long>,  read<double>};
  return kReads[getter](column);
}

TEST_F(Column, TypedGettersByCType) {
  constexpr double no = -12345;  // not read from this type
  struct Case {
    const char* name;
    short cType;
    fake::Cell cell;
    double expected[kCount];  // bool char uchar short ushort int uint long ulong double
  };
  const std::int8_t minusTwo8 = -2;
  const short minusTwo16 = -2;
  const int minusTwo32 = -2;
  const Case cases[] = {
      {"BIT", -7, fake::Cell::of(std::uint8_t{1}), {1, no, no, no, no, no, no, no, no, no}},
      {"TINYINT", -6, fake::Cell::of(minusTwo8), {1, -2, 254, no, no, -2, 254, no, no, no}},
      {"UTINYINT", -28, fake::Cell::of(minusTwo8), {1, no, 254, no, no, 254, 254, no, no, no}},
      {"SHORT", 5, fake::Cell::of(minusTwo16), {1, no, no, -2, 65534, -2, 65534, no, no, no}},
      {"USHORT", -17, fake::Cell::of(minusTwo16), {1, no, no, no, 65534, 65534, 65534, no, no, no}},
      {"LONG", 4, fake::Cell::of(minusTwo32), {no, no, no, no, no, -2, 4294967294, no, no, no}},
      {"ULONG",
       -18,
       fake::Cell::of(minusTwo32),
       {no, no, no, no, no, no, 4294967294, 4294967294, no, no}},
      {"SBIGINT", -25, "-5", {no, no, no, no, no, no, no, -5, no, no}},
      {"DOUBLE", 8, fake::Cell::of(2.5), {no, no, no, no, no, no, no, no, no, 2.5}},
      {"TIMESTAMP",
       93,
       fake::Cell::of(TIMESTAMP_STRUCT{}),
       {no, no, no, no, no, no, no, no, no, no}},
      {"BINARY", -2, "12", {no, no, no, no, no, no, no, no, no, no}},
      {"CHAR", 1, "12", {1, no, no, no, no, 12, 12, 12, 12, 12}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    for (const bool null : {false, true}) {
      fetchFirst(
          {{{"c", SQL_INTEGER, 10, 0, 11}}, {{fake::Cell::of(0)}, {null ? fake::Cell() : c.cell}}});
      ASSERT_EQ(stmt_->Fetch(), Odbc::e_Ok);
      column_ = stmt_->GetColumn(1);
      EXPECT_EQ(column_->SetCType(c.cType, 16), Odbc::e_Ok);
      ASSERT_EQ(stmt_->Fetch(), Odbc::e_Ok);
      for (int getter = 0; getter < kCount; ++getter) {
        SCOPED_TRACE(getter);
        const auto [status, value] = readAs(getter, *column_);
        if (c.expected[getter] == no) {
          EXPECT_EQ(status, Odbc::e_Error);
          EXPECT_EQ(value, 1);  // left alone
        } else if (null) {
          const bool nullTextIsFalse = c.cType == SQL_C_CHAR && getter == kBool;
          EXPECT_EQ(status, nullTextIsFalse ? Odbc::e_Ok : Odbc::e_Null);
          EXPECT_EQ(value, 0);
        } else {
          EXPECT_EQ(status, Odbc::e_Ok);
          EXPECT_EQ(value, c.expected[getter]);
        }
      }
    }
  }
}

TEST_F(Column, NumbersInTexts) {
  constexpr double no = -12345;
  struct Case {
    const char* text;
    double expected[6];  // bool int uint long ulong double; `no`: refused
  };
  const Case cases[] = {
      {"0", {0, 0, 0, 0, 0, 0}},
      {"-1", {1, -1, no, -1, 18446744073709551615.0, -1}},
      {"2147483647", {1, 2147483647, 2147483647, 2147483647, 2147483647, 2147483647}},
      {"2147483648", {1, no, 2147483648, 2147483648, 2147483648, 2147483648}},
      {"4294967296", {1, no, no, 4294967296, 4294967296, 4294967296}},
      {"9223372036854775808", {no, no, no, no, 9223372036854775808.0, 9223372036854775808.0}},
      {"18446744073709551616", {no, no, no, no, no, 18446744073709551616.0}},
      {"12x", {no, no, no, no, no, no}},
      {"12 ", {no, no, no, no, no, no}},
      {"1.5", {no, no, no, no, no, 1.5}},
      {"1e400", {no, no, no, no, no, no}},
      {"1e-400", {no, no, no, no, no, no}},
      {"1e-310", {no, no, no, no, no, 1e-310}},
  };
  const int getters[] = {kBool, kInt, kUInt, kLong, kULong, kDouble};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ASSERT_EQ(fetch({"c", SQL_VARCHAR, 30}, c.text), Odbc::e_Ok);
    for (std::size_t i = 0; i < 6; ++i) {
      SCOPED_TRACE(i);
      const auto [status, value] = readAs(getters[i], *column_);
      EXPECT_EQ(status, c.expected[i] == no ? Odbc::e_Error : Odbc::e_Ok);
      EXPECT_EQ(value, c.expected[i] == no ? 1 : c.expected[i]);
    }
  }
}

TEST_F(Column, BytesOfEveryKind) {
  const TIMESTAMP_STRUCT stamp = {2026, 11, 21, 4, 5, 6, 789000000};
  const TIME_STRUCT time = {4, 5, 6};
  struct Case {
    const char* name;
    SQLSMALLINT sqlType;
    bool isUnsigned;
    fake::Cell cell;
    std::string bytes;
  };
  const Case cases[] = {
      {"text", 12, false, "abc", "abc"},
      {"big integer", -5, false, "-12", "-12"},
      {"integer", 4, false, fake::Cell::of(65), ""},
      {"double", 8, false, fake::Cell::of(1.5), ""},
      {"unsigned tiny", -6, true, fake::Cell::of(std::uint8_t{65}), "A"},
      {"timestamp", 93, false, fake::Cell::of(stamp), fake::Cell::of(stamp).bytes},
      {"old time", 10, false, fake::Cell::of(stamp), fake::Cell::of(stamp).bytes},
      {"time", 92, false, fake::Cell::of(time), fake::Cell::of(time).bytes},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(fetch({"c", c.sqlType, 20, 0, 20, c.isUnsigned}, c.cell), Odbc::e_Ok);
    EXPECT_EQ(bytes(), c.bytes);
    EXPECT_EQ(status_, Odbc::e_Ok);
    EXPECT_EQ(column_->GetData(static_cast<ByteStore*>(nullptr)), Odbc::e_Error);
    EXPECT_EQ(fetch({"c", c.sqlType, 20, 0, 20, c.isUnsigned}, {}), Odbc::e_Ok);
    EXPECT_EQ(bytes(), "");
    EXPECT_EQ(status_, Odbc::e_Null);
    std::span<const unsigned char> view;
    EXPECT_EQ(column_->GetBytes(view), Odbc::e_Null);
    EXPECT_TRUE(view.empty());
  }
}

TEST_F(Column, StructureGettersCopyAndYetRefuse) {
  const TIMESTAMP_STRUCT stamp = {2026, 11, 21, 4, 5, 6, 789000000};
  fetch({"c", 93, 26}, fake::Cell::of(stamp));
  TIMESTAMP_STRUCT out = {};
  EXPECT_EQ(column_->GetData(out), Odbc::e_Error);
  EXPECT_EQ(out.fraction, 789000000u);
  fetch({"c", 93, 26}, {});
  EXPECT_EQ(column_->GetData(out), Odbc::e_Null);
  EXPECT_EQ(out.year, 0);
  fetch({"c", 92, 8}, fake::Cell::of(TIME_STRUCT{4, 5, 6}));
  TIME_STRUCT time = {};
  EXPECT_EQ(column_->GetData(time), Odbc::e_Error);
  EXPECT_EQ(time.second, 6);
  EXPECT_EQ(column_->GetData(out), Odbc::e_Error);
  EXPECT_EQ(out.year, 0);
}

}  // namespace
