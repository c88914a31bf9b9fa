#include "datatypes/hex_codec.h"

#include <climits>

#include "datatypes/characters.h"

namespace DataTypes {
namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

bool isSkipped(char c) {
  return c == '\t' || c == ' ' || c == '\r' || c == '\n';
}

// The value of a digit, or -1.
int nibbleOf(char c) {
  if (isDigit(c)) return c - '0';
  const char upper = toUpper(c);
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

}  // namespace

HexResult decodeHexPlain(const char* text, unsigned char* out, std::size_t outSize) {
  // The count is reported as an int.
  if (outSize > INT_MAX) outSize = INT_MAX;
  std::size_t bytes = 0;
  int high = -1;
  for (; *text != '\0'; ++text) {
    if (isSkipped(*text)) continue;
    const int nibble = nibbleOf(*text);
    if (nibble < 0) return {HexStatus::kBadCharacter, bytes};
    if (high < 0) {
      high = nibble;
      continue;
    }
    if (bytes == outSize) return {HexStatus::kNoRoom, bytes};
    out[bytes++] = static_cast<unsigned char>(high << 4 | nibble);
    high = -1;
  }
  return {high < 0 ? HexStatus::kOk : HexStatus::kOddLength, bytes};
}

HexResult decodeHex(const char* text, unsigned char* out, std::size_t outSize) {
  return decodeHexPlain(text, out, outSize);
}

void encodeHexPlain(const unsigned char* data, std::size_t length, char* out) {
  for (std::size_t i = 0; i < length; ++i) {
    out[i * 2] = kHexDigits[data[i] >> 4];
    out[i * 2 + 1] = kHexDigits[data[i] & 0xF];
  }
}

void encodeHex(const unsigned char* data, std::size_t length, char* out) {
  encodeHexPlain(data, length, out);
}

}  // namespace DataTypes
