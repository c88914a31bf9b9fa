#include "datatypes/fixed_picture.h"

#include <array>
#include <cstring>

#include "datatypes/instant_text.h"
#include "datatypes/time_format_parser.h"

namespace DataTypes {

namespace {

constexpr char kFullText[] = "YYYY-MM-DD HH:MM:SS.ffffff";
constexpr std::size_t kFraction = 20;  // where the fraction stands in it
constexpr int kFullDigits = 6;
constexpr std::size_t kMostCharacters = 255;  // the pieces count them in bytes

}  // namespace

// Collects the pieces from the scan of the picture. Whatever it has no handler for is refused, and
// with it the picture.
class FixedPicture::Compiler final : public TimeFormatParser {
 public:
  explicit Compiler(FixedPicture& picture) : picture_(picture) {}

  // Handlers may throw when memory runs out.
  bool compile(std::string_view text) {
    return text.size() <= kMostCharacters && Parse(text.data(), text.size()) && !isExactMode();
  }

  void OnFieldFM() override { refuse(); }
  bool IsDone() override { return picture_.literals_.size() <= kMostCharacters; }
  // A literal that the full text has at this place as well makes the piece longer.
  void OnChar(char c) override {
    std::vector<Piece>& pieces = picture_.pieces_;
    const std::size_t from =
        pieces.empty() ? 0 : pieces.back().from + std::size_t{pieces.back().length};
    const bool goesOn = !pieces.empty() && end(pieces.back()) == picture_.literals_.size() &&
                        from < sizeof kFullText - 1 && kFullText[from] == c && isMark(c);
    if (goesOn) ++pieces.back().length;
    picture_.literals_ += c;
  }
  void OnFieldYYYY() override { add(0, 4); }
  void OnFieldMM() override { add(5, 2); }
  void OnFieldDD() override { add(8, 2); }
  void OnFieldHH24() override { add(11, 2); }
  void OnFieldMI() override { add(14, 2); }
  void OnFieldSS() override { add(17, 2); }
  void OnFieldFF() override { add(kFraction, kFullDigits); }
  void OnFieldFFn(char digit) override {
    const int digits = digit - '0';
    add(kFraction, digits < kFullDigits ? digits : kFullDigits);
    for (int i = kFullDigits; i < digits; ++i) picture_.literals_ += '0';
  }

 private:
  static std::size_t end(const Piece& piece) { return piece.to + std::size_t{piece.length}; }
  static bool isMark(char c) { return std::strchr("- :.", c) != nullptr; }

  void add(std::size_t from, int length) {
    std::vector<Piece>& pieces = picture_.pieces_;
    const std::size_t to = picture_.literals_.size();
    picture_.literals_.append(static_cast<std::size_t>(length), '0');
    if (!pieces.empty() && end(pieces.back()) == to &&
        pieces.back().from + std::size_t{pieces.back().length} == from) {
      pieces.back().length = static_cast<unsigned char>(pieces.back().length + length);
    } else {
      pieces.push_back({static_cast<unsigned char>(to), static_cast<unsigned char>(from),
                        static_cast<unsigned char>(length)});
    }
  }

  FixedPicture& picture_;
};

const FixedPicture& FixedPicture::of(const char* picture) {
  // The one that was asked for last: beside the others, since what has a destructor is checked for
  // being made at each use.
  constinit thread_local const FixedPicture* last = nullptr;
  if (last == nullptr || std::strcmp(last->text_.c_str(), picture) != 0) last = &other(picture);
  return *last;
}

const FixedPicture& FixedPicture::other(std::string_view picture) {
  constexpr std::size_t kPictures = 4;
  thread_local std::array<FixedPicture, kPictures> pictures;
  thread_local std::size_t next = 0;
  for (const FixedPicture& known : pictures) {
    if (known.text_ == picture) return known;
  }
  FixedPicture& place = pictures[next++ % kPictures];
  place.compile(picture);
  return place;
}

void FixedPicture::compile(std::string_view picture) {
  // Should memory run out, the entry is that of the empty picture.
  *this = FixedPicture();
  FixedPicture compiled;
  compiled.isFixed_ = Compiler(compiled).compile(picture);
  compiled.text_ = picture;
  *this = std::move(compiled);
}

void FixedPicture::print(long micros, std::string& out) const {
  char full[kMaxInstantText];
  printBigDateTime(micros, false, full);
  if (pieces_.size() == 1 && pieces_.front().length == literals_.size()) {
    const std::string_view text(full + pieces_.front().from, literals_.size());
    // To make a string is much cheaper than to let one grow.
    if (out.capacity() < text.size())
      out = std::string(text);
    else
      out = text;
    return;
  }
  out = literals_;
  for (const Piece& piece : pieces_) {
    std::memcpy(out.data() + piece.to, full + piece.from, piece.length);
  }
}

}  // namespace DataTypes
