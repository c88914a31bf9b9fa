#include "zeldb/display_width.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <cstdint>

namespace zeldb {
namespace {

std::size_t cellsOf(UChar32 character) {
  switch (u_charType(character)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
      return 0;
    default:
      break;
  }
  const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
  const auto characters = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  std::size_t cells = 0;
  for (std::int32_t at = 0; at < characters.length(); at = characters.moveIndex32(at, 1)) {
    cells += cellsOf(characters.char32At(at));
  }
  return cells;
}

}  // namespace zeldb
