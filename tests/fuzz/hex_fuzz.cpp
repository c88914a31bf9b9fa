// Hexadecimal text: the fast forms against the plain ones, and bytes back to text.

#include <vector>

#include "datatypes/hex_codec.h"
#include "fuzz_input.h"

using namespace DataTypes;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const std::size_t room = input.byte();
  const std::string text = input.rest();
  std::vector<unsigned char> fast(room);
  std::vector<unsigned char> plain(room);
  const HexResult result = decodeHex(text.c_str(), fast.data(), room);
  const HexResult expected = decodeHexPlain(text.c_str(), plain.data(), room);
  require(result.status == expected.status && result.bytes == expected.bytes && fast == plain);

  std::string encoded(result.bytes * 2, '\0');
  encodeHex(fast.data(), result.bytes, encoded.data());
  std::vector<unsigned char> again(result.bytes);
  require(decodeHex(encoded.c_str(), again.data(), again.size()).status == HexStatus::kOk);
  fast.resize(result.bytes);
  require(again == fast);
  return 0;
}
