#include "datatypes/types.h"

#include <cstdlib>
#include <new>
#include <string_view>

#include "datatypes/decimal_names.h"

namespace DataTypes {
namespace {

std::string toText(const char* text) {
  try {
    return text;
  } catch (const std::bad_alloc&) {
    return {};
  }
}

const char* decimalText(const std::array<const char*, kDecimalNameCount>& names, unsigned type) {
  const unsigned precision = precisionOf(type);
  const unsigned scale = scaleOf(type);
  if (precision > kMaxDecimalPrecision || scale > precision) return "";
  return names[precision * kDecimalNameSide + scale];
}

std::string nameOf(unsigned type, const char* TypeRow::* name,
                   const std::array<const char*, kDecimalNameCount>& decimals) {
  if (typeNumber(type) == kFixedDecimal) return toText(decimalText(decimals, type));
  const TypeRow* row = typeRow(type);
  return toText((row != nullptr ? *row : kTypeTable[kUnknown]).*name);
}

bool hasClass(unsigned type, std::uint8_t classBit) {
  const TypeRow* row = typeRow(type);
  return row != nullptr && (row->classes & classBit) != 0;
}

// Names in the order in which they are compared.
struct NamedType {
  std::string_view name;
  TypeEnum type;
};

constexpr NamedType kScalarNames[] = {
    {"boolean", kBoolean},     {"int16", kInt16},
    {"int32", kInteger},       {"integer", kInteger},
    {"int64", kLong},          {"long", kLong},
    {"money", kMoney},         {"interval", kInterval},
    {"double", kFloat},        {"float", kFloat},
    {"time", kTime},           {"date", kDate},
    {"timestamp", kTimestamp}, {"bigdatetime", kBigDateTime},
    {"string", kString},       {"binary", kBinary},
};

// The number behind the character `open`, read up to the first `close` of the whole text.
int decimalParameter(const std::string& name, char open, char close) {
  const std::size_t begin = name.find(open);
  if (begin == std::string::npos) return 0;
  const std::size_t end = name.find(close);
  if (end != std::string::npos && end < begin) return 0;
  // Neither blanks nor digits contain `close`, so strtol stops at it by itself.
  return static_cast<int>(std::strtol(name.c_str() + begin + 1, nullptr, 10));
}

}  // namespace

std::string typeToString(const unsigned int& type) {
  return nameOf(type, &TypeRow::name, decimalLower);
}

std::string typeToStringUpper(const unsigned int& type) {
  return nameOf(type, &TypeRow::upperName, decimalUpper);
}

std::string typeToLegacyString(const unsigned int& type) {
  return nameOf(type, &TypeRow::legacyName, decimalLower);
}

std::string typeToLegacyStringUpper(const unsigned int& type) {
  return nameOf(type, &TypeRow::legacyUpperName, decimalUpper);
}

std::string typeToTypeConstString(const unsigned int& type) {
  const TypeRow* row = typeRow(type);
  return toText((row != nullptr ? *row : kTypeTable[kUnknown]).constName);
}

unsigned int stringToType(const std::string& name) {
  for (const NamedType& known : kScalarNames)
    if (known.name == name) return known.type;
  for (unsigned type = kMoney1; type <= kMoney15; ++type)
    if (kTypeTable[type].name == std::string_view(name)) return type;
  if (name.find("decimal") == std::string::npos) return kUnknown;
  return createFixedDecimal(decimalParameter(name, '(', ','), decimalParameter(name, ',', ')'));
}

bool numericType(const unsigned int& type) {
  return hasClass(type, kNumericClass);
}

bool integerType(const unsigned int& type) {
  return hasClass(type, kIntegerClass);
}

bool genericDateType(const unsigned int& type) {
  return hasClass(type, kGenericDateClass);
}

unsigned int getAlignment(const unsigned int& type) {
  const TypeRow* row = typeRow(type);
  return row != nullptr && row->bufferLength != 0 ? row->bufferLength : 1;
}

unsigned int getAlignmentMask(const unsigned int& type) {
  return getAlignment(type) - 1;
}

}  // namespace DataTypes
