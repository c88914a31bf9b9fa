#pragma once

#include <cstdlib>
#include <memory>

namespace KORVEX::Zel::DB::ODBC {

struct Freer {
  void operator()(void* block) const { std::free(block); }
};

// A block from malloc, as the server takes over texts, bytes and rows.
using MallocBlock = std::unique_ptr<unsigned char, Freer>;

// Null when there is no memory.
inline MallocBlock allocateBlock(std::size_t bytes) {
  return MallocBlock(static_cast<unsigned char*>(std::malloc(bytes)));
}

// Makes the block larger; false, with the block as it was, when there is no memory.
inline bool growBlock(MallocBlock& block, std::size_t bytes) {
  void* larger = std::realloc(block.get(), bytes);
  if (larger == nullptr) return false;
  [[maybe_unused]] const unsigned char* moved = block.release();
  block.reset(static_cast<unsigned char*>(larger));
  return true;
}

}  // namespace KORVEX::Zel::DB::ODBC
