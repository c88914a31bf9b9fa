// A strptime format and a text, one line each; the fast reading of dates against the plain one.

#include "datatypes/instant_text.h"
#include "datatypes/time_text.h"
#include "fuzz_input.h"

using namespace DataTypes;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  std::string format = input.line();
  if (format == "T") format = "%Y-%m-%dT%H:%M:%S";
  const std::string text = input.rest();
  const char* const begin = text.c_str();
  std::tm t{};
  const char* rest = DataTypes::strptime(begin, format.c_str(), &t);
  require(rest == nullptr || (rest >= begin && rest <= begin + text.size()));
  for (const InstantUnit* unit : {&kTimestampUnit, &kBigDateTimeUnit}) {
    long fast = 0;
    long plain = 0;
    require(parseInstant(begin, *unit, format.c_str(), fast) ==
            parseInstantPlain(begin, *unit, format.c_str(), plain));
    require(fast == plain);
  }
  return 0;
}
