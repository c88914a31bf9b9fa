#pragma once

// Bytes as hexadecimal text.

#include <cstddef>
#include <cstdint>
#include <string>

namespace DataTypes {

// Decodes hexadecimal text, in capitals or not; white space is skipped anywhere. Returns the number
// of bytes, or -1 with `message` set: "Invalid hex character", "Output buffer too small", "Odd
// number of characters in hex string". The bytes before the fault have been written then.
int convertBinaryFromHexString(const char* text, unsigned char* out, std::size_t outSize,
                               const char*& message);

// Writes two capital digits a byte and a NUL. Returns the number of digits, or -1 with `message`
// set when outSize is below 2 x length + 1; nothing is written then.
int convertBinaryToHexString(std::size_t outSize, const unsigned char* data, std::uint32_t length,
                             char* out, const char*& message);

// The same into a string, which is empty afterwards when memory runs out.
void convertBinaryToHexString(const unsigned char* data, std::uint32_t length, std::string& out);

// Half the length of the text; 0 for null.
std::size_t getBinaryDataSizeFromHexString(const char* text);

// c + 1 when b is 0, else c + (a / b) x 2 + 3.
std::size_t getHexStringSizeForBuffer(std::size_t a, std::size_t b, std::size_t c);

}  // namespace DataTypes
