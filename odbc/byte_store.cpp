#include "odbc/byte_store.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>

namespace KORVEX::Zel::DB::ODBC {

namespace {

// Spare bytes that every growth leaves, and one for the terminator.
constexpr std::uint32_t kSlackBytes = 1024 + 1;
// Blocks from this size on grow by half of themselves, so that a long value that arrives in many
// pieces is not copied once a piece.
constexpr std::size_t kGeometricFromBytes = std::size_t{64} * 1024;
constexpr std::uint64_t kMaxBytes = std::numeric_limits<std::uint32_t>::max();

constexpr std::uint32_t kLengthFieldBytes = 4;

unsigned int lengthOf(const char* text, unsigned int count) {
  if (count != ByteStore::kUntilNul) return count;
  return text == nullptr ? 0 : static_cast<unsigned int>(std::strlen(text));
}

const unsigned char* bytesOf(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

const char* textOf(const unsigned char* bytes) {
  return reinterpret_cast<const char*>(bytes);
}

template <typename Word>
unsigned int slamHostOrder(ByteStore& store, unsigned int offset, Word value) {
  unsigned char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  return store.Slam(offset, bytes, sizeof value);
}

template <typename Word>
unsigned int slamMostSignificantFirst(ByteStore& store, unsigned int offset, Word value) {
  unsigned char bytes[sizeof value];
  for (std::size_t i = sizeof value; i-- > 0; value = static_cast<Word>(value >> 8)) {
    bytes[i] = static_cast<unsigned char>(value & 0xFF);
  }
  return store.Slam(offset, bytes, sizeof value);
}

}  // namespace

ByteStore::ByteStore(const char* text, unsigned int count)
    : ByteStore(bytesOf(text), lengthOf(text, count)) {}

ByteStore::ByteStore(const unsigned char* bytes, unsigned int count) {
  Append(bytes, lengthOf(textOf(bytes), count));
}

ByteStore::ByteStore(const ByteStore& other) {
  Append(other.data_, other.length_);
}

ByteStore& ByteStore::operator=(const ByteStore& other) {
  if (this != &other) {
    Truncate(0, 0);
    Append(other.data_, other.length_);
  }
  return *this;
}

ByteStore::~ByteStore() {
  std::free(data_);
}

// Sets the reported capacity, allocating when the block behind it is too small.
bool ByteStore::reserve(std::uint64_t newCapacity) {
  if (newCapacity > kMaxBytes) return false;
  if (data_ == nullptr || newCapacity > blockBytes_) {
    std::size_t wanted = newCapacity;
    if (wanted >= kGeometricFromBytes) wanted = std::max(wanted, blockBytes_ + blockBytes_ / 2);
    void* block = std::realloc(data_, wanted);
    if (block == nullptr && wanted > newCapacity) {
      wanted = newCapacity;
      block = std::realloc(data_, wanted);
    }
    if (block == nullptr) return false;
    data_ = static_cast<unsigned char*>(block);
    blockBytes_ = wanted;
  }
  capacity_ = static_cast<std::uint32_t>(newCapacity);
  terminate();
  return true;
}

bool ByteStore::holds(const unsigned char* bytes) const {
  const std::less_equal<> notAfter;
  return data_ != nullptr && notAfter(data_, bytes) && notAfter(bytes, data_ + length_);
}

unsigned int ByteStore::Grow(unsigned int count) {
  if (count == 0) return 0;
  const bool first = data_ == nullptr;
  const std::uint64_t needed = std::uint64_t{length_} + count;
  if (!first && needed < capacity_) return count;
  if (!reserve(needed + kSlackBytes)) return 0;
  return first ? count + 1 : count;
}

unsigned int ByteStore::appendFar(const unsigned char* bytes, unsigned int count) {
  if (count == 0) return length_;
  // The block only moves, and with it bytes of its own, when there is no room.
  if (std::uint64_t{length_} + count >= capacity_) {
    const bool own = holds(bytes);
    const std::size_t ownOffset = own ? static_cast<std::size_t>(bytes - data_) : 0;
    if (Grow(count) == 0) return 0;
    if (own) bytes = data_ + ownOffset;
  }
  if (bytes == nullptr) return length_;
  std::memmove(data_ + length_, bytes, count);
  length_ += count;
  terminate();
  return length_;
}

// What the Extend family and Stretch share; a null `fill` leaves the new bytes unset.
unsigned int ByteStore::lengthen(std::uint64_t newLength, bool inFront, const char* fill) {
  if (newLength <= length_ || newLength > kMaxBytes) return length_;
  const auto added = static_cast<std::uint32_t>(newLength - length_);
  if (Grow(added) == 0) return length_;
  if (inFront) std::memmove(data_ + added, data_, length_);
  if (fill != nullptr) std::memset(inFront ? data_ : data_ + length_, *fill, added);
  length_ += added;
  terminate();
  return length_;
}

unsigned int ByteStore::Extend(unsigned int newLength, char fill) {
  return lengthen(newLength, false, &fill);
}

unsigned int ByteStore::ExtendBy(unsigned int count, char fill) {
  return lengthen(std::uint64_t{length_} + count, false, &fill);
}

unsigned int ByteStore::extendUnsetFar(unsigned int newLength) {
  return lengthen(newLength, false, nullptr);
}

unsigned char* ByteStore::replaceUnsetFar(unsigned int newLength) {
  Truncate(0, 0);
  return extendUnsetFar(newLength) == newLength ? data_ : nullptr;
}

unsigned int ByteStore::Stretch(unsigned int newLength, char fill) {
  return lengthen(newLength, true, &fill);
}

unsigned int ByteStore::Trunc(unsigned int newLength, char keepTail, char shrink) {
  if (newLength == 0) {
    length_ = 0;
    if (shrink != 0) {
      std::free(data_);
      data_ = nullptr;
      capacity_ = 0;
      blockBytes_ = 0;
    } else if (data_ != nullptr) {
      terminate();
    }
    return 0;
  }
  if (newLength >= length_) return Extend(newLength, 0);
  if (keepTail != 0) std::memmove(data_, data_ + (length_ - newLength), newLength);
  length_ = newLength;
  if (shrink != 0) {
    const std::size_t bytes = std::size_t{newLength} + 1;
    if (void* block = std::realloc(data_, bytes)) {
      data_ = static_cast<unsigned char*>(block);
      capacity_ = newLength + 1;
      blockBytes_ = bytes;
    }
  }
  terminate();
  return length_;
}

int ByteStore::Snip(unsigned int offset, int count, ByteStore* removed) {
  if (count < 1 || offset >= length_) return 0;
  const std::uint32_t taken = std::min(static_cast<std::uint32_t>(count), length_ - offset);
  if (removed != nullptr) {
    removed->Truncate(0, 0);
    removed->Append(data_ + offset, taken);
  }
  std::memmove(data_ + offset, data_ + offset + taken, length_ - offset - taken);
  length_ -= taken;
  terminate();
  return static_cast<int>(taken);
}

// How many more bytes an insertion asks room for; beyond the end the gap counts, and one more.
std::uint64_t ByteStore::roomForInsert(unsigned int offset, int count) const {
  const auto bytes = static_cast<std::uint64_t>(count);
  return offset <= length_ ? bytes : bytes + (offset - length_) + 1;
}

void ByteStore::moveUp(unsigned int offset, unsigned int count) {
  if (offset <= length_) std::memmove(data_ + offset + count, data_ + offset, length_ - offset);
}

int ByteStore::Ins(unsigned int offset, const unsigned char* bytes, int count) {
  if (count < 1 || bytes == nullptr) return 0;
  const auto added = static_cast<std::uint32_t>(count);
  if (holds(bytes)) {
    const ByteStore copy(bytes, added);
    return copy.length_ == added ? Ins(offset, copy.data_, count) : 0;
  }
  const std::uint64_t room = roomForInsert(offset, count);
  if (room > kMaxBytes || Grow(static_cast<unsigned int>(room)) == 0) return 0;
  moveUp(offset, added);
  std::memcpy(data_ + offset, bytes, added);
  // Kept: beyond the end the gap is not counted, so that the bytes end up behind the terminator.
  length_ += added;
  terminate();
  return count;
}

int ByteStore::Jam(unsigned int offset, int count, char fill) {
  if (count < 1) return 0;
  const std::uint64_t room = roomForInsert(offset, count);
  if (room > kMaxBytes || Grow(static_cast<unsigned int>(room)) == 0) return 0;
  if (offset <= length_) {
    moveUp(offset, static_cast<unsigned int>(count));
    std::memset(data_ + offset, fill, static_cast<std::size_t>(count));
  }
  // Kept: beyond the end nothing is written, but the contents grow by gap, count and one.
  length_ += static_cast<std::uint32_t>(room);
  terminate();
  return count;
}

unsigned int ByteStore::Index(char wanted) const {
  if (length_ == 0) return 0;
  const void* found = std::memchr(data_, wanted, length_);
  if (found == nullptr) return 0;
  return static_cast<unsigned int>(static_cast<const unsigned char*>(found) - data_) + 1;
}

unsigned char& ByteStore::operator[](int index) {
  static unsigned char spare = 0;
  const auto at = static_cast<std::uint32_t>(std::max(index, 0));
  if (at >= length_ && Extend(at + 1, 0) <= at) return spare;
  return data_[at];
}

unsigned int ByteStore::Slam(unsigned int offset, const unsigned char* bytes, int count) {
  // Of no bytes it still lengthens up to the offset.
  if (count < 0 || (count > 0 && bytes == nullptr)) return length_;
  const std::uint64_t end = std::uint64_t{offset} + static_cast<std::uint32_t>(count);
  const bool own = holds(bytes);
  const std::size_t ownOffset = own ? static_cast<std::size_t>(bytes - data_) : 0;
  const char fill = 0;
  if (lengthen(end, false, &fill) < end || count == 0) return length_;
  std::memmove(data_ + offset, own ? data_ + ownOffset : bytes, static_cast<std::size_t>(count));
  return length_;
}

unsigned int ByteStore::Slam(unsigned int offset, const ByteStore& other) {
  return Slam(offset, other.data_, static_cast<int>(other.length_));
}

unsigned int ByteStore::Slam8(unsigned int offset, unsigned char value) {
  return slamHostOrder(*this, offset, value);
}

unsigned int ByteStore::Slam16(unsigned int offset, unsigned short value) {
  return slamHostOrder(*this, offset, value);
}

unsigned int ByteStore::Slam32(unsigned int offset, unsigned int value) {
  return slamHostOrder(*this, offset, value);
}

unsigned int ByteStore::SlamMi16(unsigned int offset, unsigned short value) {
  return slamMostSignificantFirst(*this, offset, value);
}

unsigned int ByteStore::SlamMi32(unsigned int offset, unsigned int value) {
  return slamMostSignificantFirst(*this, offset, value);
}

unsigned int ByteStore::SlamVli(unsigned int offset, unsigned int adjust) {
  return _SlamVli(offset, adjust, 0, false);
}

unsigned int ByteStore::SlamVliIncl(unsigned int offset, unsigned int adjust) {
  return _SlamVli(offset, adjust, 1, false);
}

unsigned int ByteStore::SlamVliExcl(unsigned int offset, unsigned int adjust) {
  return _SlamVli(offset, adjust, 2, false);
}

unsigned int ByteStore::SlamMiVli(unsigned int offset, unsigned int adjust) {
  return _SlamVli(offset, adjust, 0, true);
}

unsigned int ByteStore::SlamMiVliIncl(unsigned int offset, unsigned int adjust) {
  return _SlamVli(offset, adjust, 1, true);
}

unsigned int ByteStore::SlamMiVliExcl(unsigned int offset, unsigned int adjust) {
  return _SlamVli(offset, adjust, 2, true);
}

unsigned int ByteStore::_SlamVli(unsigned int offset, unsigned int adjust, char mode,
                                 bool mostSignificantFirst) {
  if (mode < 0 || mode > 2) return 0;
  const std::uint64_t fieldEnd = std::uint64_t{offset} + kLengthFieldBytes;
  const std::uint64_t total = std::max<std::uint64_t>(fieldEnd, length_);
  const std::uint64_t notCounted[] = {0, offset, fieldEnd};
  const std::uint64_t counted = total - notCounted[static_cast<unsigned char>(mode)];
  const auto field = static_cast<std::uint32_t>(counted < adjust ? 0 : counted - adjust);
  return mostSignificantFirst ? SlamMi32(offset, field) : Slam32(offset, field);
}

}  // namespace KORVEX::Zel::DB::ODBC
