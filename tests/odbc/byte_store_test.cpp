#include "odbc/byte_store.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

using KORVEX::Zel::DB::ODBC::ByteStore;

const unsigned char* bytes(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

std::string contents(const ByteStore& store) {
  return std::string(store.Text(), store.Length());
}

// While there is a block the contents end in a NUL that the capacity has room for.
void expectInvariant(const ByteStore& store) {
  if (store.Data() == nullptr) {
    EXPECT_EQ(store.Length(), 0u);
    EXPECT_EQ(store.Capacity(), 0u);
    return;
  }
  EXPECT_GT(store.Capacity(), store.Length());
  EXPECT_EQ(store.Data()[store.Length()], 0);
}

TEST(ByteStore, GrowsInStatedSteps) {
  ByteStore store;
  EXPECT_EQ(store.Grow(0), 0u);
  EXPECT_EQ(store.Append(bytes("abc"), 3), 3u);
  EXPECT_EQ(store.Capacity(), 1028u);
  EXPECT_EQ(store.Data()[3], 0);
  EXPECT_EQ(store.Grow(1024), 1024u);  // 3 + 1024 < 1028: room enough
  EXPECT_EQ(store.Capacity(), 1028u);
  EXPECT_EQ(store.Grow(1025), 1025u);
  EXPECT_EQ(store.Capacity(), 3u + 1025 + 1025);
  EXPECT_EQ(contents(store), "abc");
  EXPECT_EQ(store.Append(nullptr, 5), 3u);
  EXPECT_EQ(store.Append(bytes("x"), 0), 3u);

  // Contents as long as the block leave no room for the terminator.
  const std::string slack(1025, 's');
  using Lengthen = unsigned int (*)(ByteStore&, const std::string&);
  for (const Lengthen lengthen : std::initializer_list<Lengthen>{
           [](ByteStore& s, const std::string& more) {
             return s.Append(bytes(more.c_str()), static_cast<unsigned int>(more.size()));
           },
           [](ByteStore& s, const std::string&) { return s.ExtendUnset(1028); },
           [](ByteStore& s, const std::string&) {
             return s.ReplaceUnset(1028) == s.Data() ? s.Length() : 0U;
           }}) {
    ByteStore full("abc", 3);
    EXPECT_EQ(lengthen(full, slack), 1028u);
    expectInvariant(full);
  }

  ByteStore fresh;
  EXPECT_EQ(fresh.Grow(10), 11u);
  EXPECT_EQ(fresh.Capacity(), 1035u);
  EXPECT_EQ(fresh.Length(), 0u);
  expectInvariant(fresh);
}

TEST(ByteStore, LongContentsReportTheSameStepsAndKeepTheirBytes) {
  ByteStore store;
  std::string expected;
  for (int i = 0; i < 200; ++i) {
    const std::string piece(1500, static_cast<char>('a' + i % 26));
    store.Append(bytes(piece.c_str()), 1500);
    expected += piece;
    ASSERT_EQ(store.Capacity(), expected.size() + 1025);  // each append passes the slack
  }
  EXPECT_EQ(contents(store), expected);
  store.Resize(10, 0);
  EXPECT_EQ(store.Capacity(), 11u);
  EXPECT_EQ(store.Extend(70000, 'z'), 70000u);
  EXPECT_EQ(store.Capacity(), 71025u);
  EXPECT_EQ(contents(store), expected.substr(0, 10) + std::string(69990, 'z'));
}

TEST(ByteStore, RefusesWhatNeedsMoreThanFourGibibytes) {
  ByteStore store("abc", 3);
  const volatile unsigned int tooMany = 0xFFFFFFFE;  // unknown to the compiler, which would warn
  EXPECT_EQ(store.Grow(0xFFFFFFFF), 0u);
  EXPECT_EQ(store.Append(bytes("x"), tooMany), 0u);
  EXPECT_EQ(store.ExtendBy(0xFFFFFFFF, 'x'), 3u);
  EXPECT_EQ(store.Slam(0xFFFFFFFF, bytes("x"), 1), 3u);
  EXPECT_EQ(store.Ins(0xFFFFFFFF, bytes("x"), 1), 0);
  EXPECT_EQ(store.Jam(0xFFFFFFFF, 1, 'x'), 0);
  EXPECT_EQ(contents(store), "abc");
  expectInvariant(store);
}

TEST(ByteStore, ConstructsAndAssigns) {
  EXPECT_EQ(contents(ByteStore("abcdef", 3)), "abc");
  EXPECT_EQ(contents(ByteStore("abcdef", 0xFFFFFFFF)), "abcdef");
  EXPECT_EQ(contents(ByteStore(bytes("xyz"), 0xFFFFFFFF)), "xyz");
  EXPECT_EQ(ByteStore("", 0).Data(), nullptr);
  EXPECT_STREQ(ByteStore().Text(), "");

  ByteStore store("abcdef", 6);
  const ByteStore copy(store);
  const unsigned char* block = store.Data();
  store = ByteStore("xy", 2);
  EXPECT_EQ(contents(store), "xy");
  EXPECT_EQ(store.Data(), block);
  store = *&store;
  EXPECT_EQ(contents(store), "xy");
  EXPECT_EQ(contents(copy), "abcdef");
  ByteStore empty;
  empty = ByteStore();
  EXPECT_EQ(empty.Data(), nullptr);
  store = empty;
  EXPECT_EQ(contents(store), "");
  expectInvariant(store);
}

TEST(ByteStore, TakesBytesFromItsOwnBlock) {
  ByteStore store("abcdef", 6);
  for (int i = 0; i < 12; ++i) store.Append(store.Data(), store.Length());  // moves several times
  EXPECT_EQ(store.Length(), 6u << 12);
  EXPECT_EQ(contents(store).substr(24570), "abcdef");
  ByteStore other("abc", 3);
  EXPECT_EQ(other.Ins(1, other.Data(), 3), 3);
  EXPECT_EQ(contents(other), "aabcbc");
  other.Slam(5000, other);
  EXPECT_EQ(contents(other).substr(5000), "aabcbc");
}

TEST(ByteStore, LengthensAndShortens) {
  struct Case {
    const char* name;
    const char* start;  // null: no block
    unsigned int (*change)(ByteStore&);
    std::string after;
    bool block;
    unsigned int capacity;
  };
  const Case cases[] = {
      {"Extend of nothing", nullptr, [](ByteStore& s) { return s.Extend(6, 0); },
       std::string(6, '\0'), true, 1031},
      {"Extend to less", "abcdef", [](ByteStore& s) { return s.Extend(3, 'x'); }, "abcdef", true,
       1031},
      {"ExtendBy", "abc", [](ByteStore& s) { return s.ExtendBy(2, 'x'); }, "abcxx", true, 1028},
      {"Stretch", "abc", [](ByteStore& s) { return s.Stretch(5, 'x'); }, "xxabc", true, 1028},
      {"Stretch to less", "abc", [](ByteStore& s) { return s.Stretch(2, 'x'); }, "abc", true, 1028},
      {"Resize keeping the tail", "abcdef", [](ByteStore& s) { return s.Resize(3, 1); }, "def",
       true, 4},
      {"Resize keeping the head", "abcdef", [](ByteStore& s) { return s.Resize(3, 0); }, "abc",
       true, 4},
      {"Truncate", "abcdef", [](ByteStore& s) { return s.Truncate(3, 0); }, "abc", true, 1031},
      {"Truncate keeping the tail", "abcdef", [](ByteStore& s) { return s.Truncate(2, 1); }, "ef",
       true, 1031},
      {"Resize lengthens with NULs", "ab", [](ByteStore& s) { return s.Resize(4, 'x'); },
       std::string("ab\0\0", 4), true, 1027},
      {"Resize to 0", "abc", [](ByteStore& s) { return s.Resize(0, 0); }, "", false, 0},
      {"Truncate to 0", "abc", [](ByteStore& s) { return s.Truncate(0, 0); }, "", true, 1028},
      {"Truncate of nothing", nullptr, [](ByteStore& s) { return s.Truncate(0, 0); }, "", false, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ByteStore store;
    if (c.start != nullptr) store = ByteStore(c.start, ByteStore::kUntilNul);
    EXPECT_EQ(c.change(store), c.after.size());
    EXPECT_EQ(contents(store), c.after);
    EXPECT_EQ(store.Data() != nullptr, c.block);
    EXPECT_EQ(store.Capacity(), c.capacity);
    expectInvariant(store);
  }
}

TEST(ByteStore, SnipsFromTheMiddleAndTheEnd) {
  struct Case {
    unsigned int offset;
    int count;
    int removedCount;
    const char* rest;
    const char* removed;
  };
  const Case cases[] = {
      {4, 10, 2, "abcd", "ef"},         {1, 2, 2, "adef", "bc"},    {0, 6, 6, "", "abcdef"},
      {6, 1, 0, "abcdef", "old"},       {0, 0, 0, "abcdef", "old"}, {2, -1, 0, "abcdef", "old"},
      {1, 0x7FFFFFFF, 5, "a", "bcdef"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.offset);
    ByteStore store("abcdef", 6);
    ByteStore removed("old", 3);
    EXPECT_EQ(store.Snip(c.offset, c.count, &removed), c.removedCount);
    EXPECT_EQ(contents(store), c.rest);
    EXPECT_EQ(contents(removed), c.removed);
    expectInvariant(store);
    ByteStore again("abcdef", 6);
    EXPECT_EQ(again.Snip(c.offset, c.count, nullptr), c.removedCount);
    EXPECT_EQ(contents(again), c.rest);
  }
}

TEST(ByteStore, InsertsInsideAndBeyondTheEnd) {
  ByteStore store("abc", 3);
  EXPECT_EQ(store.Ins(1, bytes("XY"), 2), 2);
  EXPECT_EQ(contents(store), "aXYbc");
  EXPECT_EQ(store.Ins(5, bytes("!"), 1), 1);
  EXPECT_EQ(contents(store), "aXYbc!");
  EXPECT_EQ(store.Ins(0, nullptr, 1), 0);
  EXPECT_EQ(store.Ins(0, bytes("x"), 0), 0);
  EXPECT_EQ(store.Jam(2, 3, '-'), 3);
  EXPECT_EQ(contents(store), "aX---Ybc!");
  EXPECT_EQ(store.Jam(0, 0, '-'), 0);
  expectInvariant(store);

  ByteStore far("abc", 3);  // the length does not count the gap
  EXPECT_EQ(far.Ins(10, bytes("XY"), 2), 2);
  EXPECT_EQ(far.Length(), 5u);
  EXPECT_EQ(far.Data()[10], 'X');
  EXPECT_EQ(far.Data()[11], 'Y');
  expectInvariant(far);

  ByteStore jam("abc", 3);  // the length counts gap, count and one
  EXPECT_EQ(jam.Jam(10, 2, '-'), 2);
  EXPECT_EQ(jam.Length(), 3u + 7 + 2 + 1);
  EXPECT_EQ(contents(jam).substr(0, 3), "abc");
  expectInvariant(jam);
}

TEST(ByteStore, FindsAndRefersToBytes) {
  ByteStore store("abc", 3);
  EXPECT_EQ(store.Index('c'), 3u);
  EXPECT_EQ(store.Index('z'), 0u);
  EXPECT_EQ(store.Index('\0'), 0u);  // the terminator does not count
  EXPECT_EQ(ByteStore().Index('a'), 0u);
  EXPECT_EQ(store[-5], 'a');
  EXPECT_EQ(store[9], 0);
  EXPECT_EQ(contents(store), std::string("abc\0\0\0\0\0\0\0", 10));
  store[1] = 'X';
  EXPECT_EQ(store.Data()[1], 'X');
}

TEST(ByteStore, SlamsIntegersInBothByteOrders) {
  ByteStore store("0123456789", 10);
  EXPECT_EQ(store.SlamMi32(0, 0x01020304), 10u);
  EXPECT_EQ(contents(store),
            "\x01\x02\x03\x04"
            "456789");
  store.Slam32(0, 0x01020304);
  EXPECT_EQ(contents(store).substr(0, 4), "\x04\x03\x02\x01");
  store.SlamMi16(4, 0x4142);
  store.Slam16(6, 0x4142);
  store.Slam8(8, 'x');
  EXPECT_EQ(contents(store).substr(4), "ABBAx9");
  EXPECT_EQ(store.Slam(9, bytes("abc"), 3), 12u);
  EXPECT_EQ(contents(store).substr(8), "xabc");
  EXPECT_EQ(store.Slam(14, bytes("!"), 1), 15u);
  EXPECT_EQ(contents(store).substr(12), std::string("\0\0!", 3));
  EXPECT_EQ(store.Slam(0, bytes("x"), 0), 15u);
  EXPECT_EQ(store.Slam(1, ByteStore("YZ", 2)), 15u);
  EXPECT_EQ(contents(store).substr(1, 2), "YZ");
  EXPECT_EQ(store.Slam(17, bytes("x"), 0), 17u);  // nothing, but up to there
  EXPECT_EQ(store.Slam(19, ByteStore()), 19u);
  EXPECT_EQ(contents(store).substr(14), std::string("!\0\0\0\0", 5));
}

TEST(ByteStore, WritesLengthFields) {
  using Write = unsigned int (ByteStore::*)(unsigned int, unsigned int);
  struct Case {
    const char* name;
    unsigned int start;  // bytes already there
    Write write;
    unsigned int offset;
    unsigned int adjust;
    unsigned int length;
    std::array<char, 4> field;
  };
  const Case cases[] = {
      {"whole", 10, &ByteStore::SlamVli, 0, 0, 10, {10, 0, 0, 0}},
      {"from the field", 10, &ByteStore::SlamVliIncl, 2, 0, 10, {8, 0, 0, 0}},
      {"behind the field", 10, &ByteStore::SlamVliExcl, 0, 0, 10, {6, 0, 0, 0}},
      {"the field itself counts", 0, &ByteStore::SlamVli, 0, 0, 4, {4, 0, 0, 0}},
      {"nothing behind the field", 10, &ByteStore::SlamVliExcl, 8, 0, 12, {0, 0, 0, 0}},
      {"adjusted", 10, &ByteStore::SlamVli, 0, 3, 10, {7, 0, 0, 0}},
      {"never below 0", 10, &ByteStore::SlamVli, 0, 20, 10, {0, 0, 0, 0}},
      {"most significant first", 10, &ByteStore::SlamMiVli, 0, 0, 10, {0, 0, 0, 10}},
      {"most significant first, from", 10, &ByteStore::SlamMiVliIncl, 2, 1, 10, {0, 0, 0, 7}},
      {"most significant first, behind", 10, &ByteStore::SlamMiVliExcl, 2, 0, 10, {0, 0, 0, 4}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ByteStore store;
    store.Extend(c.start, 'x');
    EXPECT_EQ((store.*c.write)(c.offset, c.adjust), c.length);
    EXPECT_EQ(contents(store).substr(c.offset, 4), std::string(c.field.data(), 4));
  }
  ByteStore store("abc", 3);
  EXPECT_EQ(store._SlamVli(0, 0, 3, false), 0u);
  EXPECT_EQ(store._SlamVli(0, 0, -1, true), 0u);
  EXPECT_EQ(contents(store), "abc");
}

}  // namespace
