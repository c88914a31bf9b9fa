// Every type with its limits, alone and in batches of several sizes, with NULL in every place. What
// a driver cannot do is a row of the database's limits; a run prints it with what came back, and
// fails when a limit no longer shows.

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "datatypes/data_types.h"
#include "tests/live/generated_row.h"
#include "tests/live/live_connection.h"

namespace live {
namespace {

using namespace KORVEX::Zel::DB;
using namespace DataTypes;

constexpr int kAllRows = 65535;
constexpr int kBatchSizes[] = {1, 2, 999, 1000, kAllRows};
constexpr char kDateFormat[] = "%Y-%m-%dT%H:%M:%S";
constexpr char kTimeFormat[] = "%H:%M:%S";

struct SampleText {
  const char* label;
  std::string text;
};

struct TypeSamples {
  const char* name;
  unsigned int type;
  int largestBatch;
  const char* sqlTypes[3];  // of the databases in the order of kQuirks
  std::vector<SampleText> values;
};

std::string repeated(const std::string& piece, std::size_t bytes) {
  std::string text;
  while (text.size() + piece.size() <= bytes) text += piece;
  return text + std::string(bytes - text.size(), '.');
}

const std::string kIntegerDigits(24, '9');
const std::string kScripts = "é€😀ไทย'\"`\\;--?%_";

// clang-format off
const TypeSamples kTypes[] = {
    {"int16", kInt16, 1000, {"smallint", "smallint", "smallint"},
     {{"min", "-32768"}, {"max", "32767"}, {"zero", "0"}, {"typical", "-1234"}}},
    {"integer", kInteger, kAllRows, {"integer", "integer", "integer"},
     {{"min", "-2147483648"}, {"max", "2147483647"}, {"zero", "0"}, {"typical", "1234567"}}},
    {"long", kLong, 1000, {"bigint", "bigint", "bigint"},
     {{"min", "-9223372036854775808"}, {"max", "9223372036854775807"}, {"zero", "0"},
      {"typical", "1234567890123"}}},
    {"interval", kInterval, 1000, {"bigint", "bigint", "bigint"},
     {{"min", "-9223372036854775808"}, {"max", "9223372036854775807"}, {"zero", "0"}}},
    {"float", kFloat, 1000, {"double", "double precision", "double"},
     {{"min", "-1.7976931348623157e308"}, {"max", "1.7976931348623157e308"}, {"zero", "0"},
      {"typical", "12345.6789"}, {"17 digits", "0.30000000000000004"},
      {"smallest", "2.2250738585072014e-308"}}},
    {"money", kMoney, 1000, {"decimal(19,4)", "numeric(19,4)", "decimal(19,4)"},
     {{"min", "-922337203685477.5807"}, {"max", "922337203685477.5807"}, {"zero", "0.0000"},
      {"typical", "-12.3400"}}},
    {"money(15)", kMoney15, 1000, {"decimal(19,15)", "numeric(19,15)", "decimal(19,15)"},
     {{"min", "-9223.372036854775807"}, {"max", "9223.372036854775807"}, {"zero", "0"}}},
    {"decimal(34,10)", createFixedDecimal(34, 10), kAllRows,
     {"decimal(34,10)", "numeric(34,10)", "decimal(34,10)"},
     {{"min", "-" + kIntegerDigits + ".9999999999"}, {"max", kIntegerDigits + ".9999999999"},
      {"zero", "0"}, {"typical", "12345.6789"}, {"smallest", "0.0000000001"}}},
    {"decimal(34,0)", createFixedDecimal(34, 0), 1000,
     {"decimal(34,0)", "numeric(34,0)", "decimal(34,0)"},
     {{"min", "-" + std::string(34, '9')}, {"max", std::string(34, '9')}, {"zero", "0"}}},
    {"boolean", kBoolean, 1000, {"bit", "boolean", "bit(1)"}, {{"false", "0"}, {"true", "1"}}},
    {"date", kDate, 1000, {"timestamp", "timestamp(0)", "datetime"},
     {{"min", "1000-01-01T00:00:00"}, {"max", "9999-12-31T23:59:59"},
      {"zero", "1970-01-01T00:00:00"}, {"typical", "2024-02-29T12:34:56"}}},
    {"timestamp", kTimestamp, 1000, {"timestamp", "timestamp(3)", "datetime(3)"},
     {{"min", "1000-01-01T00:00:00.000"}, {"max", "9999-12-31T23:59:59.999"},
      {"zero", "1970-01-01T00:00:00.000"}, {"typical", "1969-12-31T23:59:59.001"}}},
    {"bigdatetime", kBigDateTime, 1000, {"timestamp", "timestamp(6)", "datetime(6)"},
     {{"min", "1000-01-01T00:00:00.000000"}, {"max", "9999-12-31T23:59:59.999000"},
      {"zero", "1970-01-01T00:00:00.000000"}, {"microseconds", "2024-02-29T12:34:56.123456"}}},
    {"time", kTime, 1000, {"time", "time", "time"},
     {{"min", "00:00:00"}, {"max", "23:59:59"}, {"typical", "12:34:56"}}},
    {"string", kString, kAllRows, {"varchar(8000)", "varchar(8000)", "varchar(8000)"},
     {{"empty", ""}, {"blanks", "  a  "}, {"typical", "text"}, {"scripts and quotes", kScripts}}},
    {"text", kString, 2, {"text", "text", "longtext"},
     {{"7999 bytes", repeated(kScripts, 7999)}, {"8000 bytes", repeated(kScripts, 8000)},
      {"8001 bytes", repeated(kScripts, 8001)}, {"20000 bytes", repeated(kScripts, 20000)}}},
    {"longest text", kString, 1, {"text", "text", "longtext"},
     {{"10000000 bytes", repeated(kScripts, 10'000'000)}}},
    {"binary", kBinary, 1000, {"blob", "bytea", "varbinary(8001)"},
     {{"eight bytes", std::string("\0\1\0\xFF\x7F\x80\0\0", 8)},
      {"zeros", std::string(8, '\0')}, {"text", std::string("'\"\\\0?;'?", 8)}}},
    {"binary", kBinary, 2, {"blob", "bytea", "longblob"},
     {{"empty", ""}, {"8001 bytes", repeated(std::string("\0\xFE", 2), 8001)},
      {"20000 bytes", repeated(std::string("\0'\\", 3), 20000)}}},
};
// clang-format on

struct Nulls {
  const char* name;
  bool first;
  bool last;
  bool everywhere;
};

constexpr Nulls kNulls[] = {{"no NULL", false, false, false},
                            {"NULL first", true, false, false},
                            {"NULL last", false, true, false},
                            {"NULL everywhere", true, true, true}};

// What the sample's text stands for; it points into the sample.
DataValue parsed(unsigned int type, const std::string& text) {
  DataValue value;
  if (type == kString) {
    value.string = text.c_str();
  } else if (type == kBinary) {
    value.binary = {reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<std::uint32_t>(text.size())};
  } else {
    const char* message = nullptr;
    EXPECT_TRUE(convertFromString(type, text.c_str(), value, message, kDateFormat, kDateFormat,
                                  kDateFormat, kTimeFormat))
        << text;
  }
  return value;
}

class ValueMatrix : public testing::TestWithParam<const Quirks*> {
 protected:
  using Values = std::vector<DataValue>;

  std::size_t database() const { return static_cast<std::size_t>(GetParam() - kQuirks); }

  const Limit* limitOf(const std::string& type, const std::string& value) const {
    const auto found = std::ranges::find_if(GetParam()->limits, [&](const Limit& limit) {
      return type == limit.type && value == limit.value;
    });
    return found == GetParam()->limits.end() ? nullptr : &*found;
  }

  void makeTable(const TypeSamples& samples) {
    connection_.run("drop table if exists matrix");
    connection_.run("create table matrix (id integer primary key, v " +
                    std::string(samples.sqlTypes[database()]) + " null)");
    EXPECT_EQ(connection_->commit(), kSuccess);
    nextId_ = 1;
  }

  std::vector<Parameter> row(unsigned int type, const DataValue& value) {
    std::vector<Parameter> parameters(2);
    parameters[0].type = kInteger;
    parameters[0].value.int32 = nextId_++;
    parameters[1].type = type;
    parameters[1].value = value;
    return parameters;
  }

  // The following return what is wrong, empty when nothing is.

  std::string insertSingle(unsigned int type, const DataValue& value) {
    int rows = 0;
    return connection_->executeUpdate(kInsert, row(type, value), rows) == kSuccess ? "" : refused();
  }

  std::string insertBatch(unsigned int type, const Values& values) {
    if (connection_->createBatch(kInsert) != kSuccess) return refused();
    for (const DataValue& value : values) {
      if (connection_->addToBatch(row(type, value)) != kSuccess) return refused();
    }
    std::vector<int> status;
    if (connection_->executeBatch(status) != kSuccess) return refused();
    const bool allDone = status == std::vector<int>(values.size(), 0);
    return allDone ? "" : "a status is not 0";
  }

  std::string readBack(unsigned int type, const Values& values) {
    const RowDescriptor descriptor({type});
    const int first = nextId_ - static_cast<int>(values.size());
    ResultSet* result = nullptr;
    const std::string sql =
        "select v from matrix where id >= " + std::to_string(first) + " order by id";
    if (connection_->executeQuery(sql, {}, 0, result) != kSuccess) return refused();
    bool more = false;
    for (const DataValue& sent : values) {
      Row* read = nullptr;
      if (result->next(more) != kSuccess || !more) return "a row is missing";
      if (result->getData(descriptor, read) != kSuccess) return refused("cannot be read");
      const std::unique_ptr<Row> owned(read);
      const std::string wrong = difference({type, sent}, read->getColumnValue(0));
      if (!wrong.empty()) return wrong;
    }
    return result->next(more) == kSuccess && !more ? "" : "too many rows";
  }

  std::string refused(const char* what = "refused") {
    const std::string text = std::string(what) + ": " + connection_.log().explanation();
    connection_.log().clear();
    EXPECT_EQ(connection_->rollback(), kSuccess);
    connection_->clearBatch();
    return text;
  }

  // Alone, as a single row and as a batch of one. Whether the database can keep the value.
  bool carriesAlone(const TypeSamples& samples, const SampleText& sample) {
    const DataValue value = parsed(samples.type, sample.text);
    std::string wrong = insertSingle(samples.type, value);
    if (wrong.empty()) wrong = readBack(samples.type, {value});
    if (wrong.empty()) wrong = insertBatch(samples.type, {value});
    if (wrong.empty()) wrong = readBack(samples.type, {value});
    expectLimit(samples.name, sample.label, wrong);
    EXPECT_EQ(connection_->commit(), kSuccess);
    return wrong.empty();
  }

  void expectLimit(const char* type, const char* value, const std::string& wrong) {
    const Limit* const limit = limitOf(type, value);
    if (limit == nullptr) {
      EXPECT_EQ(wrong, "") << type << ", " << value;
      return;
    }
    EXPECT_NE(wrong, "") << type << ", " << value << ": no limit any more";
    std::cout << "LIMIT| " << GetParam()->name << " | " << type << ", " << value << " | " << wrong
              << " | " << limit->reason << " |\n";
  }

  void carriesBatches(const TypeSamples& samples, const Values& values) {
    for (const int size : kBatchSizes) {
      if (size > samples.largestBatch) break;
      for (const Nulls& nulls : kNulls) {
        Values rows(static_cast<std::size_t>(size));
        for (std::size_t at = 0; at < rows.size(); ++at) {
          rows[at] = values[at % values.size()];
          const bool isNull =
              nulls.everywhere || (nulls.first && at == 0) || (nulls.last && at + 1 == rows.size());
          if (isNull) rows[at].setNull();
        }
        std::string wrong = insertBatch(samples.type, rows);
        if (wrong.empty()) wrong = readBack(samples.type, rows);
        EXPECT_EQ(wrong, "") << samples.name << ", " << size << " rows, " << nulls.name;
        EXPECT_EQ(connection_->commit(), kSuccess);
      }
    }
  }

  static constexpr char kInsert[] = "insert into matrix values (?, ?)";
  LiveConnection connection_{*GetParam()};
  int nextId_ = 1;
};

TEST_P(ValueMatrix, CarriesEveryValueInEveryBatch) {
  for (const TypeSamples& samples : kTypes) {
    makeTable(samples);
    Values kept;
    for (const SampleText& sample : samples.values) {
      if (carriesAlone(samples, sample)) kept.push_back(parsed(samples.type, sample.text));
    }
    DataValue null;
    null.setNull();
    EXPECT_EQ(insertSingle(samples.type, null), "");
    EXPECT_EQ(readBack(samples.type, {null}), "");
    EXPECT_EQ(connection_->commit(), kSuccess);
    if (samples.type == kBinary && !GetParam()->binaryLengthsMayDiffer) {
      const auto bytes = kept.empty() ? 0 : kept.front().binary.length;
      std::erase_if(kept, [&](const DataValue& value) { return value.binary.length != bytes; });
    }
    ASSERT_FALSE(kept.empty()) << samples.name;
    carriesBatches(samples, kept);
  }
}

TEST_P(ValueMatrix, CarriesBinaryValuesOfSeveralLengths) {
  const TypeSamples samples{"binary", kBinary, 2, {"blob", "bytea", "longblob"}, {}};
  const std::string texts[] = {std::string("\0\1", 2), "longer", "", std::string(300, '\0')};
  Values values;
  for (const std::string& text : texts) values.push_back(parsed(kBinary, text));
  makeTable(samples);
  std::string wrong = insertBatch(kBinary, values);
  if (wrong.empty()) wrong = readBack(kBinary, values);
  expectLimit("binary", "several lengths in a batch", wrong);
}

INSTANTIATE_TEST_SUITE_P(Live, ValueMatrix, testing::Values(&kQuirks[0], &kQuirks[1], &kQuirks[2]),
                         [](const auto& parameter) { return std::string(parameter.param->name); });

}  // namespace
}  // namespace live
