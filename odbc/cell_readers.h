#pragma once

// Which C types each typed getter reads, and how: one row a C type. Oddities are columns of the
// row.

#include <locale.h>
#include <sql.h>
#include <sqlext.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

#include "odbc/byte_store.h"
#include "odbc/cell_content.h"
#include "odbc/odbc.h"

namespace KORVEX::Zel::DB::ODBC {

// A row: what a getter of `Out` does with a cell of a C type.
template <typename Out>
struct CellReader {
  SQLSMALLINT cType;
  // Converts the bytes of a value that is not NULL; false: not possible, and `out` is unchanged.
  bool (*read)(const ByteStore& bytes, Out& out);
  Odbc::e_Status whenRead = Odbc::e_Ok;
  Odbc::e_Status whenNull = Odbc::e_Null;
};

// A number or structure as it lies in the buffer, widened or narrowed to the wanted type.
template <typename Raw, typename Out>
bool readRaw(const ByteStore& bytes, Out& out) {
  if (bytes.Capacity() < sizeof(Raw)) return false;
  Raw raw;
  std::memcpy(&raw, bytes.Data(), sizeof raw);
  out = static_cast<Out>(raw);  // NOLINT(bugprone-signed-char-misuse): a number, no character
  return true;
}

// A text that a function of the strtol family reads from end to end without a range error.
template <auto Parse, typename Out>
bool readInteger(const ByteStore& bytes, Out& out) {
  char* end = nullptr;
  errno = 0;
  const auto parsed = Parse(bytes.Text(), &end, 10);
  if (*end != '\0' || errno == ERANGE) return false;
  if constexpr (std::is_same_v<Out, bool>) {
    out = parsed != 0;
    return true;
  } else {
    using Limits = std::numeric_limits<Out>;
    if (parsed < Limits::min() || parsed > Limits::max()) return false;
    out = static_cast<Out>(parsed);
    return true;
  }
}

// Independent of the process locale, which may have another decimal point.
inline bool readDouble(const ByteStore& bytes, double& out) {
  static const locale_t kCLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  char* end = nullptr;
  errno = 0;
  const double parsed = strtod_l(bytes.Text(), &end, kCLocale);
  if (*end != '\0') return false;
  // A result that is merely subnormal is taken.
  if (errno == ERANGE && (parsed == 0 || std::isinf(parsed))) return false;
  out = parsed;
  return true;
}

// The rows of the getter of `Out`.
template <typename Out>
struct CellReaders;

template <>
struct CellReaders<bool> {
  static constexpr CellReader<bool> kRows[] = {
      {SQL_C_BIT, readRaw<std::uint8_t>},
      {SQL_C_SHORT, readRaw<std::int16_t>},
      {SQL_C_SSHORT, readRaw<std::int16_t>},
      {SQL_C_USHORT, readRaw<std::uint16_t>},
      {SQL_C_TINYINT, readRaw<std::uint8_t>},
      {SQL_C_STINYINT, readRaw<std::uint8_t>},
      {SQL_C_UTINYINT, readRaw<std::uint8_t>},
      // Kept: a NULL text is false, and not NULL.
      {SQL_C_CHAR, readInteger<std::strtol>, Odbc::e_Ok, Odbc::e_Ok},
  };
};

template <>
struct CellReaders<char> {
  static constexpr CellReader<char> kRows[] = {
      {SQL_C_STINYINT, readRaw<char>},
      {SQL_C_TINYINT, readRaw<char>},
  };
};

template <>
struct CellReaders<unsigned char> {
  static constexpr CellReader<unsigned char> kRows[] = {
      {SQL_C_UTINYINT, readRaw<unsigned char>},
      {SQL_C_TINYINT, readRaw<unsigned char>},
  };
};

template <>
struct CellReaders<short> {
  static constexpr CellReader<short> kRows[] = {
      {SQL_C_SSHORT, readRaw<short>},
      {SQL_C_SHORT, readRaw<short>},
  };
};

template <>
struct CellReaders<unsigned short> {
  static constexpr CellReader<unsigned short> kRows[] = {
      {SQL_C_USHORT, readRaw<unsigned short>},
      {SQL_C_SHORT, readRaw<unsigned short>},
  };
};

template <>
struct CellReaders<int> {
  static constexpr CellReader<int> kRows[] = {
      {SQL_C_LONG, readRaw<std::int32_t>},    {SQL_C_SLONG, readRaw<std::int32_t>},
      {SQL_C_SHORT, readRaw<std::int16_t>},   {SQL_C_SSHORT, readRaw<std::int16_t>},
      {SQL_C_USHORT, readRaw<std::uint16_t>}, {SQL_C_TINYINT, readRaw<std::int8_t>},
      {SQL_C_STINYINT, readRaw<std::int8_t>}, {SQL_C_UTINYINT, readRaw<std::uint8_t>},
      {SQL_C_CHAR, readInteger<std::strtol>},
  };
};

template <>
struct CellReaders<unsigned int> {
  static constexpr CellReader<unsigned int> kRows[] = {
      {SQL_C_ULONG, readRaw<std::uint32_t>},   {SQL_C_LONG, readRaw<std::uint32_t>},
      {SQL_C_SHORT, readRaw<std::uint16_t>},   {SQL_C_USHORT, readRaw<std::uint16_t>},
      {SQL_C_UTINYINT, readRaw<std::uint8_t>}, {SQL_C_TINYINT, readRaw<std::uint8_t>},
      {SQL_C_CHAR, readInteger<std::strtoul>},
  };
};

template <>
struct CellReaders<long> {
  static constexpr CellReader<long> kRows[] = {
      {SQL_C_SBIGINT, readRaw<std::int64_t>},
      {SQL_C_ULONG, readRaw<std::uint32_t>},
      {SQL_C_CHAR, readInteger<std::strtoll>},
  };
};

template <>
struct CellReaders<unsigned long> {
  static constexpr CellReader<unsigned long> kRows[] = {
      {SQL_C_UBIGINT, readRaw<std::uint64_t>},
      {SQL_C_CHAR, readInteger<std::strtoull>},
  };
};

template <>
struct CellReaders<double> {
  static constexpr CellReader<double> kRows[] = {
      {SQL_C_DOUBLE, readRaw<double>},
      {SQL_C_FLOAT, readRaw<float>},
      {SQL_C_CHAR, readDouble},
  };
};

// Kept: these two copy the structure and answer an error all the same.
template <>
struct CellReaders<TIMESTAMP_STRUCT> {
  static constexpr CellReader<TIMESTAMP_STRUCT> kRows[] = {
      {SQL_C_TYPE_TIMESTAMP, readRaw<TIMESTAMP_STRUCT>, Odbc::e_Error},
  };
};

template <>
struct CellReaders<TIME_STRUCT> {
  static constexpr CellReader<TIME_STRUCT> kRows[] = {
      {SQL_C_TYPE_TIME, readRaw<TIME_STRUCT>, Odbc::e_Error},
  };
};

// The value of a cell in the wanted type. The C type is looked at first, then NULL.
template <typename Out>
Odbc::e_Status readCell(SQLSMALLINT cType, bool isNull, const ByteStore& bytes, Out& out) {
  for (const CellReader<Out>& reader : CellReaders<Out>::kRows) {
    if (reader.cType != cType) continue;
    if (isNull) {
      out = Out{};
      return reader.whenNull;
    }
    return reader.read(bytes, out) ? reader.whenRead : Odbc::e_Error;
  }
  return Odbc::e_Error;
}

template <typename Out>
Odbc::e_Status readCell(const CellContent& cell, Out& out) {
  return readCell(cell.cType, cell.isNull(), cell.buffer, out);
}

}  // namespace KORVEX::Zel::DB::ODBC
