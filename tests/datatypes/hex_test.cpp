#include "datatypes/hex.h"

#include <gtest/gtest.h>

#include <cstring>

namespace DataTypes {
namespace {

TEST(Hex, Decode) {
  const struct {
    const char* text;
    std::size_t room;
    int bytes;
    const char *message, *data;
  } rows[] = {
      {"0a0b", 8, 2, nullptr, "\x0a\x0b"},
      {" 0\tA\r0\nb ", 8, 2, nullptr, "\x0a\x0b"},
      {"0a 0b 0c", 3, 3, nullptr, "\x0a\x0b\x0c"},
      {"fFeE", 2, 2, nullptr, "\xff\xee"},
      {"", 0, 0, nullptr, ""},
      {nullptr, 0, 0, nullptr, ""},
      {"0a0", 8, -1, "Odd number of characters in hex string", "\x0a"},
      {"0a0g", 8, -1, "Invalid hex character", "\x0a"},
      {"0a\v0b", 8, -1, "Invalid hex character", "\x0a"},
      {"@a", 8, -1, "Invalid hex character", ""},
      {"0a0b", 1, -1, "Output buffer too small", "\x0a"},
      {"0a0bx", 1, -1, "Output buffer too small", "\x0a"},
      {"0a0", 1, -1, "Odd number of characters in hex string", "\x0a"},
  };
  for (const auto& row : rows) {
    unsigned char out[16];
    std::memset(out, '#', sizeof out);
    const char* message = nullptr;
    EXPECT_EQ(convertBinaryFromHexString(row.text, out, row.room, message), row.bytes);
    EXPECT_STREQ(message, row.message);
    const std::size_t written = std::strlen(row.data);
    EXPECT_EQ(std::memcmp(out, row.data, written), 0) << row.text;
    EXPECT_EQ(out[written], '#') << row.text;
  }
}

TEST(Hex, Encode) {
  const unsigned char data[] = {0x00, 0x1F, 0xAB};
  const struct {
    std::size_t room;
    std::uint32_t length;
    int digits;
    const char* text;
  } rows[] = {{7, 3, 6, "001FAB"}, {6, 3, -1, "#"}, {1, 0, 0, ""}, {0, 0, -1, "#"}};
  for (const auto& row : rows) {
    char out[8] = "#";
    const char* message = nullptr;
    EXPECT_EQ(convertBinaryToHexString(row.room, data, row.length, out, message), row.digits);
    EXPECT_STREQ(out, row.text);
    if (row.digits < 0) {
      EXPECT_STREQ(message, "output buffer is too small for binary to hex-string conversion");
    }
  }
  std::string text = "former";
  convertBinaryToHexString(data, 3, text);
  EXPECT_EQ(text, "001FAB");
  convertBinaryToHexString(data, 0, text);
  EXPECT_EQ(text, "");
}

TEST(Hex, Sizes) {
  EXPECT_EQ(getBinaryDataSizeFromHexString(nullptr), 0U);
  EXPECT_EQ(getBinaryDataSizeFromHexString("0a0"), 1U);
  EXPECT_EQ(getHexStringSizeForBuffer(100, 0, 7), 8U);
  EXPECT_EQ(getHexStringSizeForBuffer(100, 8, 7), 34U);
}

}  // namespace
}  // namespace DataTypes
