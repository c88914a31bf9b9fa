#include "datatypes/long_division.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "datatypes/int128.h"

namespace DataTypes {
namespace {

using Digits = std::vector<unsigned short>;

struct Words {
  unsigned long long high, low;
};

Uint128 wide(Words words) {
  return makeUint128(words.high, words.low);
}

void expectDivision(Words a, Words b) {
  Words q{};
  Words r{};
  ASSERT_TRUE(longdivmod128(a.high, a.low, b.high, b.low, q.high, q.low, r.high, r.low));
  ASSERT_TRUE(wide(q) == wide(a) / wide(b))
      << a.high << ":" << a.low << " / " << b.high << ":" << b.low;
  ASSERT_TRUE(wide(r) == wide(a) % wide(b));
}

TEST(LongDivision, ByZero) {
  Words q{1, 2};
  Words r{3, 4};
  EXPECT_FALSE(longdivmod128(1, 1, 0, 0, q.high, q.low, r.high, r.low));
  EXPECT_EQ(q.low, 2ULL);
  EXPECT_EQ(r.low, 4ULL);
  const Digits zero{0, 0};
  Digits quotient(2);
  Digits rest(2);
  unsigned quotientLength = 9;
  unsigned restLength = 9;
  EXPECT_FALSE(longdivmod(zero.data(), 1, zero.data(), 2, quotient.data(), quotientLength,
                          rest.data(), restLength));
  EXPECT_EQ(quotientLength, 9U);
}

TEST(LongDivision, BoundariesAndRandomWords) {
  constexpr unsigned long long kWords[] = {0,
                                           1,
                                           0xFFFF,
                                           0x10000,
                                           0xFFFFFFFF,
                                           0x7FFF800000000000,
                                           0x8000000000000000,
                                           0xFFFFFFFFFFFF0000,
                                           ~0ULL};
  std::mt19937_64 random(7);
  const auto word = [&] { return random() % 2 == 0 ? random() : kWords[random() % 9]; };
  for (int i = 0; i < 1000000; ++i) {
    const auto number = [&] {
      const Uint128 value = makeUint128(word(), word()) >> (random() % 2 * (random() % 128));
      return Words{highWord(value), lowWord(value)};
    };
    const Words a = number();
    const Words b = number();
    if (wide(b) != 0) expectDivision(a, b);
  }
}

// Estimates that are too high, and numbers longer than the scratch on the stack: q x b + r = a.
TEST(LongDivision, LongNumbersMultiplyBack) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 20000; ++i) {
    const auto digits = [&random](std::size_t length) {
      Digits result(length);
      for (auto& digit : result) {
        const auto choice = random() % 4;
        digit = choice == 0 ? 0 : choice == 1 ? 0xFFFF : static_cast<unsigned short>(random());
      }
      return result;
    };
    const Digits a = digits(1 + random() % 60);
    Digits b = digits(1 + random() % 20);
    b.back() |= 1;
    Digits q(a.size() + 1);
    Digits r(std::max(a.size(), b.size()));
    unsigned qLength = 0;
    unsigned rLength = 0;
    ASSERT_TRUE(longdivmod(a.data(), static_cast<unsigned>(a.size()), b.data(),
                           static_cast<unsigned>(b.size()), q.data(), qLength, r.data(), rLength));
    Digits product(a.size() + b.size() + 2);
    for (std::size_t k = 0; k < rLength; ++k) product[k] = r[k];
    for (std::size_t x = 0; x < qLength; ++x) {
      std::uint64_t carry = 0;
      for (std::size_t y = 0; x + y < product.size(); ++y) {
        const std::uint64_t term = y < b.size() ? std::uint64_t{q[x]} * b[y] : 0;
        const std::uint64_t sum = product[x + y] + term + carry;
        product[x + y] = static_cast<unsigned short>(sum);
        carry = sum >> 16;
      }
    }
    for (std::size_t k = 0; k < product.size(); ++k)
      ASSERT_EQ(product[k], k < a.size() ? a[k] : 0) << i;
    ASSERT_TRUE(
        rLength < b.size() ||
        (rLength == b.size() && std::lexicographical_compare(r.rend() - static_cast<long>(rLength),
                                                             r.rend(), b.rbegin(), b.rend())));
  }
}

TEST(LongDivision, OneDigit) {
  const Digits a{0xFFFF, 0xFFFF, 1};
  Digits out(4);
  unsigned length = 0;
  mul1(a.data(), 3, 0xFFFF, out.data(), length);
  EXPECT_EQ(length, 4U);
  EXPECT_EQ(out, (Digits{1, 0xFFFF, 0xFFFD, 1}));
  Digits quotient(3, 7);
  unsigned short remainder = 5;
  divmod1(a.data(), 3, 10, quotient.data(), 3, remainder);
  EXPECT_EQ(quotient, (Digits{0x3333, 0x3333, 0}));
  EXPECT_EQ(remainder, 1);
  divmod1(a.data(), 3, 0, quotient.data(), 3, remainder);
  EXPECT_EQ(remainder, 1);
}

}  // namespace
}  // namespace DataTypes
