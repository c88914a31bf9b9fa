#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "host/host.h"

namespace KORVEX::Zel::DB {
namespace {

const void* mallocCopy(const char* text) {
  return strdup(text);
}

TEST(Row, FreesTheBuffersHandedOverAndNoOthers) {
  // The leak and address checkers tell when a buffer is freed too seldom or too often.
  char own[] = "mine";
  DataTypes::DataValue text;
  DataTypes::DataValue bytes;
  DataTypes::DataValue null;
  null.setNull();
  {
    Row row;
    text.string = static_cast<const char*>(mallocCopy("theirs"));
    row.addColumn(DataTypes::kString, text, true);
    bytes.binary = {static_cast<const unsigned char*>(mallocCopy("raw")), 3};
    row.addColumn(DataTypes::kBinary, bytes, true);
    text.string = own;
    row.addColumn(DataTypes::kString, text, false);
    null.string = own;
    row.addColumn(DataTypes::kString, null, true);
    null.int64 = 4711;
    row.addColumn(DataTypes::kLong, null, true);
    ASSERT_EQ(row.getNumColumns(), 5U);
    EXPECT_STREQ(row.getColumnValue(0).string, "theirs");
    EXPECT_EQ(row.getColumnValue(1).binary.length, 3U);
    EXPECT_EQ(row.getColumnType(1), 28U);
    EXPECT_TRUE(row.getColumnValue(3).isNull());
  }
  EXPECT_STREQ(own, "mine");
}

}  // namespace
}  // namespace KORVEX::Zel::DB
