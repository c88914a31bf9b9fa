#include "tests/odbc/column_fixture.h"

namespace odbc_test {
namespace {

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

TEST_F(Column, NothingOfAnEarlierRowShowsThrough) {
  // A driver that answers without writing the value.
  fetchFirst({{{"c", SQL_INTEGER, 10, 0, 11}}, {{fake::Cell::of(7)}, {""}}});
  ASSERT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  ASSERT_EQ(stmt_->Fetch(), Odbc::e_Ok);
  EXPECT_EQ(readAs(kInt, *stmt_->GetColumn(1)), std::pair(Odbc::e_Ok, 0.0));
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
}  // namespace odbc_test
