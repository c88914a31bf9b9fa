#include "host/intl.h"

#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace KORVEX::Zel {
namespace {

TEST(IntlSnprintf, CutsToTheSizeAndReturnsTheWholeLength) {
  struct Case {
    unsigned long size;
    const char* expected;  // '#' marks a byte that must stay as it was
  };
  for (const Case& row : {Case{8, "12-abc\0#"},
                          {7, "12-abc\0#"},
                          {4, "12-\0####"},
                          {1, "\0#######"},
                          {0, "########"}}) {
    std::array<char, 8> out;
    out.fill('#');
    EXPECT_EQ(intl_snprintf(out.data(), row.size, "%d-%s", 12, "abc"), 6) << row.size;
    EXPECT_EQ(std::memcmp(out.data(), row.expected, 8), 0) << row.size;
  }
  EXPECT_EQ(intl_snprintf(nullptr, 0, "%05d", 7), 5);
}

TEST(IntlSnprintf, WritesAPointInALocaleWithACommaAndLeavesTheLocale) {
  setenv("LOCPATH", ZEL_TEST_LOCALES, 1);
  const std::string before = std::setlocale(LC_ALL, nullptr);
  ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
  std::array<char, 8> out = {};
  EXPECT_EQ(intl_snprintf(out.data(), out.size(), "%.2f", 1.5), 4);
  EXPECT_STREQ(out.data(), "1.50");
  std::array<char, 8> native = {};
  std::snprintf(native.data(), native.size(), "%.2f", 1.5);
  EXPECT_STREQ(native.data(), "1,50");
  std::setlocale(LC_ALL, before.c_str());
}

TEST(IntlStrlcpy, CutsTerminatesAndReturnsTheLengthOfTheSource) {
  struct Case {
    const char* text;
    unsigned long size;
    const char* expected;
  };
  for (const Case& row : {Case{"abc", 5, "abc\0#"},
                          {"abc", 4, "abc\0#"},
                          {"abc", 3, "ab\0##"},
                          {"abc", 1, "\0####"},
                          {"abc", 0, "#####"},
                          {"", 2, "\0####"}}) {
    std::array<char, 5> out;
    out.fill('#');
    EXPECT_EQ(intl_strlcpy(out.data(), row.text, row.size), std::strlen(row.text)) << row.size;
    EXPECT_EQ(std::memcmp(out.data(), row.expected, 5), 0) << row.size;
  }
}

}  // namespace
}  // namespace KORVEX::Zel
