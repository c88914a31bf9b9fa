#include "datatypes/time_format_parser.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datatypes/characters.h"

namespace DataTypes {

// A token or a literal character of a scanned picture.
struct PictureStep {
  unsigned char row;  // of the token table; kLiteral: none
  char character;     // the literal, or the digit of the token
  unsigned char letterCase;
};

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

constexpr unsigned char kLiteral = 255;
static_assert(kTokenCount < kLiteral);

// The token or literal that a picture begins with, and its length.
PictureStep scanStep(const char* picture, unsigned long length, unsigned long& stepLength) {
  stepLength = 1;
  if (!isLetter(*picture)) return {kLiteral, *picture, Parser::kMixed};
  const auto letter = static_cast<std::size_t>(toUpper(*picture) - 'A');
  for (std::size_t i = kFirstRow[letter]; i < kFirstRow[letter + 1]; ++i) {
    const unsigned long matched = matchLength(kTokens[i], picture, length);
    if (matched == 0) continue;
    stepLength = matched;
    return {static_cast<unsigned char>(i), picture[matched - 1],
            static_cast<unsigned char>(caseOf(picture, matched))};
  }
  return {kLiteral, *picture, Parser::kMixed};
}

// A picture taken apart. Pictures are used again and again, so each thread keeps the last few.
class ScannedPicture {
 public:
  // Throws when memory runs out.
  static const ScannedPicture& of(std::string_view picture) {
    constexpr std::size_t kPictures = 8;
    thread_local std::array<ScannedPicture, kPictures> pictures;
    std::size_t slot = picture.size();
    if (!picture.empty())
      slot += static_cast<unsigned char>(picture.front()) +
              3U * static_cast<unsigned char>(picture[picture.size() / 2]) +
              5U * static_cast<unsigned char>(picture.back());
    ScannedPicture& scanned = pictures[slot % kPictures];
    return scanned.text_ == picture ? scanned : scanned.scan(picture);
  }

  const std::vector<PictureStep>& steps() const { return steps_; }
  bool endsInQuote() const { return endsInQuote_; }

 private:
  const ScannedPicture& scan(std::string_view picture) {
    // Should memory run out, the entry is that of the empty picture.
    text_.clear();
    steps_.clear();
    endsInQuote_ = false;
    std::vector<PictureStep> steps;
    for (std::size_t at = 0; at < picture.size();) {
      unsigned long length = 1;
      if (picture[at] == '"')
        endsInQuote_ = !endsInQuote_;
      else if (endsInQuote_)
        steps.push_back({kLiteral, picture[at], Parser::kMixed});
      else
        steps.push_back(scanStep(picture.data() + at, picture.size() - at, length));
      at += length;
    }
    text_ = picture;
    steps_ = std::move(steps);
    return *this;
  }

  std::string text_;
  std::vector<PictureStep> steps_;
  bool endsInQuote_ = false;
};

}  // namespace

void TimeFormatParser::OnFieldFM() {
  fillMode_ = fillMode_ == 0 ? 1 : 0;
}

void TimeFormatParser::handle(const PictureStep& step) {
  if (step.row == kLiteral) return OnChar(step.character);
  const TokenRow& row = kTokens[step.row];
  switch (row.kind) {
    case TokenKind::kPlain:
      return (this->*row.plain)();
    case TokenKind::kCased:
      return (this->*row.cased)(static_cast<Case>(step.letterCase));
    case TokenKind::kDigit:
      return OnFieldFFn(step.character);
    case TokenKind::kExactMode:
      exactMode_ = exactMode_ == 0 ? 1 : 0;
      break;
  }
}

bool TimeFormatParser::Parse(const char* picture, unsigned long length) {
  const ScannedPicture& scanned = ScannedPicture::of({picture, length});
  for (const PictureStep& step : scanned.steps()) {
    handle(step);
    if (!success_) return false;
  }
  state_ = scanned.endsInQuote() ? kInQuote : kBetweenTokens;
  OnEndOfParse();
  if (!success_ || state_ != kBetweenTokens || !IsDone()) return false;
  return success_;
}

}  // namespace DataTypes
