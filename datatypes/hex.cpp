#include "datatypes/hex.h"

#include <climits>
#include <cstring>
#include <exception>

#include "datatypes/hex_codec.h"

namespace DataTypes {

int convertBinaryFromHexString(const char* text, unsigned char* out, std::size_t outSize,
                               const char*& message) {
  if (text == nullptr) return 0;
  switch (const HexResult result = decodeHex(text, out, outSize); result.status) {
    case HexStatus::kOk:
      return static_cast<int>(result.bytes);
    case HexStatus::kBadCharacter:
      message = "Invalid hex character";
      break;
    case HexStatus::kOddLength:
      message = "Odd number of characters in hex string";
      break;
    case HexStatus::kNoRoom:
      message = "Output buffer too small";
      break;
  }
  return -1;
}

int convertBinaryToHexString(std::size_t outSize, const unsigned char* data, std::uint32_t length,
                             char* out, const char*& message) {
  const std::size_t digits = std::size_t{length} * 2;
  // The count of digits is returned as an int.
  if (outSize < digits + 1 || digits > INT_MAX) {
    message = "output buffer is too small for binary to hex-string conversion";
    return -1;
  }
  encodeHex(data, length, out);
  out[digits] = '\0';
  return static_cast<int>(digits);
}

void convertBinaryToHexString(const unsigned char* data, std::uint32_t length, std::string& out) {
  try {
    out.resize(std::size_t{length} * 2);
    encodeHex(data, length, out.data());
  } catch (const std::exception&) {
    out.clear();
  }
}

std::size_t getBinaryDataSizeFromHexString(const char* text) {
  return text != nullptr ? std::strlen(text) / 2 : 0;
}

std::size_t getHexStringSizeForBuffer(std::size_t a, std::size_t b, std::size_t c) {
  return b == 0 ? c + 1 : c + a / b * 2 + 3;
}

}  // namespace DataTypes
