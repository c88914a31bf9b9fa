#pragma once

#include <cstddef>
#include <string_view>

#include "datatypes/time_format_parser.h"

namespace DataTypes {

// Reads a text by a picture: literal characters and the end of the text.
class TimeFormatParser_CommonFromString : public TimeFormatParser {
 public:
  // Whether the text is used up; outside exact mode trailing white space does not matter.
  bool IsDone() override;

  // Matches a literal character of the picture. Outside exact mode white space before it is skipped
  // and any punctuation matches any other.
  void OnChar(char c) override;

 protected:
  explicit TimeFormatParser_CommonFromString(std::string_view text) : text_(text) {}
  ~TimeFormatParser_CommonFromString() = default;

  bool isAtEnd() const { return position_ == text_.size(); }
  char current() const { return text_[position_]; }
  void advance(std::size_t count) { position_ += count; }
  std::string_view rest() const { return text_.substr(position_); }
  void skipWhiteSpace();

 private:
  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace DataTypes
