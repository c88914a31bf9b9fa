// Fetch routines that read a value whole, however long it is and whatever the driver tells of it.

#include <algorithm>
#include <climits>
#include <cstring>

#include "datatypes/large_pages.h"
#include "driver2/db_error2_odbc.h"
#include "driver2/malloc_block.h"
#include "driver2/packed_binary.h"
#include "driver2/prepared_statement2_odbc.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

constexpr std::size_t kFirstBytes = 128;

// The bytes that a call has put into `room` bytes at `piece`. A text that did not fit fills the
// room but for its terminator, or a little less where a character would have been cut.
std::size_t deliveredBytes(SQLSMALLINT cType, const unsigned char* piece, std::size_t room,
                           SQLLEN reported, bool fits) {
  if (fits) return static_cast<std::size_t>(reported);
  if (cType == SQL_C_BINARY) return room;
  return strnlen(reinterpret_cast<const char*>(piece), room - 1);
}

}  // namespace

// Leaves `headBytes` free at the start of the block and a NUL behind the bytes.
int PreparedStatement2Odbc::readWhole(std::size_t column, SQLSMALLINT cType, std::size_t headBytes,
                                      WholeValue& value, DBError* error) {
  const std::size_t terminator = cType == SQL_C_CHAR ? 1 : 0;
  std::size_t capacity = headBytes + kFirstBytes;
  value.block = allocateBlock(capacity + 1);
  while (value.block != nullptr) {
    unsigned char* piece = value.block.get() + headBytes + value.bytes;
    const std::size_t room = capacity - headBytes - value.bytes;
    SQLLEN reported = 0;
    const SQLRETURN rc = getData(column, cType, piece, static_cast<SQLLEN>(room), reported);
    const bool ended = rc == SQL_NO_DATA && value.bytes > 0;
    if (rc != SQL_SUCCESS && !ended && check(rc, error) != 0) return -1;
    if (!ended && reported == SQL_NULL_DATA) {
      value.isNull = true;
      return 0;
    }
    const bool fits = reported >= 0 && static_cast<std::size_t>(reported) + terminator <= room;
    if (!ended) value.bytes += deliveredBytes(cType, piece, room, reported, fits);
    if (value.bytes > INT_MAX - kFirstBytes) break;
    if (ended || fits) {
      value.block.get()[headBytes + value.bytes] = 0;
      return 0;
    }
    const std::size_t missing = reported > 0 ? static_cast<std::size_t>(reported) : 0;
    capacity = std::max(capacity * 2,
                        headBytes + value.bytes + std::min<std::size_t>(missing, INT_MAX) + 1);
    if (!growBlock(value.block, capacity + 1)) break;
    if (missing != 0) DataTypes::preferLargePages(value.block.get(), capacity);
  }
  return failAccess(error, "memory allocation");
}

int PreparedStatement2Odbc::getWholeText(std::size_t column, void* destination, int& length,
                                         DBError* error) {
  WholeValue value;
  if (readWhole(column, SQL_C_CHAR, 0, value, error) != 0) return -1;
  length = SQL_NULL_DATA;
  if (value.isNull) return 0;
  length = static_cast<int>(value.bytes) + 1;
  *static_cast<void**>(destination) = value.block.release();
  return 0;
}

int PreparedStatement2Odbc::getWholeBinary(std::size_t column, void* destination, int& length,
                                           DBError* error) {
  WholeValue value;
  if (readWhole(column, SQL_C_BINARY, kPackedLengthBytes, value, error) != 0) return -1;
  length = SQL_NULL_DATA;
  if (value.isNull) return 0;
  storePackedLength(value.block.get(), static_cast<std::uint32_t>(value.bytes));
  length = static_cast<int>(value.bytes + kPackedLengthBytes);
  *static_cast<void**>(destination) = value.block.release();
  return 0;
}

// No number of 34 digits needs more room: what is cut off stands behind the last digit that counts,
// or belongs to a number that is too long anyway.
int PreparedStatement2Odbc::getWholeNumericText(std::size_t column, void* destination, int& length,
                                                DBError* error) {
  constexpr SQLLEN kTextBytes = 128;
  char text[kTextBytes + 1];
  text[0] = 0;
  text[kTextBytes] = 0;
  SQLLEN reported = 0;
  const SQLRETURN rc = getData(column, SQL_C_CHAR, text, kTextBytes, reported);
  if (rc != SQL_SUCCESS && check(rc, error) != 0) return -1;
  length = SQL_NULL_DATA;
  if (reported == SQL_NULL_DATA) return 0;
  if (parseShortNumber(column, text, reported, kTextBytes, destination, length)) return 0;
  return parseNumber(column, text, destination, length, error);
}

}  // namespace KORVEX::Zel::DB::ODBC
