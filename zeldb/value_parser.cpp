#include "zeldb/value_parser.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "datatypes/data_types.h"
#include "zeldb/column_type.h"
#include "zeldb/moment_text.h"

namespace zeldb {
namespace {

constexpr const char* kMomentFormat = "%Y-%m-%dT%H:%M:%S";
constexpr const char* kTimeFormat = "%H:%M:%S";

constexpr const char* kTooLong = "22001";  // SQLSTATE
constexpr const char* kMidnight = "T00:00:00";
constexpr int kMaxSecondDigits = 6;

struct SpecialFloat {
  const char* text;
  double value;
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::array<SpecialFloat, 6> kSpecialFloats = {{
    {"nan", kNotANumber},
    {"-nan", kNotANumber},
    {"inf", kInfinity},
    {"-inf", -kInfinity},
    {"infinity", kInfinity},
    {"-infinity", -kInfinity},
}};

std::size_t charactersOf(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

// How many digits a decimal number has that matter.
struct DigitCount {
  unsigned integer;   // without leading zeros
  unsigned fraction;  // without trailing zeros
};

// Nothing when the text is not sign, digits, point, digits.
std::optional<DigitCount> countDigits(std::string_view text) {
  if (text.starts_with('-') || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const auto point = std::min(text.find('.'), text.size());
  std::string_view integer = text.substr(0, point);
  std::string_view fraction = text.substr(std::min(point + 1, text.size()));
  const auto allDigits = [](std::string_view digits) {
    return digits.find_first_not_of("0123456789") == std::string_view::npos;
  };
  if ((integer.empty() && fraction.empty()) || !allDigits(integer) || !allDigits(fraction)) {
    return std::nullopt;
  }
  integer.remove_prefix(std::min(integer.find_first_not_of('0'), integer.size()));
  const std::size_t kept = fraction.find_last_not_of('0') + 1;
  return DigitCount{static_cast<unsigned>(integer.size()), static_cast<unsigned>(kept)};
}

// Digits behind the point that a money or decimal type holds.
unsigned fractionDigitsOf(unsigned int type) {
  switch (DataTypes::typeNumber(type)) {
    case DataTypes::kFixedDecimal:
      return DataTypes::scaleOf(type);
    case DataTypes::kMoney:
      return static_cast<unsigned>(DataTypes::g_legacyMoneyPrecision);
    default:
      return DataTypes::typeNumber(type) - DataTypes::kMoney1 + 1;
  }
}

// Digits of a second's fraction that a date type holds.
int secondDigitsOf(unsigned int type) {
  switch (DataTypes::typeNumber(type)) {
    case DataTypes::kTimestamp:
      return 3;
    case DataTypes::kBigDateTime:
      return 6;
    default:
      return 0;
  }
}

}  // namespace

ValueParser::ValueParser(unsigned int type, const ValueLimits& limits)
    : type_(type), limits_(limits) {}

unsigned int ValueParser::valueType() const {
  return isUnsizedDecimal(type_) ? static_cast<unsigned int>(DataTypes::kString) : type_;
}

bool ValueParser::parse(const std::string& text, DataTypes::DataValue& value) {
  value.clear();
  switch (const unsigned int number = DataTypes::typeNumber(type_); number) {
    case DataTypes::kString:
      return parseString(text, value);
    case DataTypes::kBinary:
      return parseBinary(text, value);
    case DataTypes::kFloat:
      return parseFloat(text, value);
    case DataTypes::kDate:
    case DataTypes::kTimestamp:
    case DataTypes::kBigDateTime:
      return parseMoment(text, value);
    case DataTypes::kTime:
      return parseTime(text, value);
    case DataTypes::kMoney:
    case DataTypes::kFixedDecimal:
      return parseExactNumber(text, value);
    default:
      return number >= DataTypes::kMoney1 && number <= DataTypes::kMoney15
                 ? parseExactNumber(text, value)
                 : parsePlain(text, value);
  }
}

bool ValueParser::refuse(std::string reason, const char* state) {
  reason_ = std::move(reason);
  state_ = state;
  return false;
}

bool ValueParser::parseString(const std::string& text, DataTypes::DataValue& value) {
  if (text.find('\0') != std::string::npos) {
    return refuse("a string cannot hold a zero byte");
  }
  if (limits_.characters) {
    const std::size_t length = charactersOf(text);
    if (length > *limits_.characters) {
      return refuse(fmt::format("{} characters, the column holds {}", length, *limits_.characters),
                    kTooLong);
    }
  }
  if (!hasRoomFor(text)) {
    return false;
  }
  value.string = text.c_str();
  return true;
}

bool ValueParser::parseBinary(const std::string& text, DataTypes::DataValue& value) {
  bytes_.resize(text.size() / 2 + 1);
  const char* message = nullptr;
  const int length =
      DataTypes::convertBinaryFromHexString(text.c_str(), bytes_.data(), bytes_.size(), message);
  if (length < 0) {
    return refuse(message);
  }
  if (limits_.characters && static_cast<std::size_t>(length) > *limits_.characters) {
    return refuse(fmt::format("{} bytes, the column holds {}", length, *limits_.characters),
                  kTooLong);
  }
  value.binary = {bytes_.data(), static_cast<std::uint32_t>(length)};
  return true;
}

bool ValueParser::parseExactNumber(const std::string& text, DataTypes::DataValue& value) {
  const auto digits = countDigits(text);
  if (!digits) {
    return refuse("not a decimal number");
  }
  if (limits_.fractionDigits && digits->fraction > *limits_.fractionDigits) {
    return refuse(fmt::format("{} digits behind the point, the column holds {}", digits->fraction,
                              *limits_.fractionDigits));
  }
  if (isUnsizedDecimal(type_)) {
    return parseString(text, value);
  }
  const unsigned limit = fractionDigitsOf(type_);
  if (digits->fraction > limit) {
    return refuse(
        fmt::format("{} digits behind the point, the type holds {}", digits->fraction, limit));
  }
  if (DataTypes::typeNumber(type_) == DataTypes::kFixedDecimal &&
      digits->integer > DataTypes::precisionOf(type_) - limit) {
    return refuse(fmt::format("{} digits before the point, the type holds {}", digits->integer,
                              DataTypes::precisionOf(type_) - limit));
  }
  return parsePlain(text, value);
}

bool ValueParser::parseMoment(const std::string& text, DataTypes::DataValue& value) {
  const auto moment = readMoment(text);
  if (!moment) {
    return refuse("not a date and time of the form YYYY-MM-DD hh:mm:ss");
  }
  if (limits_.daysOnly && !moment->text.ends_with(kMidnight)) {
    return refuse("a time of day, the column holds dates only");
  }
  const int digits =
      std::min(secondDigitsOf(type_), limits_.secondDigits.value_or(kMaxSecondDigits));
  if (moment->fractionDigits > digits) {
    return refuse(fmt::format("{} digits of a second, the {} holds {}", moment->fractionDigits,
                              digits < secondDigitsOf(type_) ? "column" : "type", digits));
  }
  return parsePlain(moment->text, value);
}

bool ValueParser::parseTime(const std::string& text, DataTypes::DataValue& value) {
  const auto time = readTimeOfDay(text);
  return time ? parsePlain(*time, value) : refuse("not a time of the form hh:mm:ss");
}

// A column of texts or floats may stand for decimals that its database keeps as doubles.
bool ValueParser::hasRoomFor(const std::string& text) {
  const auto digits = limits_.significantDigits ? countDigits(text) : std::nullopt;
  return !digits || digits->integer + digits->fraction <= *limits_.significantDigits ||
         refuse(fmt::format("{} digits, the column holds {}", digits->integer + digits->fraction,
                            *limits_.significantDigits));
}

bool ValueParser::parseFloat(const std::string& text, DataTypes::DataValue& value) {
  const auto* const special = std::find_if(
      kSpecialFloats.begin(), kSpecialFloats.end(),
      [&](const SpecialFloat& row) { return strcasecmp(row.text, text.c_str()) == 0; });
  if (special == kSpecialFloats.end()) {
    return hasRoomFor(text) && parsePlain(text, value);
  }
  if (std::isnan(special->value) ? !limits_.notANumber : !limits_.infinity) {
    return refuse("the column cannot hold it");
  }
  value.float64 = special->value;
  return true;
}

bool ValueParser::parsePlain(const std::string& text, DataTypes::DataValue& value) {
  const char* message = "no value can be read as this type";
  if (text.find('\0') != std::string::npos ||
      !DataTypes::convertFromString(type_, text.c_str(), value, message, kMomentFormat,
                                    kMomentFormat, kMomentFormat, kTimeFormat)) {
    return refuse(message);
  }
  return true;
}

}  // namespace zeldb
