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

// Decodes a NUL-terminated text, skipping tabs, blanks, carriage returns and line feeds.
HexResult decodeHexPlain(const char* text, unsigned char* out, std::size_t outSize);
HexResult decodeHex(const char* text, unsigned char* out, std::size_t outSize);

// Writes two capital digits a byte, without a terminator.
void encodeHexPlain(const unsigned char* data, std::size_t length, char* out);
void encodeHex(const unsigned char* data, std::size_t length, char* out);

}  // namespace DataTypes
