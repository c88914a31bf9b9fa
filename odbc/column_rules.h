#pragma once

// How result columns are read: by the SQL type that the driver describes, and then by C type.

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdint>

namespace KORVEX::Zel::DB::ODBC {

// The driver's description of a column; sizes in 64 bits, since drivers say anything between -4
// and 4 GiB.
struct ColumnSizes {
  std::int64_t columnSize;
  std::int64_t displaySize;
};

// The most that the first piece of a long value asks for, in bytes or characters.
inline constexpr std::int64_t kFirstPiece = 8000;

enum class CharacterKind : std::uint8_t {
  kNone,
  kNarrow,  // the driver's decimal digits mean nothing
  kWide,    // bytes are asked for in even numbers
};

// How a column of an SQL type is read.
struct ColumnRule {
  SQLSMALLINT sqlType;
  SQLSMALLINT cType;
  SQLSMALLINT unsignedCType;  // when the driver calls the column unsigned
  CharacterKind characters;
  std::int64_t (*bufferBytes)(const ColumnSizes&);
};

namespace column_bytes {

constexpr std::int64_t fixed(const ColumnSizes&) {
  return 0;
}
constexpr std::int64_t timestamp(const ColumnSizes&) {
  return sizeof(TIMESTAMP_STRUCT);
}
constexpr std::int64_t time(const ColumnSizes&) {
  return sizeof(TIME_STRUCT);
}
constexpr std::int64_t text(const ColumnSizes& sizes) {
  return std::min(sizes.columnSize, kFirstPiece) + 1;
}
constexpr std::int64_t wideText(const ColumnSizes& sizes) {
  return std::min(sizes.columnSize, kFirstPiece) + 2;
}
constexpr std::int64_t numberText(const ColumnSizes& sizes) {
  return sizes.displaySize + 2;
}
constexpr std::int64_t binary(const ColumnSizes& sizes) {
  return std::min(sizes.columnSize, kFirstPiece);
}
constexpr std::int64_t whole(const ColumnSizes& sizes) {
  return sizes.columnSize;
}

}  // namespace column_bytes

inline constexpr ColumnRule kColumnRules[] = {
    {SQL_CHAR, SQL_C_CHAR, SQL_C_CHAR, CharacterKind::kNarrow, column_bytes::text},
    {SQL_VARCHAR, SQL_C_CHAR, SQL_C_CHAR, CharacterKind::kNarrow, column_bytes::text},
    {SQL_LONGVARCHAR, SQL_C_CHAR, SQL_C_CHAR, CharacterKind::kNarrow, column_bytes::text},
    {SQL_WCHAR, SQL_C_CHAR, SQL_C_CHAR, CharacterKind::kWide, column_bytes::wideText},
    {SQL_WVARCHAR, SQL_C_CHAR, SQL_C_CHAR, CharacterKind::kWide, column_bytes::wideText},
    {SQL_WLONGVARCHAR, SQL_C_CHAR, SQL_C_CHAR, CharacterKind::kWide, column_bytes::wideText},
    {SQL_NUMERIC, SQL_C_CHAR, SQL_C_CHAR, CharacterKind::kNone, column_bytes::numberText},
    {SQL_DECIMAL, SQL_C_CHAR, SQL_C_CHAR, CharacterKind::kNone, column_bytes::numberText},
    {SQL_INTEGER, SQL_C_LONG, SQL_C_ULONG, CharacterKind::kNone, column_bytes::fixed},
    {SQL_SMALLINT, SQL_C_SHORT, SQL_C_USHORT, CharacterKind::kNone, column_bytes::fixed},
    {SQL_TINYINT, SQL_C_TINYINT, SQL_C_UTINYINT, CharacterKind::kNone, column_bytes::fixed},
    {SQL_BIT, SQL_C_BIT, SQL_C_BIT, CharacterKind::kNone, column_bytes::fixed},
    {SQL_BIGINT, SQL_C_SBIGINT, SQL_C_SBIGINT, CharacterKind::kNone, column_bytes::fixed},
    {SQL_FLOAT, SQL_C_DOUBLE, SQL_C_DOUBLE, CharacterKind::kNone, column_bytes::fixed},
    {SQL_REAL, SQL_C_DOUBLE, SQL_C_DOUBLE, CharacterKind::kNone, column_bytes::fixed},
    {SQL_DOUBLE, SQL_C_DOUBLE, SQL_C_DOUBLE, CharacterKind::kNone, column_bytes::fixed},
    // Kept: dates are read as timestamps, and so is the time of ODBC 2.
    {SQL_DATE, SQL_C_TYPE_TIMESTAMP, SQL_C_TYPE_TIMESTAMP, CharacterKind::kNone,
     column_bytes::timestamp},
    {SQL_TIME, SQL_C_TYPE_TIMESTAMP, SQL_C_TYPE_TIMESTAMP, CharacterKind::kNone,
     column_bytes::timestamp},
    {SQL_TIMESTAMP, SQL_C_TYPE_TIMESTAMP, SQL_C_TYPE_TIMESTAMP, CharacterKind::kNone,
     column_bytes::timestamp},
    {SQL_TYPE_DATE, SQL_C_TYPE_TIMESTAMP, SQL_C_TYPE_TIMESTAMP, CharacterKind::kNone,
     column_bytes::timestamp},
    {SQL_TYPE_TIMESTAMP, SQL_C_TYPE_TIMESTAMP, SQL_C_TYPE_TIMESTAMP, CharacterKind::kNone,
     column_bytes::timestamp},
    {SQL_TYPE_TIME, SQL_C_TYPE_TIME, SQL_C_TYPE_TIME, CharacterKind::kNone, column_bytes::time},
    {SQL_BINARY, SQL_C_BINARY, SQL_C_BINARY, CharacterKind::kNone, column_bytes::binary},
    {SQL_VARBINARY, SQL_C_BINARY, SQL_C_BINARY, CharacterKind::kNone, column_bytes::binary},
    {SQL_LONGVARBINARY, SQL_C_BINARY, SQL_C_BINARY, CharacterKind::kNone, column_bytes::binary},
};

inline constexpr ColumnRule kOtherColumnRule = {0, SQL_C_BINARY, SQL_C_BINARY, CharacterKind::kNone,
                                                column_bytes::whole};

constexpr const ColumnRule& columnRule(SQLSMALLINT sqlType) {
  for (const ColumnRule& rule : kColumnRules) {
    if (rule.sqlType == sqlType) return rule;
  }
  return kOtherColumnRule;
}

// How the value of a C type is fetched.
enum class CellRead {
  kNothing,  // the type is not one that columns are read in
  kFixed,    // one SQLGetData into a buffer of a fixed size
  kBigInt,   // one SQLGetData as text, parsed: some drivers know 64-bit integers as text only
  kLong,     // SQLGetData in pieces
};

struct CellReadRule {
  SQLSMALLINT cType;
  CellRead read;
  std::uint32_t bytes;  // asked for, of a long value first; 0: follows from the column's sizes
};

inline constexpr CellReadRule kCellReads[] = {
    {SQL_C_LONG, CellRead::kFixed, 8},      {SQL_C_ULONG, CellRead::kFixed, 8},
    {SQL_C_DOUBLE, CellRead::kFixed, 8},    {SQL_C_SHORT, CellRead::kFixed, 2},
    {SQL_C_USHORT, CellRead::kFixed, 2},    {SQL_C_BIT, CellRead::kFixed, 1},
    {SQL_C_TINYINT, CellRead::kFixed, 1},   {SQL_C_UTINYINT, CellRead::kFixed, 1},
    {SQL_C_TYPE_TIME, CellRead::kFixed, 6}, {SQL_C_TYPE_TIMESTAMP, CellRead::kFixed, 16},
    {SQL_C_SBIGINT, CellRead::kBigInt, 0},  {SQL_C_CHAR, CellRead::kLong, 0},
    {SQL_C_BINARY, CellRead::kLong, 0},
};

inline constexpr CellReadRule kNoCellRead = {0, CellRead::kNothing, 0};

constexpr const CellReadRule& cellReadRule(SQLSMALLINT cType) {
  for (const CellReadRule& rule : kCellReads) {
    if (rule.cType == cType) return rule;
  }
  return kNoCellRead;
}

}  // namespace KORVEX::Zel::DB::ODBC
