#include <cstdlib>
#include <cstring>

#include "datatypes/conversions.h"
#include "datatypes/decimal_text.h"
#include "datatypes/hex.h"
#include "datatypes/packed.h"
#include "datatypes/settings.h"
#include "datatypes/type_table.h"

namespace DataTypes {
namespace {

char* hexText(const unsigned char* packed) {
  const std::uint32_t length = getLengthFromPackedBinary(packed);
  const std::size_t bytes = std::size_t{length} * 2 + 1;
  auto* text = static_cast<char*>(std::malloc(bytes));
  const char* message = nullptr;
  if (text != nullptr)
    convertBinaryToHexString(bytes, packed + kPackedLengthBytes, length, text, message);
  return text;
}

}  // namespace

std::uint32_t getLengthFromPackedBinary(const unsigned char* packed) {
  if (packed == nullptr) return 0;
  std::uint32_t length = 0;
  for (std::size_t i = 0; i < kPackedLengthBytes; ++i) length = length << 8 | packed[i];
  return length;
}

void unpackValue(TypeEnum type, unsigned char* packed, DataValue& cell) {
  unpackValue(static_cast<const unsigned int&>(static_cast<unsigned int>(type)), packed, cell);
}

void unpackValue(const unsigned int& type, unsigned char* packed, DataValue& cell) {
  if (packed == nullptr) {
    cell.setNull();
    return;
  }
  cell.clear();
  switch (payloadOf(type)) {
    case PayloadKind::kNone:
      break;
    case PayloadKind::kText:
      cell.string = reinterpret_cast<const char*>(packed);
      break;
    case PayloadKind::kBytes:
      cell.binary.data = packed + kPackedLengthBytes;
      cell.binary.length = getLengthFromPackedBinary(packed);
      break;
    default:
      std::memcpy(cell.bytes, packed, g_column_lengths[typeNumber(type)]);
      break;
  }
  if (payloadOf(type) == PayloadKind::kDecimal && precisionOf(type) != 0) {
    cell.decimal.scale = static_cast<std::uint8_t>(scaleOf(type));
    cell.decimal.precision = static_cast<std::uint8_t>(precisionOf(type));
  }
}

char* unpackToNewString(const unsigned int& type, unsigned char* packed) {
  if (packed == nullptr) return nullptr;
  switch (payloadOf(type)) {
    case PayloadKind::kNone:
      return nullptr;
    case PayloadKind::kText:
      return ::strdup(reinterpret_cast<const char*>(packed));
    case PayloadKind::kBytes:
      return hexText(packed);
    default:
      break;
  }
  // Floats of many decimals are the longest: a magnitude up to 1e80 and the decimal size.
  const std::size_t bytes = kMaxDecimalText + g_decimalSize + 1;
  auto* text = static_cast<char*>(std::malloc(bytes));
  if (text != nullptr) convertToString(type, false, false, packed, text, bytes - 1);
  return text;
}

}  // namespace DataTypes
