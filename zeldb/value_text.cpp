#include "zeldb/value_text.h"

#include <array>
#include <charconv>

#include "datatypes/data_types.h"

namespace zeldb {
namespace {

std::string floatText(double value) {
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return {text.data(), end};
}

std::string binaryText(const DataTypes::BinaryValue& value) {
  std::string text;
  DataTypes::convertBinaryToHexString(value.data, value.length, text);
  return text;
}

}  // namespace

std::string valueText(unsigned int type, const DataTypes::DataValue& value) {
  if (value.isNull()) {
    return {};
  }
  switch (DataTypes::typeNumber(type)) {
    case DataTypes::kString:
      return value.string;
    case DataTypes::kBinary:
      return binaryText(value.binary);
    case DataTypes::kFloat:
      return floatText(value.float64);
    default: {
      std::array<char, 64> text{};
      DataTypes::DataValue copy = value;
      DataTypes::convertToString(type, false, false, copy, text.data(), text.size() - 1);
      return text.data();
    }
  }
}

}  // namespace zeldb
