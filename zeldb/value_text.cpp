#include "zeldb/value_text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cstdlib>

#include "datatypes/data_types.h"

namespace zeldb {
namespace {

constexpr std::int64_t kMicrosPerSecond = 1000000;
constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::size_t kDayLength = 10;  // YYYY-MM-DD

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

std::string plainText(unsigned int type, DataTypes::DataValue value) {
  std::array<char, 64> text{};
  DataTypes::convertToString(type, false, false, value, text.data(), text.size() - 1);
  return text.data();
}

// How a type counts instants. The driver reads columns of days as the types marked so.
struct MomentType {
  unsigned int number;
  std::int64_t unitsPerSecond;
  bool mayBeDay;
};

constexpr std::array<MomentType, 3> kMomentTypes = {{
    {DataTypes::kDate, 1, true},
    {DataTypes::kTimestamp, 1000, true},
    {DataTypes::kBigDateTime, kMicrosPerSecond, false},
}};

const MomentType* momentType(unsigned int type) {
  for (const MomentType& row : kMomentTypes) {
    if (row.number == DataTypes::typeNumber(type)) {
      return &row;
    }
  }
  return nullptr;
}

std::int64_t offsetSeconds(std::int64_t utcSeconds, const std::string& zone) {
  std::int64_t utcMicros = 0;
  long local = 0;
  if (__builtin_mul_overflow(utcSeconds, kMicrosPerSecond, &utcMicros) ||
      !DataTypes::toTimeZone(utcMicros, nullptr, zone.c_str(), local)) {
    return 0;
  }
  return (local - utcMicros) / kMicrosPerSecond;
}

std::string offsetText(std::int64_t seconds) {
  const auto magnitude = std::abs(seconds);
  const std::string text =
      fmt::format("{}{:02}:{:02}", seconds < 0 ? '-' : '+', magnitude / 3600, magnitude / 60 % 60);
  // Local mean times of the time before zones.
  return magnitude % 60 == 0 ? text : fmt::format("{}:{:02}", text, magnitude % 60);
}

std::string momentText(unsigned int type, const MomentType& row, DataTypes::DataValue value,
                       const MomentStyle& style) {
  if (row.mayBeDay && value.int64 % (row.unitsPerSecond * kSecondsPerDay) == 0) {
    return plainText(type, value).substr(0, kDayLength);
  }
  std::string mark = style.utcMark;
  if (!style.zone.empty()) {
    const std::int64_t fraction = value.int64 % row.unitsPerSecond;
    const std::int64_t seconds = value.int64 / row.unitsPerSecond - (fraction < 0 ? 1 : 0);
    const std::int64_t offset = offsetSeconds(seconds, style.zone);
    value.int64 += offset * row.unitsPerSecond;
    mark = offsetText(offset);
  }
  std::string text = plainText(type, value);
  const std::size_t blank = text.find(' ');
  if (blank != std::string::npos) {
    text[blank] = style.separator;
  }
  return text + mark;
}

}  // namespace

std::string valueText(unsigned int type, const DataTypes::DataValue& value,
                      const MomentStyle& style) {
  if (value.isNull()) {
    return {};
  }
  if (const MomentType* const row = momentType(type); row != nullptr) {
    return momentText(type, *row, value, style);
  }
  switch (DataTypes::typeNumber(type)) {
    case DataTypes::kString:
      return value.string;
    case DataTypes::kBinary:
      return binaryText(value.binary);
    case DataTypes::kFloat:
      return floatText(value.float64);
    default:
      return plainText(type, value);
  }
}

}  // namespace zeldb
