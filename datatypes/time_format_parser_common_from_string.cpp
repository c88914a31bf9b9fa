#include "datatypes/time_format_parser_common_from_string.h"

#include "datatypes/characters.h"

namespace DataTypes {

void TimeFormatParser_CommonFromString::skipWhiteSpace() {
  while (!isAtEnd() && isWhiteSpace(current())) ++position_;
}

bool TimeFormatParser_CommonFromString::IsDone() {
  if (!isExactMode()) skipWhiteSpace();
  return isAtEnd();
}

void TimeFormatParser_CommonFromString::OnChar(char c) {
  if (isWhiteSpace(c)) {
    const bool matches = !isAtEnd() && isWhiteSpace(current());
    // Kept: outside exact mode a blank of the picture skips any one character.
    if (!matches && isExactMode()) return refuse();
    if (!isAtEnd()) ++position_;
    return;
  }
  if (!isExactMode()) skipWhiteSpace();
  if (isAtEnd()) return refuse();
  // Kept: outside exact mode any punctuation matches any punctuation.
  const bool matches =
      current() == c || (!isExactMode() && isPunctuation(c) && isPunctuation(current()));
  if (!matches) return refuse();
  ++position_;
}

}  // namespace DataTypes
