#include "odbc/long_data_read.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace KORVEX::Zel::DB::ODBC {

namespace {

constexpr std::int64_t kLeastRequest = 4;
// Asked for at a time when the driver cannot tell how much there is.
constexpr std::int64_t kUnknownTotalRequest = 100000;
constexpr std::int64_t kMaxBytes = std::numeric_limits<std::uint32_t>::max();

std::int64_t roundUpToEven(std::int64_t bytes) {
  return bytes + (bytes & 1);
}

}  // namespace

LongDataRead::LongDataRead(ByteStore& buffer, bool text, bool wide, std::int64_t firstRequest)
    : buffer_(buffer), text_(text), wide_(wide), request_(firstRequest) {
  buffer_.Truncate(0, 0);
}

bool LongDataRead::prepare() {
  request_ = std::max(request_, kLeastRequest);
  if (wide_) request_ = roundUpToEven(request_);
  const std::int64_t end = offset_ + request_;
  if (end > kMaxBytes) return false;
  // Unset: the driver writes these bytes, or they are cut off. A driver that does not split a
  // character leaves the last few alone, though, and the next piece does not cover them.
  if (buffer_.ExtendUnset(static_cast<std::uint32_t>(end)) < end) return false;
  std::memset(buffer_.Data() + end - kLeastRequest, 0, kLeastRequest);
  return true;
}

LongDataRead::Step LongDataRead::take(SQLRETURN rc, SQLLEN indicator, SQLLEN& total) {
  anyPiece_ = true;
  if (indicator == SQL_NULL_DATA) return Step::kNull;
  if (indicator == SQL_NO_TOTAL) {
    moveBehindPiece(rc, false);
    request_ = kUnknownTotalRequest;
    return Step::kMore;
  }
  if (indicator < 0) return Step::kImpossible;
  if (indicator < request_ || (!text_ && indicator == request_)) {
    return finish(offset_ + indicator, total);
  }
  const std::int64_t remaining = indicator - request_;
  moveBehindPiece(rc, true);
  request_ = text_ ? remaining + 1 : remaining;
  return Step::kMore;
}

// The next piece of a text starts at this one's terminator.
void LongDataRead::moveBehindPiece(SQLRETURN rc, bool totalKnown) {
  std::int64_t used = request_;
  if (text_) {
    used = request_ - 1;
    // Where a full piece is not certain the terminator is looked for: a wide text may end early, so
    // as not to split a character, and so may the last piece of a text of unknown length.
    if (wide_ || (!totalKnown && rc == SQL_SUCCESS)) {
      const unsigned char* piece = target();
      const void* nul = std::memchr(piece, 0, static_cast<std::size_t>(request_));
      if (nul != nullptr) used = static_cast<const unsigned char*>(nul) - piece;
    }
  }
  offset_ += used;
}

LongDataRead::Step LongDataRead::finish(std::int64_t length, SQLLEN& total) {
  buffer_.Truncate(static_cast<std::uint32_t>(length), 0);
  total = length;
  return Step::kDone;
}

bool LongDataRead::endEarly(SQLLEN& total) {
  if (anyPiece_) finish(offset_, total);
  return anyPiece_;
}

}  // namespace KORVEX::Zel::DB::ODBC
