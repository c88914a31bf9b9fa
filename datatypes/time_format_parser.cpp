#include "datatypes/time_format_parser.h"

#include <array>
#include <cstddef>

#include "datatypes/characters.h"

namespace DataTypes {
namespace {

using Parser = TimeFormatParser;

enum class TokenKind : unsigned char { kPlain, kCased, kDigit, kExactMode };

struct TokenRow {
  const char* text;
  TokenKind kind = TokenKind::kPlain;
  void (Parser::*plain)() = nullptr;
  void (Parser::*cased)(Parser::Case) = nullptr;
};

constexpr TokenRow plain(const char* text, void (Parser::*handler)()) {
  return {text, TokenKind::kPlain, handler, nullptr};
}

constexpr TokenRow cased(const char* text, void (Parser::*handler)(Parser::Case)) {
  return {text, TokenKind::kCased, nullptr, handler};
}

// Within a letter the longest come first, so that the first match is the longest complete token; a
// token that breaks off leaves its remaining letters to be read again. '#' is a digit from 1 to 9.
constexpr TokenRow kTokens[] = {
    cased("AM", &Parser::OnFieldAM),       plain("DAYS", &Parser::OnFieldDAYS),
    cased("DAY", &Parser::OnFieldDAY),     plain("DDD", &Parser::OnFieldDDD),
    plain("DD", &Parser::OnFieldDD),       cased("DY", &Parser::OnFieldDY),
    plain("D", &Parser::OnFieldD),         {"FF#", TokenKind::kDigit},
    plain("FF", &Parser::OnFieldFF),       plain("FM", &Parser::OnFieldFM),
    {"FX", TokenKind::kExactMode},         plain("HOURS", &Parser::OnFieldHOURS),
    plain("HH12", &Parser::OnFieldHH12),   plain("HH24", &Parser::OnFieldHH24),
    plain("HH", &Parser::OnFieldHH),       plain("MINUTES", &Parser::OnFieldMINUTES),
    cased("MONTH", &Parser::OnFieldMONTH), plain("MIC", &Parser::OnFieldMIC),
    cased("MON", &Parser::OnFieldMON),     plain("MI", &Parser::OnFieldMI),
    plain("MM", &Parser::OnFieldMM),       plain("MS", &Parser::OnFieldMS),
    cased("PM", &Parser::OnFieldPM),       plain("Q", &Parser::OnFieldQ),
    plain("RRRR", &Parser::OnFieldRRRR),   cased("RM", &Parser::OnFieldRM),
    plain("RR", &Parser::OnFieldRR),       plain("SECONDS", &Parser::OnFieldSECONDS),
    plain("SSSSS", &Parser::OnFieldSSSSS), plain("SE", &Parser::OnFieldSE),
    plain("SS", &Parser::OnFieldSS),       plain("TZD", &Parser::OnFieldTZD),
    plain("TZH", &Parser::OnFieldTZH),     plain("TZM", &Parser::OnFieldTZM),
    plain("TZR", &Parser::OnFieldTZR),     plain("WW", &Parser::OnFieldWW),
    plain("W", &Parser::OnFieldW),         plain("YYYY", &Parser::OnFieldYYYY),
    plain("YYY", &Parser::OnFieldYYY),     plain("YY", &Parser::OnFieldYY),
    plain("Y", &Parser::OnFieldY),
};
constexpr std::size_t kTokenCount = sizeof kTokens / sizeof *kTokens;

// The first row of each letter; entry 26 is the end.
constexpr auto kFirstRow = [] {
  std::array<unsigned char, 27> first{};
  std::size_t row = 0;
  for (std::size_t letter = 0; letter < 27; ++letter) {
    while (row < kTokenCount && kTokens[row].text[0] < static_cast<char>('A' + letter)) ++row;
    first[letter] = static_cast<unsigned char>(row);
  }
  return first;
}();

// The length of the token when the picture begins with it, else 0.
unsigned long matchLength(const TokenRow& row, const char* picture, unsigned long length) {
  unsigned long at = 0;
  for (; row.text[at] != '\0'; ++at) {
    if (at == length) return 0;
    const bool isDigitPlace = row.text[at] == '#';
    const bool matches = isDigitPlace ? picture[at] >= '1' && picture[at] <= '9'
                                      : toUpper(picture[at]) == row.text[at];
    if (!matches) return 0;
  }
  return at;
}

Parser::Case caseOf(const char* token, unsigned long length) {
  unsigned long upper = 0;
  for (unsigned long i = 0; i < length; ++i) upper += isUpper(token[i]) ? 1 : 0;
  if (upper == length) return Parser::kUpper;
  return upper == 0 ? Parser::kLower : Parser::kMixed;
}

}  // namespace

void TimeFormatParser::OnFieldFM() {
  fillMode_ = fillMode_ == 0 ? 1 : 0;
}

unsigned long TimeFormatParser::scanToken(const char* picture, unsigned long length) {
  if (!isLetter(*picture)) {
    OnChar(*picture);
    return 1;
  }
  const auto letter = static_cast<std::size_t>(toUpper(*picture) - 'A');
  for (std::size_t i = kFirstRow[letter]; i < kFirstRow[letter + 1]; ++i) {
    const TokenRow& row = kTokens[i];
    const unsigned long matched = matchLength(row, picture, length);
    if (matched == 0) continue;
    switch (row.kind) {
      case TokenKind::kPlain:
        (this->*row.plain)();
        break;
      case TokenKind::kCased:
        (this->*row.cased)(caseOf(picture, matched));
        break;
      case TokenKind::kDigit:
        OnFieldFFn(picture[matched - 1]);
        break;
      case TokenKind::kExactMode:
        exactMode_ = exactMode_ == 0 ? 1 : 0;
        break;
    }
    return matched;
  }
  OnChar(*picture);
  return 1;
}

bool TimeFormatParser::Parse(const char* picture, unsigned long length) {
  for (unsigned long at = 0; at < length;) {
    if (picture[at] == '"') {
      state_ = state_ == kInQuote ? kBetweenTokens : kInQuote;
      ++at;
    } else if (state_ == kInQuote) {
      OnChar(picture[at++]);
    } else {
      at += scanToken(picture + at, length - at);
    }
    if (!success_) return false;
  }
  OnEndOfParse();
  if (!success_ || state_ != kBetweenTokens || !IsDone()) return false;
  return success_;
}

}  // namespace DataTypes
