// Prints a value by a picture, reads the text back by the picture, and reads any text by it.

#include <array>

#include "datatypes/data_types.h"
#include "fuzz_input.h"

using namespace DataTypes;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr std::array<const char*, 5> kZones = {nullptr, "Europe/Paris", "",
                                                        "America/St_Johns", "Mars/Phobos"};
  FuzzInput input(data, size);
  const unsigned choice = input.byte();
  const char* zone = kZones[choice % kZones.size()];
  const long value = input.number<long>() >> (choice / 8);
  const std::string picture = input.line();
  const std::string text = input.rest();
  std::string printed;
  long read = 0;
  for (const auto print : {TimestampToString, DateToString, BigDateTimeToString})
    print(value, picture.c_str(), zone, printed);
  for (const auto parse :
       {TimestampFromString, DateFromString, TimeFromString, BigDateTimeFromString}) {
    parse(printed.c_str(), picture.c_str(), read);
    parse(text.c_str(), picture.c_str(), read);
  }
  return 0;
}
