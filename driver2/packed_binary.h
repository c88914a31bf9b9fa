#pragma once

#include <cstddef>
#include <cstdint>

namespace KORVEX::Zel::DB::ODBC {

// A packed binary value is its length, most significant byte first, and its bytes.
inline constexpr std::size_t kPackedLengthBytes = 4;

inline void storePackedLength(unsigned char* packed, std::uint32_t lengthBytes) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    *packed++ = static_cast<unsigned char>(lengthBytes >> shift);
  }
}

}  // namespace KORVEX::Zel::DB::ODBC
