#pragma once

// The names of all fixed decimals, made at compile time.

#include <array>
#include <cstddef>

#include "datatypes/type_code.h"

namespace DataTypes {

inline constexpr unsigned kDecimalNameSide = kMaxDecimalPrecision + 1;
inline constexpr std::size_t kDecimalNameCount =
    static_cast<std::size_t>(kDecimalNameSide) * kDecimalNameSide;

namespace detail {

using DecimalName = std::array<char, 16>;

constexpr std::size_t appendNumber(DecimalName& name, std::size_t at, unsigned number) {
  if (number >= 10) name[at++] = static_cast<char>('0' + number / 10);
  name[at++] = static_cast<char>('0' + number % 10);
  return at;
}

// "decimal(p,s)", or the empty text when the scale exceeds the precision.
constexpr DecimalName decimalName(const char* word, unsigned precision, unsigned scale) {
  DecimalName name{};
  if (scale > precision) return name;
  std::size_t at = 0;
  for (; word[at] != '\0'; ++at) name[at] = word[at];
  name[at++] = '(';
  at = appendNumber(name, at, precision);
  name[at++] = ',';
  at = appendNumber(name, at, scale);
  name[at] = ')';
  return name;
}

constexpr std::array<DecimalName, kDecimalNameCount> decimalNames(const char* word) {
  std::array<DecimalName, kDecimalNameCount> names{};
  for (unsigned i = 0; i < kDecimalNameCount; ++i)
    names[i] = decimalName(word, i / kDecimalNameSide, i % kDecimalNameSide);
  return names;
}

inline constexpr auto kLowerNames = decimalNames("decimal");
inline constexpr auto kUpperNames = decimalNames("DECIMAL");

constexpr std::array<const char*, kDecimalNameCount> pointers(
    const std::array<DecimalName, kDecimalNameCount>& names) {
  std::array<const char*, kDecimalNameCount> texts{};
  for (std::size_t i = 0; i < kDecimalNameCount; ++i) texts[i] = names[i].data();
  return texts;
}

}  // namespace detail

// Indexed by precision x 35 + scale.
inline constexpr auto decimalLower = detail::pointers(detail::kLowerNames);
inline constexpr auto decimalUpper = detail::pointers(detail::kUpperNames);

}  // namespace DataTypes
