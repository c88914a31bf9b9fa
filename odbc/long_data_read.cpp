#include "odbc/long_data_read.h"

#include <cstring>

namespace KORVEX::Zel::DB::ODBC {

namespace {

// Asked for at a time when the driver cannot tell how much there is.
constexpr std::int64_t kUnknownTotalRequest = 100000;

}  // namespace

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
  // A driver that never has less left than before would have us read for ever.
  stalledPieces_ = indicator < left_ ? 0 : stalledPieces_ + 1;
  left_ = indicator;
  if (stalledPieces_ > kMostStalledPieces) return Step::kImpossible;
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
