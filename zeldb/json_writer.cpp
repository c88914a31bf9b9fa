#include "zeldb/json_writer.h"

#include <fmt/format.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>

#include "datatypes/type_table.h"

namespace zeldb {
namespace {

struct Escape {
  char character;
  const char* text;
};

constexpr std::array<Escape, 7> kEscapes = {{
    {'"', "\\\""},
    {'\\', "\\\\"},
    {'\b', "\\b"},
    {'\f', "\\f"},
    {'\n', "\\n"},
    {'\r', "\\r"},
    {'\t', "\\t"},
}};

void appendEscaped(std::string& json, char character) {
  for (const Escape& escape : kEscapes) {
    if (escape.character == character) {
      json += escape.text;
      return;
    }
  }
  const auto byte = static_cast<unsigned char>(character);
  if (byte < ' ' || byte == 0x7F) {
    json += fmt::format("\\u{:04x}", byte);
  } else {
    json += character;
  }
}

std::string validUtf8(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), [](unsigned char byte) { return byte < 0x80; })) {
    return std::string(text);
  }
  std::string valid;
  const icu::StringPiece bytes(text.data(), static_cast<std::int32_t>(text.size()));
  return icu::UnicodeString::fromUTF8(bytes).toUTF8String(valid);
}

// Infinities and not-a-number are no JSON numbers; they become texts.
bool isBare(unsigned int type, const DataTypes::DataValue& value) {
  switch (DataTypes::payloadOf(type)) {
    case DataTypes::PayloadKind::kDouble:
      return std::isfinite(value.float64);
    case DataTypes::PayloadKind::kText:
    case DataTypes::PayloadKind::kBytes:
    case DataTypes::PayloadKind::kNone:
      return false;
    default:
      break;
  }
  switch (DataTypes::familyOf(type)) {
    case DataTypes::TypeFamily::kDate:
    case DataTypes::TypeFamily::kTimestamp:
    case DataTypes::TypeFamily::kBigDateTime:
    case DataTypes::TypeFamily::kTime:
      return false;
    default:
      return true;
  }
}

std::string jsonValue(unsigned int type, const DataTypes::DataValue& value,
                      const MomentStyle& moments) {
  if (value.isNull()) {
    return "null";
  }
  const std::string text = valueText(type, value, moments);
  return isBare(type, value) ? text : jsonString(text);
}

}  // namespace

std::string jsonString(std::string_view text) {
  std::string json = "\"";
  for (const char character : validUtf8(text)) {
    appendEscaped(json, character);
  }
  return json + '"';
}

void JsonWriter::begin(const std::vector<ResultColumn>& columns) {
  for (const ResultColumn& column : columns) {
    types_.push_back(column.type);
    keys_.push_back(jsonString(column.name) + ':');
  }
  if (layout_ == JsonLayout::kArray) {
    out_ << '[';
  }
}

void JsonWriter::row(std::span<const DataTypes::DataValue> values) {
  object_ = layout_ == JsonLayout::kLines ? "{" : empty_ ? "\n{" : ",\n{";
  for (std::size_t at = 0; at < types_.size(); ++at) {
    object_ += at == 0 ? "" : ",";
    object_ += keys_[at];
    object_ += jsonValue(types_[at], values[at], moments_);
  }
  object_ += layout_ == JsonLayout::kLines ? "}\n" : "}";
  out_ << object_;
  empty_ = false;
}

void JsonWriter::end() {
  if (layout_ == JsonLayout::kArray) {
    out_ << (empty_ ? "]\n" : "\n]\n");
  }
}

}  // namespace zeldb
