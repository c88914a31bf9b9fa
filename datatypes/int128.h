#pragma once

// 128-bit numbers, their words, powers of ten and the wide product; the inside of the decimals.

#include <array>
#include <cstdint>

namespace DataTypes {

__extension__ using Uint128 = unsigned __int128;
__extension__ using Int128 = __int128;

constexpr Uint128 makeUint128(std::uint64_t high, std::uint64_t low) {
  return Uint128{high} << 64 | low;
}

constexpr std::uint64_t highWord(Uint128 value) {
  return static_cast<std::uint64_t>(value >> 64);
}

constexpr std::uint64_t lowWord(Uint128 value) {
  return static_cast<std::uint64_t>(value);
}

constexpr bool signBit(Uint128 value) {
  return (value >> 127) != 0;
}

// The magnitude of a two's-complement number, 2^127 included.
constexpr Uint128 magnitudeOf(Uint128 value) {
  return signBit(value) ? -value : value;
}

namespace detail {

constexpr std::array<Uint128, 38> powersOfTen() {
  std::array<Uint128, 38> powers{};
  Uint128 power = 1;
  for (auto& entry : powers) entry = power *= 10;
  return powers;
}

}  // namespace detail

// 10^1 to 10^38.
inline constexpr std::array<Uint128, 38> kPowersOfTen = detail::powersOfTen();

namespace detail {

// floor(2^128 / 10^k) + 1. 10^k never divides 2^128, so dividing 2^128 - 1 gives the same quotient;
// 10^39 exceeds 2^128.
constexpr std::array<Uint128, 39> reciprocals() {
  std::array<Uint128, 39> table{};
  for (unsigned i = 0; i < kPowersOfTen.size(); ++i) table[i] = ~Uint128{0} / kPowersOfTen[i] + 1;
  table[38] = 1;
  return table;
}

}  // namespace detail

// floor(2^128 / 10^k) + 1 for k = 1 to 39.
inline constexpr std::array<Uint128, 39> kReciprocals = detail::reciprocals();

struct Uint256 {
  Uint128 high;
  Uint128 low;
};

// The full product.
constexpr Uint256 wideProduct(Uint128 a, Uint128 b) {
  const Uint128 lowLow = Uint128{lowWord(a)} * lowWord(b);
  const Uint128 lowHigh = Uint128{lowWord(a)} * highWord(b);
  const Uint128 highLow = Uint128{highWord(a)} * lowWord(b);
  const Uint128 highHigh = Uint128{highWord(a)} * highWord(b);
  const Uint128 middle = Uint128{highWord(lowLow)} + lowWord(lowHigh) + lowWord(highLow);
  return {highHigh + highWord(lowHigh) + highWord(highLow) + highWord(middle),
          makeUint128(lowWord(middle), lowWord(lowLow))};
}

}  // namespace DataTypes
