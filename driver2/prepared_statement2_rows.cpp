// Result sets and rows of PreparedStatement2Odbc.

#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#include "datatypes/data_types.h"
#include "datatypes/large_pages.h"
#include "datatypes/short_number.h"
#include "driver2/boundary.h"
#include "driver2/db_error2_odbc.h"
#include "driver2/malloc_block.h"
#include "driver2/packed_binary.h"
#include "driver2/prepared_statement2_odbc.h"
#include "driver2/timestamp_structure.h"
#include "host/row_internal2.h"

namespace KORVEX::Zel::DB::ODBC {

using DataTypes::DataValue;

namespace {

constexpr char kNoMemory[] = "memory allocation";
constexpr std::size_t kTableEndGap = 4;  // between the offset table and the first value
// Empties a list of blocks when the row that they belong to is done.
struct BlockKeeper {
  explicit BlockKeeper(std::vector<MallocBlock>& kept) : blocks(kept) {}
  ~BlockKeeper() { blocks.clear(); }
  BlockKeeper(const BlockKeeper&) = delete;
  BlockKeeper& operator=(const BlockKeeper&) = delete;
  std::vector<MallocBlock>& blocks;
};

constexpr long kSecondsPerMinute = 60;
constexpr long kSecondsPerHour = 3600;

}  // namespace

// Inlined by force: it is all that most columns need, and a call around a call costs as much again.
[[gnu::always_inline]] inline int PreparedStatement2Odbc::getFixed(std::size_t column,
                                                                   SQLSMALLINT cType,
                                                                   void* destination, int& length,
                                                                   DBError* error) {
  SQLLEN indicator = 0;
  const SQLRETURN rc = getData(column, cType, destination, length, indicator);
  if (rc != SQL_SUCCESS && check(rc, error) != 0) return -1;
  length = static_cast<int>(indicator);
  return 0;
}

template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_SSHORT>(std::size_t column, void* destination,
                                                        int& length, DBError* error) {
  return getFixed(column, SQL_C_SSHORT, destination, length, error);
}

template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_SLONG>(std::size_t column, void* destination,
                                                       int& length, DBError* error) {
  return getFixed(column, SQL_C_SLONG, destination, length, error);
}

template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_SBIGINT>(std::size_t column, void* destination,
                                                         int& length, DBError* error) {
  return getFixed(column, SQL_C_SBIGINT, destination, length, error);
}

template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_DOUBLE>(std::size_t column, void* destination,
                                                        int& length, DBError* error) {
  return getFixed(column, SQL_C_DOUBLE, destination, length, error);
}

template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_BIT>(std::size_t column, void* destination,
                                                     int& length, DBError* error) {
  return getFixed(column, SQL_C_BIT, destination, length, error);
}

template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_TYPE_TIMESTAMP>(std::size_t column,
                                                                void* destination, int& length,
                                                                DBError* error) {
  TIMESTAMP_STRUCT timestamp{};
  SQLLEN indicator = 0;
  const SQLRETURN rc =
      getData(column, SQL_C_TYPE_TIMESTAMP, &timestamp, sizeof timestamp, indicator);
  if (rc != SQL_SUCCESS && check(rc, error) != 0) return -1;
  length = SQL_NULL_DATA;
  if (indicator == SQL_NULL_DATA) return 0;
  const DateUnit* unit = plans_[column].dateUnit;
  const std::int64_t count = unit != nullptr
                                 ? countOfTimestamp(timestamp, *unit, policy_.secondsOf)
                                 : timestamp.hour * kSecondsPerHour +
                                       timestamp.minute * kSecondsPerMinute + timestamp.second;
  std::memcpy(destination, &count, sizeof count);
  length = sizeof count;
  return 0;
}

template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_TYPE_DATE>(std::size_t column, void* destination,
                                                           int& length, DBError* error) {
  DATE_STRUCT date{};
  const SQLRETURN rc = getData(column, SQL_C_TYPE_DATE, &date, sizeof date, glen);
  if (rc != SQL_SUCCESS && check(rc, error) != 0) return -1;
  length = SQL_NULL_DATA;
  if (glen == SQL_NULL_DATA) return 0;
  const std::int64_t seconds =
      secondsOfTimestamp({date.year, date.month, date.day, 0, 0, 0, 0}, policy_.secondsOf);
  std::memcpy(destination, &seconds, sizeof seconds);
  length = sizeof seconds;
  return 0;
}

// Kept: the text has room for 31 characters, so a longer number is an error.
template <>
int PreparedStatement2Odbc::getDataColumn<kNumericText>(std::size_t column, void* destination,
                                                        int& length, DBError* error) {
  constexpr SQLLEN kTextBytes = 32;
  static_assert(kTextBytes >= DataTypes::kShortNumberRoom);
  char text[kTextBytes + 1];
  text[0] = 0;
  text[kTextBytes] = 0;
  SQLLEN indicator = 0;
  const SQLRETURN rc = getData(column, SQL_C_CHAR, text, kTextBytes, indicator);
  if (rc != SQL_SUCCESS) return check(rc, error);
  length = SQL_NULL_DATA;
  if (indicator == SQL_NULL_DATA) return 0;
  if (parseShortNumber(column, text, indicator, kTextBytes, destination, length)) return 0;
  return parseNumber(column, text, destination, length, error);
}

int PreparedStatement2Odbc::parseNumber(std::size_t column, const char* text, void* destination,
                                        int& length, DBError* error) const {
  const unsigned int type = columnTypes_[column];
  const int bytes = plans_[column].bufferBytes;
  const char* message = "";
  if (DataTypes::convertFromStringAndPack(
          type, false, text, static_cast<unsigned char*>(destination),
          static_cast<std::size_t>(bytes), message, nullptr, nullptr, nullptr, nullptr) < 0) {
    return failAccess(error, message);
  }
  length = bytes;
  return 0;
}

// Kept: a text of exactly 128 characters, and one whose length the driver cannot tell, is an error.
template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_CHAR>(std::size_t column, void* destination,
                                                      int& length, DBError* error) {
  constexpr SQLLEN kFirstBytes = 128;
  MallocBlock text = allocateBlock(kFirstBytes + 1);
  if (text == nullptr) return failAccess(error, kNoMemory);
  text.get()[kFirstBytes] = 0;
  SQLLEN reported = 0;
  SQLRETURN rc = getData(column, SQL_C_CHAR, text.get(), kFirstBytes, reported);
  if (rc != SQL_SUCCESS) {
    if (reported <= kFirstBytes || reported >= INT_MAX) return check(rc, error);
    if (!growBlock(text, static_cast<std::size_t>(reported) + 1))
      return failAccess(error, kNoMemory);
    DataTypes::preferLargePages(text.get(), static_cast<std::size_t>(reported));
    text.get()[reported] = 0;
    unsigned char* rest = text.get() + kFirstBytes - 1;  // over the first piece's terminator
    rc = getData(column, SQL_C_CHAR, rest, reported - (kFirstBytes - 2), glen);
    if (rc != SQL_SUCCESS) return check(rc, error);
  }
  length = SQL_NULL_DATA;
  if (reported == SQL_NULL_DATA) return 0;
  length = static_cast<int>(std::strlen(reinterpret_cast<char*>(text.get()))) + 1;
  *static_cast<void**>(destination) = text.release();
  return 0;
}

template <>
int PreparedStatement2Odbc::getDataColumn<SQL_C_BINARY>(std::size_t column, void* destination,
                                                        int& length, DBError* error) {
  constexpr SQLLEN kBlockBytes = 64;
  constexpr SQLLEN kFirstBytes = kBlockBytes - SQLLEN{kPackedLengthBytes};
  MallocBlock packed = allocateBlock(kBlockBytes);
  if (packed == nullptr) return failAccess(error, kNoMemory);
  SQLLEN reported = 0;
  SQLRETURN rc =
      getData(column, SQL_C_BINARY, packed.get() + kPackedLengthBytes, kFirstBytes, reported);
  if (rc != SQL_SUCCESS) {
    if (reported <= kFirstBytes || reported > INT_MAX - kBlockBytes) return check(rc, error);
    if (!growBlock(packed, static_cast<std::size_t>(reported) + kPackedLengthBytes)) {
      return failAccess(error, kNoMemory);
    }
    DataTypes::preferLargePages(packed.get(), static_cast<std::size_t>(reported));
    rc = getData(column, SQL_C_BINARY, packed.get() + kBlockBytes, reported - kFirstBytes, glen);
    if (rc != SQL_SUCCESS) return check(rc, error);
  } else if (reported > kFirstBytes || (reported < 0 && reported != SQL_NULL_DATA)) {
    return check(SQL_ERROR, error);  // more bytes than there was room for
  }
  length = SQL_NULL_DATA;
  if (reported == SQL_NULL_DATA) return 0;
  storePackedLength(packed.get(), static_cast<std::uint32_t>(reported));
  length = static_cast<int>(reported) + static_cast<int>(kPackedLengthBytes);
  *static_cast<void**>(destination) = packed.release();
  return 0;
}

int PreparedStatement2Odbc::nextResultSet(bool& more, DBError* error) {
  if (resultSet_ == -1) {
    resultSet_ = 0;
    more = true;
    return 0;
  }
  const SQLRETURN rc = SQLMoreResults(stmt_);
  if (rc != SQL_NO_DATA && check(rc, error) != 0) return -1;
  more = rc != SQL_NO_DATA;
  if (more) ++resultSet_;
  return 0;
}

int PreparedStatement2Odbc::hasMoreData(bool& more, DBError* error) {
  const SQLRETURN rc = SQLFetch(stmt_);
  if (rc != SQL_SUCCESS && rc != SQL_NO_DATA && check(rc, error) != 0) return -1;
  more = rc != SQL_NO_DATA;
  return 0;
}

int PreparedStatement2Odbc::nextCount(int& /*count*/, DBError* error) {
  return failAccess(error, "not implemented");
}

// The routine hands over a packed copy of the bytes; the cell gets them alone.
int PreparedStatement2Odbc::fetchBytesIntoCell(std::size_t column, DataValue& cell, int& length,
                                               DBError* error) {
  unsigned char* packed = nullptr;
  const FetchRoutine routine = plans_[column].routine;
  if ((this->*routine)(column, static_cast<void*>(&packed), length, error) != 0) return -1;
  if (length == SQL_NULL_DATA) return 0;
  const MallocBlock owner(packed);
  const std::size_t bytes = static_cast<std::size_t>(length) - kPackedLengthBytes;
  MallocBlock copy = allocateBlock(bytes == 0 ? 1 : bytes);
  if (copy == nullptr) return failAccess(error, kNoMemory);
  std::memcpy(copy.get(), packed + kPackedLengthBytes, bytes);
  cell.binary = {copy.release(), static_cast<std::uint32_t>(bytes)};
  return 0;
}

// Fetches a column through its routine; what lies at the destination in one call needs none.
[[gnu::always_inline]] inline int PreparedStatement2Odbc::fetchValue(std::size_t column,
                                                                     const ColumnPlan& plan,
                                                                     void* destination, int& length,
                                                                     DBError* error) {
  return plan.inPlaceAs != 0 ? getFixed(column, plan.inPlaceAs, destination, length, error)
                             : (this->*plan.routine)(column, destination, length, error);
}

int PreparedStatement2Odbc::nextRow(std::vector<DataValue>& row, DBError* error) {
  return guardedAccess(error, [&] {
    if (resultSet_ < 0) return failAccess(error, "no data");
    if (row.size() != columns_.size()) return failAccess(error, "invalid column count");
    const bool clearsFlags = policy_.nullFlagsCount;
    // The ends are kept at hand: fetching could change the lists, for all that the compiler knows.
    const ColumnPlan* next = plans_.data();
    DataValue* cells = row.data();
    for (std::size_t i = 0, count = plans_.size(); i < count; ++i) {
      const ColumnPlan& plan = *next++;
      // Routines write at the start of the cell, where the payload is.
      DataValue& cell = *cells++;
      int length = plan.bufferBytes;
      int result = 0;
      if (plan.inPlaceAs != 0) {
        result = getFixed(i, plan.inPlaceAs, &cell, length, error);
      } else if (plan.isBinary) {
        result = fetchBytesIntoCell(i, cell, length, error);
      } else if (plan.routine != nullptr) {
        result = (this->*plan.routine)(i, &cell, length, error);
      } else {
        continue;
      }
      if (result != 0) return -1;
      if (length == SQL_NULL_DATA) {
        cell.setNull();
      } else if (clearsFlags) {
        cell.null = 0;
      }
    }
    return 0;
  });
}

RowInternal2* PreparedStatement2Odbc::packValues(std::size_t totalBytes, DBError* error) {
  if (totalBytes > INT_MAX) {
    failAccess(error, kNoMemory);  // offsets are 32-bit
    return nullptr;
  }
  MallocBlock block = allocateBlock(totalBytes);
  if (block == nullptr) {
    failAccess(error, kNoMemory);
    return nullptr;
  }
  RowInternal2 header{};
  header.totalBytes = static_cast<std::uint32_t>(totalBytes);
  header.word4 = 1;
  header.columns =
      static_cast<std::uint32_t>(columnValues_.size()) & RowInternal2::kColumnCountMask;
  const std::size_t tableBytes = columnOffsets_.size() * sizeof columnOffsets_.front();
  std::memcpy(block.get(), &header, sizeof header);
  std::memcpy(block.get() + RowInternal2::kHeaderBytes, columnOffsets_.data(), tableBytes);
  std::memset(block.get() + RowInternal2::kHeaderBytes + tableBytes, 0, kTableEndGap);
  for (std::size_t i = 0; i < columnValues_.size(); ++i) {
    if (columnLengths_[i] <= 0) continue;
    std::memcpy(block.get() + columnOffsets_[i], columnValues_[i],
                static_cast<std::size_t>(columnLengths_[i]));
  }
  return reinterpret_cast<RowInternal2*>(block.release());
}

const RowInternal2* PreparedStatement2Odbc::nextRow(DBError* error) {
  const RowInternal2* result = nullptr;
  guardedAccess(error, [&] {
    if (resultSet_ < 0) return failAccess(error, "no data");
    const std::size_t count = columns_.size();
    // Texts and bytes of this row; freed also when a later column fails.
    const BlockKeeper keeper(columnBlocks_);
    std::size_t total =
        RowInternal2::kHeaderBytes + columnOffsets_.size() * sizeof(std::int32_t) + kTableEndGap;
    for (std::size_t i = 0; i < count; ++i) {
      const ColumnPlan& plan = plans_[i];
      unsigned char* block = nullptr;
      void* destination = plan.comesInBlock() ? static_cast<void*>(&block) : columnBuffers_[i];
      int length = plan.routine == nullptr ? SQL_NULL_DATA : plan.bufferBytes;
      if (plan.routine != nullptr && fetchValue(i, plan, destination, length, error) != 0) {
        return -1;
      }
      if (block != nullptr) columnBlocks_.emplace_back(block);  // reserved: cannot throw
      const bool null = length == SQL_NULL_DATA;
      columnLengths_[i] = null ? 0 : length;
      columnOffsets_[i] = null ? 0 : static_cast<int>(total);
      columnValues_[i] = plan.comesInBlock() ? block : columnBuffers_[i];
      if (!null) total += static_cast<std::size_t>(length);
    }
    columnOffsets_[count] = static_cast<int>(total);
    result = packValues(total, error);
    return result == nullptr ? -1 : 0;
  });
  return result;
}

}  // namespace KORVEX::Zel::DB::ODBC
