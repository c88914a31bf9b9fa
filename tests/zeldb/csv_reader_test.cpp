#include "zeldb/csv_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/zeldb/scratch_folder.h"
#include "zeldb/failure.h"

namespace zeldb {
namespace {

// Where a record has ended: byte, line, and the length of the output then.
struct Stop {
  std::uint64_t byte;
  std::uint64_t line;
  std::size_t length;
};

std::string readRest(CsvReader& reader, std::vector<Stop>* stops) {
  std::string out;
  CsvRecord record;
  while (reader.next(record)) {
    out += std::to_string(record.line) + "[";
    for (std::size_t at = 0; at < record.fields.size(); ++at) {
      const CsvField& field = record.fields[at];
      out += (at > 0 ? "|" : "") + (field.empty ? std::string("~") : field.text);
    }
    out += "]";
    if (stops != nullptr) {
      stops->push_back({record.endByte, record.endLine, out.size()});
    }
  }
  return out;
}

// Records as "line[a|b]", an empty field as "~", or the failure's text behind the file's name.
std::string readAll(const std::string& text) {
  const ScratchFolder folder;
  const auto path = folder.write("f.csv", text);
  std::string out;
  try {
    CsvReader reader(path);
    out = readRest(reader, nullptr);
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.exitCode(), ExitCode::kFile);
    return std::string(failure.what()).substr(path.string().size());
  }
  return out;
}

TEST(CsvReader, ReadsRecordsWithTheirLines) {
  struct Case {
    std::string text;
    const char* expected;
  };
  const std::vector<Case> cases = {
      {"", ""},
      {"\n\r\n", ""},
      {"a,b\n1,2\n", "1[a|b]2[1|2]"},
      {"a,b\r\n1,2", "1[a|b]2[1|2]"},
      {"a\r\rb\rc", "1[a]2[~]3[b]4[c]"},
      {"\xEF\xBB\xBF"
       "a,b\n",
       "1[a|b]"},
      {"a\n\n\nb\n", "1[a]2[~]3[~]4[b]"},
      {"\na\r\n\r\n1", "2[a]3[~]4[1]"},
      {"a,b\n\n\n1,2\n\n", "1[a|b]4[1|2]"},
      {",\"\",x\n", "1[~||x]"},
      {"a,\n", "1[a|~]"},
      {" a , b\t\n", "1[ a | b\t]"},
      {"\"a,b\",\"say \"\"so\"\"\"\n", "1[a,b|say \"so\"]"},
      {"\"one\ntwo\",x\ny,z\n", "1[one\ntwo|x]3[y|z]"},
      {"\"one\r\ntwo\"\nz\n", "1[one\r\ntwo]3[z]"},
      {std::string("a\0b\n", 4), nullptr},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(readAll(row.text),
              row.expected != nullptr ? row.expected : std::string("1[a\0b]", 6));
  }
}

TEST(CsvReader, NamesLineAndFieldOfMalformedText) {
  struct Case {
    const char* text;
    const char* place;
  };
  for (const Case& row : {Case{"a,b\nc,d\"e\n", ":2:2: "},
                          {"a\n\n\"b\"c\n", ":3:1: "},
                          {"a,b\nx,\"y\n\nz", ":2:2: "},
                          {"a\n\"b\" ,c\n", ":2:1: "}}) {
    EXPECT_TRUE(readAll(row.text).starts_with(row.place)) << readAll(row.text);
  }
}

TEST(CsvReader, ReadsFieldsAndFilesLongerThanItsBuffer) {
  const std::string field(200000, 'x');
  std::string text;
  std::string expected;
  for (int line = 1; line <= 3; ++line) {
    text.append(field).append(",\"").append(field).append("\"\n");
    expected.append(std::to_string(line) + "[").append(field).append("|").append(field).append("]");
  }
  EXPECT_TRUE(readAll(text) == expected);
}

TEST(CsvReader, GoesOnWhereARecordHasEnded) {
  const ScratchFolder folder;
  for (const std::string text : {"a,b\n1,2\n\n3,\"x\ny\"\n5,6",
                                 "\xEF\xBB\xBF"
                                 "a\r\n1\r\n\r\n2\r\n",
                                 "a\r\r1\r2", "a\n\n\n1\n"}) {
    const auto path = folder.write("f.csv", text);
    std::vector<Stop> stops;
    CsvReader whole(path);
    const std::string all = readRest(whole, &stops);
    ASSERT_EQ(stops.back().byte, text.size());
    for (const Stop& stop : stops) {
      CsvReader reader(path);
      CsvRecord header;
      ASSERT_TRUE(reader.next(header));
      reader.seek(stop.byte, stop.line);
      EXPECT_EQ(readRest(reader, nullptr), all.substr(stop.length)) << text << stop.byte;
    }
    EXPECT_THROW(whole.seek(text.size() + 1, 9), Failure);
  }
}

TEST(CsvReader, RefusesWhatIsNoFile) {
  EXPECT_THROW(CsvReader("/nonexistent/f.csv"), Failure);
  EXPECT_THROW(CsvReader("/tmp"), Failure);
}

}  // namespace
}  // namespace zeldb
