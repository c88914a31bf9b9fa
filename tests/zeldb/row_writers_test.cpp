#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <sstream>

#include "datatypes/data_types.h"
#include "zeldb/json_writer.h"
#include "zeldb/output_format.h"
#include "zeldb/value_text.h"

namespace zeldb {
namespace {

DataTypes::DataValue textValue(const char* text) {
  DataTypes::DataValue value;
  value.string = text;
  value.null = text == nullptr;
  return value;
}

DataTypes::DataValue numberValue(std::int64_t number) {
  DataTypes::DataValue value;
  value.int64 = number;
  return value;
}

// Three columns, three rows.
std::string written(const char* format) {
  static constexpr std::array<unsigned char, 2> kBytes = {0x00, 0xFF};
  std::ostringstream out;
  const auto writer = makeRowWriter({format, ""}, out);
  writer->begin({{"a_b", DataTypes::kString}, {"n", DataTypes::kLong}, {"x", DataTypes::kBinary}});
  std::array<DataTypes::DataValue, 3> row = {
      textValue("1,\"2\"\r\n|"), numberValue(std::numeric_limits<std::int64_t>::min()), {}};
  row[2].binary = {kBytes.data(), 2};
  writer->row(row);
  row = {textValue(""), numberValue(7), {}};
  row[2].binary = {kBytes.data(), 0};
  writer->row(row);
  row.fill(textValue(nullptr));
  writer->row(row);
  writer->end();
  return out.str();
}

TEST(RowWriters, KeepEveryValueApart) {
  EXPECT_EQ(written("csv"),
            "a_b,n,x\n"
            "\"1,\"\"2\"\"\r\n|\",-9223372036854775808,00FF\n"
            "\"\",7,\"\"\n"
            ",,\n");
  const std::string first = R"({"a_b":"1,\"2\"\r\n|","n":-9223372036854775808,"x":"00FF"})";
  const std::string second = R"({"a_b":"","n":7,"x":""})";
  const std::string third = R"({"a_b":null,"n":null,"x":null})";
  EXPECT_EQ(written("jsonl"), first + '\n' + second + '\n' + third + '\n');
  EXPECT_EQ(written("json"), "[\n" + first + ",\n" + second + ",\n" + third + "\n]\n");
  EXPECT_EQ(written("markdown"),
            "| a\\_b | n | x |\n"
            "| --- | ---: | --- |\n"
            "| 1,\"2\"<br>\\| | -9223372036854775808 | 00FF |\n"
            "|  | 7 |  |\n"
            "|  |  |  |\n");
}

TEST(RowWriters, WriteNoRowsAsAnEmptyList) {
  for (const auto& [format, text] : {std::pair("json", "[]\n"), std::pair("jsonl", "")}) {
    std::ostringstream out;
    const auto writer = makeRowWriter({format, ""}, out);
    writer->begin({{"a", DataTypes::kString}});
    writer->end();
    EXPECT_EQ(out.str(), text);
  }
}

TEST(JsonString, EscapesWhatJsonForbids) {
  struct Case {
    std::string_view text;
    const char* json;
  };
  for (const Case& row : {
           Case{{"\0\x01\x1F\x7F", 4}, R"("\u0000\u0001\u001f\u007f")"},
           {"\b\f\n\r\t/\\\"", R"("\b\f\n\r\t/\\\"")"},
           {"\xC3\xA9\xF0\x9F\x98\x80", "\"\xC3\xA9\xF0\x9F\x98\x80\""},
           {"a\xFFz", "\"a\xEF\xBF\xBDz\""},
           {"\xC3", "\"\xEF\xBF\xBD\""},                                  // cut off
           {"\xC0\xAF", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},                  // overlong
           {"\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},  // surrogate
       }) {
    EXPECT_EQ(jsonString(row.text), row.json);
  }
}

std::string jsonOf(unsigned int type, const DataTypes::DataValue& value) {
  std::ostringstream out;
  JsonWriter writer(out, isoMoments(""), JsonLayout::kLines);
  writer.begin({{"v", type}});
  writer.row({&value, 1});
  return out.str();
}

TEST(JsonWriter, WritesNumbersWithAllTheirDigits) {
  struct Case {
    unsigned int type;
    const char* text;
    const char* json;
  };
  for (const Case& row : {
           Case{DataTypes::createFixedDecimal(34, 10), "-0.5", "-0.5000000000"},
           {DataTypes::createFixedDecimal(34, 0), "9999999999999999999999999999999999",
            "9999999999999999999999999999999999"},
           {DataTypes::kMoney15, "-0.000000000000001", "-0.000000000000001"},
           {DataTypes::kFloat, "0.1", "0.1"},
           {DataTypes::kFloat, "1e300", "1e+300"},
           {DataTypes::kBoolean, "true", "true"},
           {DataTypes::kTime, "01:02:03", "\"01:02:03\""},
           {DataTypes::kBigDateTime, "2024-02-29T01:02:03.000004",
            "\"2024-02-29T01:02:03.000004Z\""},
       }) {
    DataTypes::DataValue value;
    const char* message = nullptr;
    ASSERT_TRUE(DataTypes::convertFromString(row.type, row.text, value, message, nullptr, nullptr,
                                             nullptr, nullptr))
        << row.text << message;
    EXPECT_EQ(jsonOf(row.type, value), std::string("{\"v\":") + row.json + "}\n");
  }
  DataTypes::DataValue value;
  value.float64 = -std::numeric_limits<double>::infinity();
  EXPECT_EQ(jsonOf(DataTypes::kFloat, value), "{\"v\":\"-inf\"}\n");
}

TEST(ValueText, ShowsInstantsInAZone) {
  constexpr std::int64_t kMarch = 1711846800;  // 2024-03-31T01:00:00Z, when Berlin's summer begins
  struct Case {
    unsigned int type;
    std::int64_t value;
    const char* zone;
    const char* text;
  };
  for (const Case& row : {
           Case{DataTypes::kBigDateTime, kMarch * 1000000 - 1, "", "2024-03-31T00:59:59.999999Z"},
           {DataTypes::kBigDateTime, kMarch * 1000000 - 1, "Europe/Berlin",
            "2024-03-31T01:59:59.999999+01:00"},
           {DataTypes::kBigDateTime, kMarch * 1000000, "Europe/Berlin",
            "2024-03-31T03:00:00.000000+02:00"},
           {DataTypes::kBigDateTime, -1, "Asia/Kolkata", "1970-01-01T05:29:59.999999+05:30"},
           {DataTypes::kBigDateTime, 0, "America/New_York", "1969-12-31T19:00:00.000000-05:00"},
           {DataTypes::kTimestamp, kMarch * 1000 + 1, "UTC", "2024-03-31T01:00:00.001+00:00"},
           // Days do not move.
           {DataTypes::kTimestamp, 0, "America/New_York", "1970-01-01"},
           {DataTypes::kDate, -86400, "Asia/Kolkata", "1969-12-31"},
       }) {
    EXPECT_EQ(valueText(row.type, numberValue(row.value), isoMoments(row.zone)), row.text);
  }
}

}  // namespace
}  // namespace zeldb
