#include "driver/column_number.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>

#include "odbc/cell_readers.h"

namespace KORVEX::Zel::DB {

namespace {

using ODBC::CellContent;
using ODBC::Odbc;

using NumberGetter = Odbc::e_Status (*)(const CellContent& column, ColumnNumber& number);

template <typename Getter>
Odbc::e_Status getInteger(const CellContent& column, ColumnNumber& number) {
  Getter value{};
  const Odbc::e_Status status = ODBC::readCell(column, value);
  number.integer = static_cast<long>(value);
  return status;
}

Odbc::e_Status getDouble(const CellContent& column, ColumnNumber& number) {
  number.real = true;
  return ODBC::readCell(column, number.floating);
}

struct NumberRow {
  short cType;
  NumberGetter get;
};

// The accessor that takes each numeric C type a column can have.
constexpr NumberRow kNumbers[] = {
    {SQL_C_LONG, getInteger<int>},     {SQL_C_SHORT, getInteger<int>},
    {SQL_C_USHORT, getInteger<int>},   {SQL_C_TINYINT, getInteger<int>},
    {SQL_C_UTINYINT, getInteger<int>}, {SQL_C_ULONG, getInteger<unsigned int>},
    {SQL_C_SBIGINT, getInteger<long>}, {SQL_C_BIT, getInteger<bool>},
    {SQL_C_DOUBLE, getDouble},
};

// 2^63, the first double above the 64-bit range; its negation is the last one within.
constexpr double kInt64Limit = 9223372036854775808.0;

}  // namespace

bool ColumnNumber::toInt64(long& out) const {
  if (!real) {
    out = integer;
    return true;
  }
  if (!(floating >= -kInt64Limit && floating < kInt64Limit)) return false;
  const long whole = static_cast<long>(floating);
  if (static_cast<double>(whole) != floating) return false;
  out = whole;
  return true;
}

double ColumnNumber::toDouble() const {
  return real ? floating : static_cast<double>(integer);
}

std::string ColumnNumber::toText(bool plain) const {
  if (!real) return std::to_string(integer);
  std::array<char, 512> text{};  // the longest plain double has 309 + 17 digits, a sign and a point
  char* const end = text.data() + text.size();
  const auto result = plain ? std::to_chars(text.data(), end, floating, std::chars_format::fixed)
                            : std::to_chars(text.data(), end, floating);
  return {text.data(), result.ptr};
}

Odbc::e_Status readColumnNumber(const CellContent& column, ColumnNumber& number) {
  const auto* row = std::ranges::find(kNumbers, column.cType, &NumberRow::cType);
  return row == std::end(kNumbers) ? Odbc::e_Error : row->get(column, number);
}

}  // namespace KORVEX::Zel::DB
