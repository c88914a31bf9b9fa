#pragma once

#include <cstddef>
#include <functional>
#include <random>
#include <vector>

// Random values to work on, the same in each run.

inline constexpr std::size_t kBatch = 1024;
inline constexpr long kLast = 4102444800000;  // 2100, in milliseconds

inline std::mt19937_64 random64(1);

template <class Make>
auto batchOf(Make make) {
  std::vector<decltype(make())> values(kBatch);
  for (auto& value : values) value = make();
  return values;
}

template <class Values, class Work>
std::function<void()> forAll(Values& values, Work work) {
  return [&values, work] {
    for (auto& value : values) work(value);
  };
}
