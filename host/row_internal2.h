#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace KORVEX::Zel::DB {

// A packed row of the second generation: one block from malloc that starts with this header.
// Behind it stands the offset table, one signed 32-bit offset a column and one for the end, counted
// from the start of the block; 0 or less means NULL. Values stand in their packed form, unaligned.
struct RowInternal2 {
  std::uint32_t totalBytes;  // of the whole block
  std::uint32_t word4;       // 1
  std::uint32_t word8;       // 0
  std::uint32_t columns;     // in the low 24 bits
  std::uint32_t zero[8];

  static constexpr std::size_t kHeaderBytes = 48;
  static constexpr std::uint32_t kColumnCountMask = 0x00FFFFFF;

  std::uint32_t columnCount() const { return columns & kColumnCountMask; }

  // The offset of a column's value (from 0; columnCount() gives the end of the data).
  std::int32_t offset(std::size_t column) const {
    std::int32_t value = 0;
    std::memcpy(&value, base() + kHeaderBytes + column * sizeof value, sizeof value);
    return value;
  }

  // The packed value of a column, or null for NULL.
  const unsigned char* value(std::size_t column) const {
    const std::int32_t at = offset(column);
    return at > 0 ? base() + at : nullptr;
  }

 private:
  const unsigned char* base() const { return reinterpret_cast<const unsigned char*>(this); }
};

static_assert(sizeof(RowInternal2) == RowInternal2::kHeaderBytes);

}  // namespace KORVEX::Zel::DB
