#include "datatypes/hex_codec.h"

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>

#include "datatypes/characters.h"

namespace DataTypes {
namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

bool isSkipped(char c) {
  return c == '\t' || c == ' ' || c == '\r' || c == '\n';
}

// The value of a digit, or -1.
constexpr int nibbleOf(char c) {
  if (isDigit(c)) return c - '0';
  const char upper = toUpper(c);
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

// Decodes text piece by piece.
class HexDecoder {
 public:
  // The count of bytes is reported as an int.
  HexDecoder(unsigned char* out, std::size_t outSize)
      : out_(out), room_(outSize < INT_MAX ? outSize : INT_MAX) {}

  bool isBetweenBytes() const { return high_ < 0; }
  unsigned char* position() const { return out_ + bytes_; }
  std::size_t room() const { return room_ - bytes_; }
  void advance(std::size_t bytes) { bytes_ += bytes; }

  // Returns false, with the status set, at the first fault.
  bool decode(const char* begin, const char* end) {
    for (; begin != end; ++begin) {
      if (isSkipped(*begin)) continue;
      const int nibble = nibbleOf(*begin);
      if (nibble < 0) return fail(HexStatus::kBadCharacter);
      if (high_ < 0) {
        high_ = nibble;
        continue;
      }
      if (bytes_ == room_) return fail(HexStatus::kNoRoom);
      out_[bytes_++] = static_cast<unsigned char>(high_ << 4 | nibble);
      high_ = -1;
    }
    return true;
  }

  HexResult result() const {
    const bool isOdd = status_ == HexStatus::kOk && high_ >= 0;
    return {isOdd ? HexStatus::kOddLength : status_, bytes_};
  }

 private:
  bool fail(HexStatus status) {
    status_ = status;
    return false;
  }

  unsigned char* out_;
  std::size_t room_;
  std::size_t bytes_ = 0;
  int high_ = -1;  // the first digit of a byte
  HexStatus status_ = HexStatus::kOk;
};

constexpr std::size_t kBlockBytes = 64;         // of text a step
constexpr std::size_t kStep = kBlockBytes / 2;  // of data

// The values of 32 digits; above 15 where a character is none.
__attribute__((target("avx2"))) inline __m256i nibblesOf(__m256i chars) {
  // '0' to '9' move to the top of the range, are brought to 0xF6 to 0xFF, then to 0 to 9; all
  // others end above 9.
  const __m256i raised = _mm256_add_epi8(chars, _mm256_set1_epi8(static_cast<char>(0xFF - '9')));
  const __m256i digits = _mm256_sub_epi8(_mm256_subs_epu8(raised, _mm256_set1_epi8(6)),
                                         _mm256_set1_epi8(static_cast<char>(0xF0)));
  // Letters of both cases become 10 to 15, all others stay above.
  const __m256i upper = _mm256_and_si256(chars, _mm256_set1_epi8(static_cast<char>(0xDF)));
  const __m256i letters =
      _mm256_adds_epu8(_mm256_sub_epi8(upper, _mm256_set1_epi8('A')), _mm256_set1_epi8(10));
  return _mm256_min_epu8(digits, letters);
}

std::size_t blocks(const char* text, const char* textEnd, std::size_t blockBytes) {
  return static_cast<std::size_t>(textEnd - text) / blockBytes;
}

// Decodes blocks of 64 digits for as long as the text and `room` hold them and they are all digits;
// returns how many bytes that gave.
__attribute__((target("avx2"))) std::size_t decodeByAvx2(const char* text, const char* textEnd,
                                                         unsigned char* out, std::size_t room) {
  const __m256i weights = _mm256_set1_epi16(0x0110);   // 16 x first + second
  const __m256i toSign = _mm256_set1_epi8(0x7F - 15);  // sets the sign of what is above 15
  const std::size_t end = std::min(blocks(text, textEnd, kBlockBytes), room / kStep) * kStep;
  std::size_t bytes = 0;
  for (; bytes != end; bytes += kStep) {
    const auto* at = reinterpret_cast<const __m256i*>(text + bytes * 2);
    const __m256i first = nibblesOf(_mm256_loadu_si256(at));
    const __m256i second = nibblesOf(_mm256_loadu_si256(at + 1));
    if (_mm256_movemask_epi8(_mm256_adds_epu8(_mm256_max_epu8(first, second), toSign)) != 0) break;
    const __m256i packed = _mm256_packus_epi16(_mm256_maddubs_epi16(first, weights),
                                               _mm256_maddubs_epi16(second, weights));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + bytes),
                        _mm256_permute4x64_epi64(packed, 0xD8));
  }
  return bytes;
}

// The values of the ASCII characters; 0x80 where one is no digit.
alignas(kBlockBytes) constexpr auto kNibbles = [] {
  std::array<unsigned char, 128> nibbles{};
  for (std::size_t c = 0; c < nibbles.size(); ++c) {
    const int nibble = nibbleOf(static_cast<char>(c));
    nibbles[c] = static_cast<unsigned char>(nibble < 0 ? 0x80 : nibble);
  }
  return nibbles;
}();

// The first byte of each sum of two.
alignas(kBlockBytes) constexpr auto kEvenBytes = [] {
  std::array<unsigned char, kBlockBytes> indexes{};
  for (std::size_t i = 0; i < indexes.size(); ++i) indexes[i] = static_cast<unsigned char>(i * 2);
  return indexes;
}();

// The same for two blocks at a time, with looks into a table; no digit has a sign in the table or
// by itself, and a look does not see the sign of a character.
__attribute__((target("avx512vbmi,avx512bw"))) std::size_t decodeByAvx512(const char* text,
                                                                          const char* textEnd,
                                                                          unsigned char* out,
                                                                          std::size_t room) {
  const __m512i lower = _mm512_load_si512(kNibbles.data());
  const __m512i upper = _mm512_load_si512(kNibbles.data() + kBlockBytes);
  const __m512i evenBytes = _mm512_load_si512(kEvenBytes.data());
  const __m512i weights = _mm512_set1_epi16(0x0110);  // 16 x first + second
  const std::size_t end =
      std::min(blocks(text, textEnd, kBlockBytes * 2), room / kBlockBytes) * kBlockBytes;
  std::size_t bytes = 0;
  for (; bytes != end; bytes += kBlockBytes) {
    const __m512i chars = _mm512_loadu_si512(text + bytes * 2);
    const __m512i others = _mm512_loadu_si512(text + bytes * 2 + kBlockBytes);
    const __m512i first = _mm512_permutex2var_epi8(lower, chars, upper);
    const __m512i second = _mm512_permutex2var_epi8(lower, others, upper);
    const __m512i signs = _mm512_or_si512(_mm512_or_si512(chars, others), first);
    if (_mm512_movepi8_mask(_mm512_or_si512(signs, second)) != 0) break;
    _mm512_storeu_si512(out + bytes,
                        _mm512_permutex2var_epi8(_mm512_maddubs_epi16(first, weights), evenBytes,
                                                 _mm512_maddubs_epi16(second, weights)));
  }
  return bytes + decodeByAvx2(text + bytes * 2, textEnd, out + bytes, room - bytes);
}

std::size_t decodeNone(const char*, const char*, unsigned char*, std::size_t) {
  return 0;
}

// By HexUnit.
constexpr decltype(&decodeNone) kDecoders[] = {decodeNone, decodeByAvx2, decodeByAvx512};

// Encodes the blocks of 16 bytes that `length` holds; returns how many bytes that were.
__attribute__((target("avx2"))) std::size_t encodeBlocks(const unsigned char* data,
                                                         std::size_t length, char* out) {
  constexpr std::size_t kBytes = 16;
  const __m256i digits =
      _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kHexDigits)));
  const __m256i lowNibble = _mm256_set1_epi16(0x0F0F);
  std::size_t at = 0;
  for (; length - at >= kBytes; at += kBytes) {
    const __m256i wide =
        _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(data + at)));
    // 0x00HL becomes the bytes H and L in this order.
    const __m256i nibbles = _mm256_and_si256(
        _mm256_or_si256(_mm256_srli_epi16(wide, 4), _mm256_slli_epi16(wide, 8)), lowNibble);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + at * 2),
                        _mm256_shuffle_epi8(digits, nibbles));
  }
  return at;
}

}  // namespace

HexUnit hexUnit() {
  static const HexUnit unit =
      __builtin_cpu_supports("avx512vbmi") != 0 && __builtin_cpu_supports("avx512bw") != 0
          ? HexUnit::kAvx512
      : __builtin_cpu_supports("avx2") != 0 ? HexUnit::kAvx2
                                            : HexUnit::kNone;
  return unit;
}

HexResult decodeHexPlain(const char* text, unsigned char* out, std::size_t outSize) {
  HexDecoder decoder(out, outSize);
  decoder.decode(text, text + std::strlen(text));
  return decoder.result();
}

// A block of digits only that begins a byte and finds room gives the bytes that its digits give one
// by one; any other block is decoded digit by digit.
HexResult decodeHex(const char* text, unsigned char* out, std::size_t outSize, HexUnit unit) {
  const auto decodeBlocks = kDecoders[static_cast<int>(unit)];
  HexDecoder decoder(out, outSize);
  const char* const end = text + std::strlen(text);
  while (text != end) {
    if (decoder.isBetweenBytes()) {
      const std::size_t bytes = decodeBlocks(text, end, decoder.position(), decoder.room());
      decoder.advance(bytes);
      text += bytes * 2;
    }
    const char* const stop = text + std::min<std::ptrdiff_t>(end - text, kBlockBytes);
    if (!decoder.decode(text, stop)) break;
    text = stop;
  }
  return decoder.result();
}

void encodeHexPlain(const unsigned char* data, std::size_t length, char* out) {
  for (std::size_t i = 0; i < length; ++i) {
    out[i * 2] = kHexDigits[data[i] >> 4];
    out[i * 2 + 1] = kHexDigits[data[i] & 0xF];
  }
}

void encodeHex(const unsigned char* data, std::size_t length, char* out) {
  const std::size_t done = hexUnit() != HexUnit::kNone ? encodeBlocks(data, length, out) : 0;
  encodeHexPlain(data + done, length - done, out + done * 2);
}

}  // namespace DataTypes
