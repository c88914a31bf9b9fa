#include "zeldb/type_inference.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <regex>
#include <string_view>

#include "datatypes/type_code.h"
#include "zeldb/moment_text.h"

namespace zeldb {
namespace {

constexpr unsigned kSmallDigits = 15;  // that a double keeps, too
constexpr std::size_t kDayLength = 10;
constexpr int kSecondDigits = 6;  // of a second's fraction

template <typename Number>
bool isWhole(const std::string& text) {
  Number number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool isWord(const std::string& text, std::string_view word) {
  return text.size() == word.size() && strncasecmp(text.data(), word.data(), word.size()) == 0;
}

bool startsLikeNumber(const std::string& text) {
  return text[0] == '-' || (text[0] >= '0' && text[0] <= '9');
}

}  // namespace

void TypeInference::add(const std::string& text) {
  ++texts_;
  boolean_ = boolean_ && (isWord(text, "true") || isWord(text, "false"));
  if (decimal_ || float_) {
    addNumber(text);
  }
  if (moment_) {
    const auto moment = readMoment(text);
    moment_ = moment && moment->fractionDigits <= kSecondDigits;
    day_ = day_ && moment_ && text.size() == kDayLength;
  }
  time_ = time_ && readTimeOfDay(text) == text;
}

void TypeInference::addNumber(const std::string& text) {
  static const std::regex number(R"(-?(0|[1-9]\d*)(?:\.(\d+))?(e[+-]?\d+)?)",
                                 std::regex::icase | std::regex::optimize);
  std::smatch parts;
  if (text.empty() || !startsLikeNumber(text) || !std::regex_match(text, parts, number)) {
    decimal_ = integer_ = long_ = false;
    float_ = float_ && (isWord(text, "nan") || isWord(text, "inf") || isWord(text, "-inf"));
    return;
  }
  decimal_ = decimal_ && parts.length(3) == 0;
  long_ = long_ && isWhole<std::int64_t>(text);
  integer_ = integer_ && isWhole<std::int32_t>(text);
  integerDigits_ = std::max(integerDigits_, static_cast<unsigned>(parts.length(1)));
  fractionDigits_ = std::max(fractionDigits_, static_cast<unsigned>(parts.length(2)));
  float_ = float_ && integerDigits_ + fractionDigits_ <= kSmallDigits + 1;
}

unsigned int TypeInference::type() const {
  const unsigned digits = integerDigits_ + fractionDigits_;
  const unsigned precision =
      digits <= kSmallDigits ? kSmallDigits : DataTypes::kMaxDecimalPrecision;
  const bool fits = digits <= precision;
  struct Candidate {
    bool holds;
    unsigned int type;
  };
  const Candidate candidates[] = {
      {texts_ == 0, DataTypes::kString},
      {boolean_, DataTypes::kBoolean},
      {integer_, DataTypes::kInteger},
      {long_, DataTypes::kLong},
      {decimal_ && fits, DataTypes::createFixedDecimal(static_cast<int>(precision),
                                                       static_cast<int>(fractionDigits_))},
      {float_ && !decimal_, DataTypes::kFloat},
      {day_ && moment_, DataTypes::kDate},
      {moment_, DataTypes::kBigDateTime},
      {time_, DataTypes::kTime},
      {true, DataTypes::kString},
  };
  return std::find_if(std::begin(candidates), std::end(candidates),
                      [](const Candidate& candidate) { return candidate.holds; })
      ->type;
}

}  // namespace zeldb
