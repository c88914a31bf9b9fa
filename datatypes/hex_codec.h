#pragma once

// Hexadecimal digits without messages. The fast forms use what the processor offers and give the
// results of the plain forms beside them.

#include <cstddef>

namespace DataTypes {

enum class HexStatus { kOk, kBadCharacter, kOddLength, kNoRoom };

struct HexResult {
  HexStatus status;
  std::size_t bytes;  // decoded
};

// What of the processor works on blocks of digits; each one has what those before it have.
enum class HexUnit { kNone, kAvx2, kAvx512 };

// The best one that this processor has.
HexUnit hexUnit();

// Decodes a NUL-terminated text, skipping tabs, blanks, carriage returns and line feeds.
HexResult decodeHexPlain(const char* text, unsigned char* out, std::size_t outSize);
HexResult decodeHex(const char* text, unsigned char* out, std::size_t outSize,
                    HexUnit unit = hexUnit());

// Writes two capital digits a byte, without a terminator.
void encodeHexPlain(const unsigned char* data, std::size_t length, char* out);
void encodeHex(const unsigned char* data, std::size_t length, char* out);

}  // namespace DataTypes
