#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstdint>

#include "odbc/byte_store.h"

namespace KORVEX::Zel::DB::ODBC {

// The arithmetic of reading a long value in pieces with SQLGetData: where the next piece goes, and
// how much to ask for. It makes no ODBC call itself.
class LongDataRead {
 public:
  // What an answer means.
  enum class Step { kMore, kDone, kNull, kImpossible };

  // `firstRequest` bytes are asked for first. Text pieces end in a terminator, which the next piece
  // overwrites; `wide` asks for even numbers of bytes.
  LongDataRead(ByteStore& buffer, bool text, bool wide, std::int64_t firstRequest);

  // Makes room for the next piece; false when there is no memory for it. Call it before target().
  bool prepare();
  // Where it goes, and its size in bytes.
  unsigned char* target() { return buffer_.Data() + offset_; }
  SQLLEN request() const { return request_; }
  // Takes what a successful call answered: its return code and its indicator. On kDone `total` is
  // the length of the value and the buffer is cut to it.
  Step take(SQLRETURN rc, SQLLEN indicator, SQLLEN& total);
  // Ends the value with the pieces taken so far: the driver has no more, though it had promised.
  bool endEarly(SQLLEN& total);

 private:
  // Cuts the buffer to the value's length.
  Step finish(std::int64_t length, SQLLEN& total);
  // Moves the place of the next piece to the end of this one.
  void moveBehindPiece(SQLRETURN rc, bool totalKnown);

  ByteStore& buffer_;
  bool text_;
  bool wide_;
  bool anyPiece_ = false;
  std::int64_t offset_ = 0;  // where in the buffer the piece at hand goes
  std::int64_t request_;     // how many bytes are asked for
};

}  // namespace KORVEX::Zel::DB::ODBC
