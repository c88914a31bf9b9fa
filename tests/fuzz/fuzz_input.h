#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

// Takes the bytes of a fuzzer's input apart; reads zeros behind its end.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  unsigned byte() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }

  template <class Number>
  Number number() {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) bits |= std::uint64_t{byte()} << 8 * i;
    return static_cast<Number>(bits);
  }

  // The text up to a line feed, or up to the end.
  std::string line() {
    const void* end = size_ != 0 ? std::memchr(data_, '\n', size_) : nullptr;
    const std::size_t length =
        end != nullptr ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(end) - data_)
                       : size_;
    std::string text(reinterpret_cast<const char*>(data_), length);
    const std::size_t used = length + (end != nullptr ? 1 : 0);
    data_ += used;
    size_ -= used;
    return text;
  }

  std::string rest() {
    std::string text(reinterpret_cast<const char*>(data_), size_);
    size_ = 0;
    return text;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

// Stops the fuzzer with this input.
inline void require(bool holds) {
  if (!holds) std::abort();
}
