#include "datatypes/hex_codec.h"

#include <immintrin.h>

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
int nibbleOf(char c) {
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

constexpr std::size_t kBlockBytes = 32;  // of text a step; half as many of data

// Decodes 32 digits; false, with nothing written, when one of them is none.
__attribute__((target("avx2"))) bool decodeBlock(const char* text, unsigned char* out) {
  const __m256i chars = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
  // Digits become 0-9; letters, brought to lower case, 0-5 above 'a'. Values out of a range wrap to
  // large unsigned ones.
  const __m256i digits = _mm256_sub_epi8(chars, _mm256_set1_epi8('0'));
  const __m256i letters =
      _mm256_sub_epi8(_mm256_or_si256(chars, _mm256_set1_epi8(0x20)), _mm256_set1_epi8('a'));
  const __m256i isDigitByte =
      _mm256_cmpeq_epi8(_mm256_min_epu8(digits, _mm256_set1_epi8(9)), digits);
  const __m256i isLetterByte =
      _mm256_cmpeq_epi8(_mm256_min_epu8(letters, _mm256_set1_epi8(5)), letters);
  if (_mm256_movemask_epi8(_mm256_or_si256(isDigitByte, isLetterByte)) != -1) return false;
  const __m256i nibbles =
      _mm256_blendv_epi8(_mm256_add_epi8(letters, _mm256_set1_epi8(10)), digits, isDigitByte);
  // 16 x first + second of each pair, then the low bytes of the 16-bit sums.
  const __m256i pairs = _mm256_maddubs_epi16(nibbles, _mm256_set1_epi16(0x0110));
  const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(pairs, pairs), 0x08);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(packed));
  return true;
}

// Encodes the blocks of 16 bytes that `length` holds; returns how many bytes that were.
__attribute__((target("avx2"))) std::size_t encodeBlocks(const unsigned char* data,
                                                         std::size_t length, char* out) {
  constexpr std::size_t kStep = kBlockBytes / 2;
  const __m256i digits =
      _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kHexDigits)));
  const __m256i lowNibble = _mm256_set1_epi16(0x0F0F);
  std::size_t at = 0;
  for (; length - at >= kStep; at += kStep) {
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

bool hasBlocks() {
  static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
  return hasAvx2;
}

}  // namespace

HexResult decodeHexPlain(const char* text, unsigned char* out, std::size_t outSize) {
  HexDecoder decoder(out, outSize);
  decoder.decode(text, text + std::strlen(text));
  return decoder.result();
}

// A block of digits only that begins a byte and finds room gives the bytes that its digits give one
// by one; any other block is decoded digit by digit.
HexResult decodeHex(const char* text, unsigned char* out, std::size_t outSize) {
  if (!hasBlocks()) return decodeHexPlain(text, out, outSize);
  HexDecoder decoder(out, outSize);
  const char* const end = text + std::strlen(text);
  while (static_cast<std::size_t>(end - text) >= kBlockBytes) {
    if (decoder.isBetweenBytes() && decoder.room() >= kBlockBytes / 2 &&
        decodeBlock(text, decoder.position()))
      decoder.advance(kBlockBytes / 2);
    else if (!decoder.decode(text, text + kBlockBytes))
      return decoder.result();
    text += kBlockBytes;
  }
  decoder.decode(text, end);
  return decoder.result();
}

void encodeHexPlain(const unsigned char* data, std::size_t length, char* out) {
  for (std::size_t i = 0; i < length; ++i) {
    out[i * 2] = kHexDigits[data[i] >> 4];
    out[i * 2 + 1] = kHexDigits[data[i] & 0xF];
  }
}

void encodeHex(const unsigned char* data, std::size_t length, char* out) {
  const std::size_t done = hasBlocks() ? encodeBlocks(data, length, out) : 0;
  encodeHexPlain(data + done, length - done, out + done * 2);
}

}  // namespace DataTypes
