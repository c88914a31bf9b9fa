// Decimal, money and floating-point text: the fast forms against the plain ones.

#include <bit>

#include "datatypes/decimal_text.h"
#include "datatypes/number_text.h"
#include "fuzz_input.h"

using namespace DataTypes;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const unsigned scale = input.byte() % 64;
  const std::string text = input.rest();
  Uint128 fast = 0;
  Uint128 plain = 0;
  const bool isRead = parseDecimal(text.c_str(), static_cast<int>(scale), fast);
  require(isRead == parseDecimalPlain(text.c_str(), static_cast<int>(scale), plain));
  if (isRead) {
    require(fast == plain);
    char printed[kMaxDecimalText + 1];
    char printedPlainly[kMaxDecimalText + 1];
    const std::size_t length = printDecimal(fast, scale, printed);
    require(length == printDecimalPlain(fast, scale, printedPlainly) &&
            std::memcmp(printed, printedPlainly, length) == 0);
    printed[length] = '\0';
    Uint128 again = 0;
    require(parseDecimal(printed, static_cast<int>(scale), again) && again == fast);
  }
  long money[2] = {};
  const unsigned decimals = scale % 16;
  long factor = 1;
  for (unsigned i = 0; i < decimals; ++i) factor *= 10;
  require(parseMoney(text.c_str(), decimals, factor, money[0]) ==
          parseMoneyPlain(text.c_str(), decimals, factor, money[1]));
  require(money[0] == money[1]);
  double number[2] = {};
  require(parseDouble(text.c_str(), number[0]) == parseDoublePlain(text.c_str(), number[1]));
  require(std::bit_cast<std::uint64_t>(number[0]) == std::bit_cast<std::uint64_t>(number[1]));
  return 0;
}
