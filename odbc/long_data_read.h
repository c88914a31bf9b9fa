#pragma once

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "datatypes/large_pages.h"
#include "odbc/byte_store.h"

namespace KORVEX::Zel::DB::ODBC {

// The arithmetic of reading a long value in pieces with SQLGetData: where the next piece goes, and
// how much to ask for. It makes no ODBC call itself.
class LongDataRead {
 public:
  // What an answer means.
  enum class Step { kMore, kDone, kNull, kImpossible };

  // How many bytes are asked for first: at least enough for a piece, even numbers of a wide text.
  static std::int64_t firstRequest(std::int64_t lengthBytes, bool wide) {
    const std::int64_t request = std::max(lengthBytes, kLeastRequest);
    return wide ? request + (request & 1) : request;
  }
  // Makes room for a piece of `request` bytes at an offset, which is the buffer's end or, behind a
  // piece of text, the terminator in front of it. False when there is no memory for it.
  static bool makeRoom(ByteStore& buffer, std::int64_t offset, std::int64_t request) {
    const std::int64_t end = offset + request;
    if (end > kMaxBytes) return false;
    // Unset: the driver writes these bytes, or they are cut off.
    if (buffer.ExtendUnset(static_cast<std::uint32_t>(end)) < end) return false;
    // A large piece is the whole rest.
    DataTypes::preferLargePages(buffer.Data() + offset, static_cast<std::size_t>(request));
    clearEnd(buffer.Data() + end);
    return true;
  }
  // The same for the first piece, which replaces an earlier value; null for want of memory.
  static unsigned char* makeFirstRoom(ByteStore& buffer, std::uint32_t request) {
    unsigned char* const room = buffer.ReplaceUnset(request);
    if (room != nullptr) clearEnd(room + request);
    return room;
  }
  // Whether a first answer brought the whole value, as it mostly does.
  static bool isWhole(SQLRETURN rc, SQLLEN indicator, std::int64_t request) {
    return rc == SQL_SUCCESS && indicator >= 0 && indicator < request;
  }

  // Begins with a first piece of `request` bytes, for which there is room at the start. Text pieces
  // end in a terminator, which the next piece overwrites; `wide` asks for even numbers of bytes.
  LongDataRead(ByteStore& buffer, bool text, bool wide, std::int64_t request)
      : buffer_(buffer), text_(text), wide_(wide), request_(request) {}

  // Makes room for the next piece; false when there is no memory for it. Call it before target().
  bool prepare() {
    request_ = firstRequest(request_, wide_);
    return makeRoom(buffer_, offset_, request_);
  }
  // Where it goes, and its size in bytes.
  unsigned char* target() { return buffer_.Data() + offset_; }
  SQLLEN request() const { return request_; }
  // Takes what a successful call answered: its return code and its indicator. On kDone `total` is
  // the length of the value and the buffer is cut to it.
  Step take(SQLRETURN rc, SQLLEN indicator, SQLLEN& total);
  // Ends the value with the pieces taken so far: the driver has no more, though it had promised.
  bool endEarly(SQLLEN& total);

 private:
  static constexpr std::int64_t kLeastRequest = 4;
  static constexpr std::int64_t kMaxBytes = std::numeric_limits<std::uint32_t>::max();
  static constexpr int kMostStalledPieces = 16;

  // A driver that does not split a character leaves the last few bytes of its room alone, and the
  // next piece does not cover them.
  static void clearEnd(unsigned char* end) { std::memset(end - kLeastRequest, 0, kLeastRequest); }
  // Cuts the buffer to the value's length.
  Step finish(std::int64_t length, SQLLEN& total);
  // Moves the place of the next piece to the end of this one.
  void moveBehindPiece(SQLRETURN rc, bool totalKnown);

  ByteStore& buffer_;
  bool text_;
  bool wide_;
  bool anyPiece_ = false;
  std::int64_t offset_ = 0;        // where in the buffer the piece at hand goes
  std::int64_t request_;           // how many bytes are asked for
  std::int64_t left_ = kMaxBytes;  // before the last piece, as the driver told
  int stalledPieces_ = 0;          // one after the other, before which nothing less was left
};

}  // namespace KORVEX::Zel::DB::ODBC
