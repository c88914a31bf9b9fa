#include <array>

#include "contest.h"
#include "contests.h"
#include "datatypes/data_types.h"
#include "datatypes/hex_codec.h"
#include "random_batch.h"

using namespace DataTypes;

namespace {

// Decoding by a table of nibbles, without a check for room.
bool decodeByTable(const char* text, unsigned char* out) {
  static const auto table = [] {
    std::array<signed char, 256> nibbles{};
    nibbles.fill(-1);
    for (std::size_t i = 0; i < 10; ++i) nibbles['0' + i] = static_cast<signed char>(i);
    for (std::size_t i = 0; i < 6; ++i)
      nibbles['A' + i] = nibbles['a' + i] = static_cast<signed char>(10 + i);
    return nibbles;
  }();
  for (; *text != '\0'; text += 2) {
    const signed char high = table[static_cast<unsigned char>(text[0])];
    const signed char low = table[static_cast<unsigned char>(text[1])];
    if (high < 0 || low < 0) return false;
    *out++ = static_cast<unsigned char>(high << 4 | low);
  }
  return true;
}

}  // namespace

bool hexContests() {
  constexpr std::size_t kBytes = 1024;
  static std::array<unsigned char, kBytes> data;
  for (auto& byte : data) byte = static_cast<unsigned char>(random64());
  static std::array<char, kBytes * 2 + 1> text;
  encodeHex(data.data(), kBytes, text.data());
  static std::array<unsigned char, kBytes> out;
  bool isMet =
      run({"11",
           "hex of 1 KB, encode",
           .075,
           {{"nibble table",
             [] {
               encodeHexPlain(data.data(), kBytes, text.data());
               keep(text.data());
             }},
            {"ours", [] {
               const char* message = nullptr;
               convertBinaryToHexString(text.size(), data.data(), kBytes, text.data(), message);
               keep(text.data());
             }}}});
  isMet &= run({"11",
                "hex of 1 KB, decode",
                .08,
                {{"nibble table",
                  [] {
                    decodeByTable(text.data(), out.data());
                    keep(out.data());
                  }},
                 {"ours", [] {
                    const char* message = nullptr;
                    convertBinaryFromHexString(text.data(), out.data(), kBytes, message);
                    keep(out.data());
                  }}}});
  return isMet;
}
