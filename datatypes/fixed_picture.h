#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace DataTypes {

// A picture that is nothing but literals and the fields of fixed width of a four-digit year's date
// and time (YYYY, MM, DD, HH24, MI, SS, FF, FF1 to FF9), without modifiers: its text is made of the
// pieces of one text that holds them all, YYYY-MM-DD HH:MM:SS.ffffff.
class FixedPicture {
 public:
  // This thread's picture of a text, scanned when it is first asked for. Valid until the thread
  // asks for another picture. Throws when memory runs out.
  static const FixedPicture& of(const char* picture);

  // Whether the picture is of that kind; `print` must not be called otherwise.
  bool isFixed() const { return isFixed_; }
  // The text of an instant by that picture, in microseconds on the clock of the picture's zone,
  // from 0 to the end of the year 9999. Throws when memory runs out.
  void print(long micros, std::string& out) const;

 private:
  class Compiler;

  // Bytes of the full text that stand at a place of the picture's.
  struct Piece {
    unsigned char to;
    unsigned char from;
    unsigned char length;
  };

  static const FixedPicture& other(std::string_view picture);
  void compile(std::string_view picture);

  std::string text_;      // the picture
  bool isFixed_ = true;   // as the empty picture, which no text stands for, is
  std::string literals_;  // the text with something in the place of each piece
  std::vector<Piece> pieces_;
};

// 9999-12-31 23:59:59.999999 in microseconds.
inline constexpr long kLastFixedMicros = 253402300799999999;

}  // namespace DataTypes
