#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace KORVEX::Zel::DB::ODBC {

// A growable byte buffer. While it holds a block, the byte behind its contents is NUL, so that they
// can be read as a C string. Offsets and counts are in bytes. An operation that cannot get memory
// (or would pass 4 GiB) leaves the contents as they were, and Grow, Append, Ins and Jam return 0
// then; nothing throws.
class ByteStore {
 public:
  // A count of this value: the length is that of the NUL-terminated argument.
  static constexpr unsigned int kUntilNul = 0xFFFFFFFF;

  ByteStore() = default;
  ByteStore(const char* text, unsigned int count);
  ByteStore(const unsigned char* bytes, unsigned int count);
  ByteStore(const ByteStore& other);
  // Keeps the block and takes over the other's bytes.
  ByteStore& operator=(const ByteStore& other);
  virtual ~ByteStore();

  // Null while there is no block.
  const unsigned char* Data() const { return data_; }
  unsigned char* Data() { return data_; }
  // The contents as a C string; "" while there is no block.
  const char* Text() const { return data_ == nullptr ? "" : reinterpret_cast<const char*>(data_); }
  unsigned int Length() const { return length_; }
  // The room there is, terminator included, in steps that follow the contents exactly. The block
  // behind may be larger, so that many appends to a long content stay cheap.
  unsigned int Capacity() const { return capacity_; }

  // Growing and shrinking; each returns the new length unless something else is said.
  // Makes room for `count` more bytes and the terminator. Not 0 on success; 0 when `count` is 0.
  unsigned int Grow(unsigned int count);
  unsigned int Append(const unsigned char* bytes, unsigned int count) {
    // Within the room nothing moves, and no byte of the store's own is lost.
    if (bytes == nullptr || count == 0 || std::uint64_t{length_} + count >= capacity_) {
      return appendFar(bytes, count);
    }
    std::memmove(data_ + length_, bytes, count);
    length_ += count;
    terminate();
    return length_;
  }
  // Lengthens to `newLength` (or by `count`) bytes with `fill`; never shortens.
  unsigned int Extend(unsigned int newLength, char fill);
  unsigned int ExtendBy(unsigned int count, char fill);
  // Like Extend, with the new bytes unset: for bytes that the caller writes next.
  unsigned int ExtendUnset(unsigned int newLength) {
    // Within the room there is nothing moves, and the bytes are the caller's to set.
    if (newLength <= length_ || newLength >= capacity_) return extendUnsetFar(newLength);
    length_ = newLength;
    terminate();
    return length_;
  }
  // Shortens or lengthens to `newLength` bytes that are all the caller's to set, and gives them;
  // null, and the store empty, when there is no memory for them.
  unsigned char* ReplaceUnset(unsigned int newLength) {
    if (newLength >= capacity_) return replaceUnsetFar(newLength);
    unsigned char* const bytes = data_;
    length_ = newLength;
    bytes[newLength] = 0;
    return bytes;
  }
  // Like Extend, with the new bytes in front.
  unsigned int Stretch(unsigned int newLength, char fill);
  // Shortens or lengthens (with NULs). Shortening keeps the head, or with `keepTail` the tail, and
  // with `shrink` gives the rest of the block back; to 0 with `shrink` frees it.
  unsigned int Trunc(unsigned int newLength, char keepTail, char shrink);
  // Trunc with and without giving memory back.
  // Kept: the second argument is no fill byte, it says whether the tail is kept.
  unsigned int Resize(unsigned int newLength, char keepTail) {
    return Trunc(newLength, keepTail, 1);
  }
  unsigned int Truncate(unsigned int newLength, char keepTail) {
    if (keepTail != 0 || newLength > length_ || data_ == nullptr) {
      return Trunc(newLength, keepTail, 0);
    }
    CutTail(newLength);
    return newLength;
  }
  // Shortens to the first `newLength` of the contents, which must have as many; there must be a
  // block.
  void CutTail(unsigned int newLength) {
    length_ = newLength;
    data_[newLength] = 0;
  }

  // Removes `count` bytes (fewer at the end) into `removed`, another store, unless that is null.
  // Returns how many.
  int Snip(unsigned int offset, int count, ByteStore* removed);
  // Insert bytes, or `count` times `fill`. Both return `count`, or 0.
  int Ins(unsigned int offset, const unsigned char* bytes, int count);
  int Jam(unsigned int offset, int count, char fill);
  // The position of the first `wanted`, counted from 1, or 0.
  unsigned int Index(char wanted) const;
  // A byte by offset, lengthening the contents with NULs up to it; negative offsets count as 0.
  unsigned char& operator[](int index);

  // Overwriting; lengthens with NULs when the offset lies behind the end. Each returns the length.
  unsigned int Slam(unsigned int offset, const unsigned char* bytes, int count);
  unsigned int Slam(unsigned int offset, const ByteStore& other);
  unsigned int Slam8(unsigned int offset, unsigned char value);
  // In host byte order.
  unsigned int Slam16(unsigned int offset, unsigned short value);
  unsigned int Slam32(unsigned int offset, unsigned int value);
  // Most significant byte first.
  unsigned int SlamMi16(unsigned int offset, unsigned short value);
  unsigned int SlamMi32(unsigned int offset, unsigned int value);

  // Write a 4-byte length at `offset`, the field itself counted as present: of the whole contents,
  // of the field and what follows (Incl), or of what follows (Excl), each less `adjust` and never
  // below 0. In host byte order, or most significant byte first (Mi).
  unsigned int SlamVli(unsigned int offset, unsigned int adjust);
  unsigned int SlamVliIncl(unsigned int offset, unsigned int adjust);
  unsigned int SlamVliExcl(unsigned int offset, unsigned int adjust);
  unsigned int SlamMiVli(unsigned int offset, unsigned int adjust);
  unsigned int SlamMiVliIncl(unsigned int offset, unsigned int adjust);
  unsigned int SlamMiVliExcl(unsigned int offset, unsigned int adjust);
  // What the six do. `mode`: 0 whole, 1 Incl, 2 Excl; any other returns 0 and writes nothing.
  // NOLINTNEXTLINE(bugprone-reserved-identifier): the name is in use.
  unsigned int _SlamVli(unsigned int offset, unsigned int adjust, char mode,
                        bool mostSignificantFirst);

 private:
  unsigned int appendFar(const unsigned char* bytes, unsigned int count);
  unsigned int extendUnsetFar(unsigned int newLength);
  unsigned char* replaceUnsetFar(unsigned int newLength);
  bool reserve(std::uint64_t newCapacity);
  bool holds(const unsigned char* bytes) const;
  unsigned int lengthen(std::uint64_t newLength, bool inFront, const char* fill);
  std::uint64_t roomForInsert(unsigned int offset, int count) const;
  void moveUp(unsigned int offset, unsigned int count);
  void terminate() { data_[length_] = 0; }

  unsigned char* data_ = nullptr;
  std::uint32_t length_ = 0;
  std::uint32_t capacity_ = 0;  // as reported
  std::size_t blockBytes_ = 0;  // as allocated: at least capacity_
};

}  // namespace KORVEX::Zel::DB::ODBC
