// Text to a value of any type, and back.

#include <array>

#include "datatypes/data_types.h"
#include "fuzz_input.h"

using namespace DataTypes;

namespace {

// Whether the text of a value reads as the same value.
bool isExact(unsigned type) {
  switch (payloadOf(type)) {
    case PayloadKind::kInt16:
    case PayloadKind::kInt32:
    case PayloadKind::kByte:
    case PayloadKind::kDecimal:
      return true;
    case PayloadKind::kInt64:
      return familyOf(type) == TypeFamily::kInt64 || familyOf(type) == TypeFamily::kMoney ||
             familyOf(type) == TypeFamily::kInterval;
    default:
      return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  unsigned type = input.byte() % 33;
  if (type == kFixedDecimal) {
    const int precision = static_cast<int>(input.byte() % 40);
    type = createFixedDecimal(precision, static_cast<int>(input.byte() % 40));
  }
  const std::string text = input.rest();
  std::array<unsigned char, 64> packed{};
  const char* message = nullptr;
  const int bytes =
      convertFromStringAndPack(type, false, text.c_str(), packed.data(), packed.size(), message,
                               nullptr, nullptr, nullptr, nullptr);
  DataValue cell;
  cell.setNull();
  const bool isRead =
      convertFromString(type, text.c_str(), cell, message, nullptr, nullptr, nullptr, nullptr);
  char* printed = bytes >= 0 ? unpackToNewString(type, packed.data()) : nullptr;
  if (isExact(type)) {
    require(isRead == (bytes > 0));
    std::array<unsigned char, 64> again{};
    if (isRead) {
      require(convertFromStringAndPack(type, false, printed, again.data(), again.size(), message,
                                       nullptr, nullptr, nullptr, nullptr) == bytes);
      require(again == packed);
    }
  }
  std::free(printed);
  if (isRead && payloadOf(type) == PayloadKind::kText) std::free(const_cast<char*>(cell.string));
  if (isRead && payloadOf(type) == PayloadKind::kBytes)
    std::free(const_cast<unsigned char*>(cell.binary.data));
  return 0;
}
