#include "driver/date_time_column.h"

#include <emmintrin.h>
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <span>

#include "datatypes/data_types.h"
#include "driver2/timestamp_structure.h"
#include "host/intl.h"

namespace KORVEX::Zel::DB {

namespace {

using DataTypes::DataValue;
using ODBC::CellContent;
using ODBC::DateUnit;
using ODBC::SecondsOf;

// Microsoft SQL Server's time type with a fraction; its structure starts like an ODBC time.
constexpr short kSqlServerTime2 = -154;

constexpr unsigned kNanosPerSecond = 1'000'000'000;
constexpr char kIsoPicture[] = "%Y-%m-%dT%H:%M:%S";
constexpr char kBlankPicture[] = "%Y-%m-%d %H:%M:%S";
constexpr char kDatePicture[] = "%Y-%m-%d";

enum class Layout { kNone, kTimestamp, kTime, kText };

struct LayoutRow {
  short cType;
  Layout layout;
};

constexpr LayoutRow kLayouts[] = {
    {SQL_C_TYPE_TIMESTAMP, Layout::kTimestamp},
    {SQL_C_TYPE_TIME, Layout::kTime},
    {SQL_C_CHAR, Layout::kText},
};

Layout layoutOf(const CellContent& column) {
  const auto* row = std::ranges::find(kLayouts, column.cType, &LayoutRow::cType);
  if (row != std::end(kLayouts)) return row->layout;
  return column.sqlType == kSqlServerTime2 ? Layout::kTime : Layout::kNone;
}

// The column's bytes where they lie.
ReadResult readBytes(const CellContent& column, std::span<const unsigned char>& bytes) {
  if (column.isNull()) return {ReadResult::kNull};
  bytes = {column.buffer.Data(), column.buffer.Length()};
  return {ReadResult::kValue};
}

std::string textOf(std::span<const unsigned char> bytes) {
  return {bytes.begin(), bytes.end()};
}

// The column's structure; a time becomes that time on the first day of the epoch.
ReadResult readStructure(const CellContent& column, Layout layout, TIMESTAMP_STRUCT& timestamp) {
  std::span<const unsigned char> bytes;
  const ReadResult result = readBytes(column, bytes);
  if (result.outcome != ReadResult::kValue) return result;
  if (layout == Layout::kTimestamp && bytes.size() >= sizeof timestamp) {
    std::memcpy(&timestamp, bytes.data(), sizeof timestamp);
    return {ReadResult::kValue};
  }
  TIME_STRUCT time{};
  if (layout == Layout::kTime && bytes.size() >= sizeof time) {
    std::memcpy(&time, bytes.data(), sizeof time);
    timestamp = {1970, 1, 1, time.hour, time.minute, time.second, 0};
    return {ReadResult::kValue};
  }
  return {ReadResult::kFailed, "the column holds no date or time structure"};
}

// Whether every field has the range that the plain way through text accepts.
bool inRange(const TIMESTAMP_STRUCT& t) {
  return t.year >= 0 && t.year <= 9999 && t.month >= 1 && t.month <= 12 && t.day >= 1 &&
         t.day <= 31 && t.hour <= 23 && t.minute <= 59 && t.second <= 61 &&
         t.fraction < kNanosPerSecond;
}

// The digits of a fraction in the unit.
constexpr int fractionDigits(const DateUnit& unit) {
  int digits = 0;
  for (long units = unit.perSecond; units > 1; units /= 10) ++digits;
  return digits;
}

// The plain way: the fields as text, and the text parsed. Decides about fields out of range.
ReadResult parseFields(const TIMESTAMP_STRUCT& t, const DateUnit& unit, DataValue& cell) {
  char text[64] = {};
  const int length =
      intl_snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", int{t.year}, int{t.month},
                    int{t.day}, int{t.hour}, int{t.minute}, int{t.second});
  if (unit.nanosPerUnit != 0) {
    intl_snprintf(text + length, sizeof text - static_cast<std::size_t>(length), ".%0*u",
                  fractionDigits(unit), static_cast<unsigned>(t.fraction) / unit.nanosPerUnit);
  }
  const char* message = nullptr;
  DataValue parsed;
  if (!DataTypes::convertFromString(unit.typeNumber, text, parsed, message, kIsoPicture,
                                    kIsoPicture, kIsoPicture, nullptr)) {
    return {ReadResult::kFailed, message};
  }
  cell = parsed;
  return {ReadResult::kValue};
}

// Reads ".5" and the like as nanoseconds. True when nothing else follows.
bool parseFraction(const char* text, unsigned& nanos) {
  nanos = 0;
  if (*text == '\0') return true;
  if (*text != '.' || std::isdigit(static_cast<unsigned char>(text[1])) == 0) return false;
  unsigned place = kNanosPerSecond / 10;
  for (++text; std::isdigit(static_cast<unsigned char>(*text)) != 0; ++text) {
    nanos += static_cast<unsigned>(*text - '0') * place;
    place /= 10;
  }
  return *text == '\0';
}

bool parseIso(const char* text, tm& time, unsigned& nanos) {
  for (const char* picture : {kIsoPicture, kBlankPicture, kDatePicture}) {
    const char* rest = DataTypes::strptime(text, picture, &time);
    if (rest != nullptr && parseFraction(rest, nanos)) return true;
  }
  return false;
}

ReadResult readIsoText(const CellContent& column, const DateUnit& unit, SecondsOf secondsOf,
                       DataValue& cell) {
  std::span<const unsigned char> bytes;
  const ReadResult result = readBytes(column, bytes);
  if (result.outcome != ReadResult::kValue) return result;
  const std::string text = textOf(bytes);
  tm time{};
  unsigned nanos = 0;
  if (!parseIso(text.c_str(), time, nanos)) {
    return {ReadResult::kFailed, "the text is not an ISO date and time"};
  }
  cell.int64 = secondsOf(&time) * unit.perSecond;
  if (unit.nanosPerUnit != 0) cell.int64 += nanos / unit.nanosPerUnit;
  return {ReadResult::kValue};
}

ReadResult readDate(const CellContent& column, unsigned int type, SecondsOf secondsOf,
                    DataValue& cell) {
  const DateUnit* unit = ODBC::dateUnitOf(type);
  if (unit == nullptr) return {ReadResult::kFailed};
  TIMESTAMP_STRUCT timestamp{};
  if (column.cType == SQL_C_TYPE_TIMESTAMP && column.buffer.Length() == sizeof timestamp) {
    // What readStructure does for most columns, without a look at the others.
    if (column.isNull()) return {ReadResult::kNull};
    std::memcpy(&timestamp, column.buffer.Data(), sizeof timestamp);
  } else {
    const Layout layout = layoutOf(column);
    if (layout == Layout::kText) return readIsoText(column, *unit, secondsOf, cell);
    const ReadResult result = readStructure(column, layout, timestamp);
    if (result.outcome != ReadResult::kValue) return result;
  }
  if (!inRange(timestamp)) return parseFields(timestamp, *unit, cell);
  cell.int64 = ODBC::countOfTimestamp(timestamp, *unit, secondsOf);
  return {ReadResult::kValue};
}

// Whether a timestamp is one of 1970 to 9999 with every field in its range: inRange of all fields
// at once, each less the least that it may be and compared with the most. The fraction, whose two
// halves mean nothing by themselves, is compared on its own.
bool isUsual(const TIMESTAMP_STRUCT& t) {
  static_assert(sizeof t == sizeof(__m128i) && offsetof(TIMESTAMP_STRUCT, fraction) == 12);
  const __m128i least = _mm_setr_epi16(1970, 1, 1, 0, 0, 0, 0, 0);
  const __m128i most = _mm_setr_epi16(9999 - 1970, 12 - 1, 31 - 1, 23, 59, 61, -1, -1);
  __m128i fields;
  std::memcpy(&fields, &t, sizeof fields);
  const __m128i beyond = _mm_subs_epu16(_mm_sub_epi16(fields, least), most);
  const __m128i isZero = _mm_cmpeq_epi16(beyond, _mm_setzero_si128());
  return _mm_movemask_epi8(isZero) == 0xFFFF && t.fraction < kNanosPerSecond;
}

// What readDate gives for a timestamp column; reads the usual one at once.
template <unsigned TypeNumber, SecondsOf Seconds>
ReadResult readTimestamp(const CellContent& column, unsigned int type, DataValue& cell) {
  constexpr DateUnit kUnit = *ODBC::dateUnitOf(TypeNumber);
  if (column.buffer.Length() != sizeof(TIMESTAMP_STRUCT)) {
    return readDate(column, type, Seconds, cell);
  }
  if (column.isNull()) return {ReadResult::kNull};
  // Where the driver wrote it: a block of the allocator, aligned for everything.
  const auto& timestamp = *reinterpret_cast<const TIMESTAMP_STRUCT*>(column.buffer.Data());
  if (!isUsual(timestamp)) return readDate(column, type, Seconds, cell);
  cell.int64 = ODBC::countOf(ODBC::secondsSince1970(timestamp), timestamp.fraction, kUnit);
  return {ReadResult::kValue};
}

struct TimestampReaderRow {
  unsigned int typeNumber;
  ColumnReader read;
  ColumnReader readSafely;
};

template <unsigned TypeNumber>
constexpr TimestampReaderRow timestampReaders() {
  return {TypeNumber, readTimestamp<TypeNumber, DataTypes::tm2sec>,
          readTimestamp<TypeNumber, DataTypes::tm2secUtc>};
}

constexpr TimestampReaderRow kTimestampReaders[] = {
    timestampReaders<DataTypes::kDate>(),
    timestampReaders<DataTypes::kTimestamp>(),
    timestampReaders<DataTypes::kBigDateTime>(),
};

// The fraction's digits without trailing zeros, behind a point; nothing for 0.
std::string fractionText(unsigned nanos) {
  if (nanos == 0 || nanos >= kNanosPerSecond) return {};
  std::string digits = std::to_string(kNanosPerSecond + nanos);
  digits.front() = '.';
  digits.erase(digits.find_last_not_of('0') + 1);
  return digits;
}

// hh:mm:ss at the positions that every wide time text has.
ReadResult readWideTime(const CellContent& column, DataValue& cell) {
  constexpr std::size_t kShortest = 8;
  std::span<const unsigned char> bytes;
  const ReadResult result = readBytes(column, bytes);
  if (result.outcome != ReadResult::kValue) return result;
  const std::string text = textOf(bytes);
  if (text.size() < kShortest) return {ReadResult::kUnparsable};
  const auto field = [&](std::size_t at) { return safeTimeAtoi(text.substr(at, 2).c_str()); };
  cell.int64 = field(0) * 3600 + field(3) * 60 + field(6);
  return {ReadResult::kValue};
}

}  // namespace

int safeTimeAtoi(const char* text) {
  const int value = std::atoi(text);  // NOLINT(cert-err34-c): 0 is looked at below
  if (value != 0) return value;
  return std::strcmp(text, "00") == 0 || std::strcmp(text, "0") == 0 ? 0 : -1;
}

ReadResult readDateTime(const CellContent& column, unsigned int type, DataValue& cell) {
  return readDate(column, type, DataTypes::tm2sec, cell);
}

ReadResult readDateTimeUtc(const CellContent& column, unsigned int type, DataValue& cell) {
  return readDate(column, type, DataTypes::tm2secUtc, cell);
}

ColumnReader findTimestampReader(unsigned int type, bool safely) {
  const auto* row = std::ranges::find(kTimestampReaders, DataTypes::typeNumber(type),
                                      &TimestampReaderRow::typeNumber);
  if (row == std::end(kTimestampReaders)) return nullptr;
  return safely ? row->readSafely : row->read;
}

ReadResult readTime(const CellContent& column, unsigned int, DataValue& cell) {
  if (column.sqlType == SQL_WVARCHAR) return readWideTime(column, cell);
  TIMESTAMP_STRUCT timestamp{};
  const ReadResult result = readStructure(column, layoutOf(column), timestamp);
  if (result.outcome != ReadResult::kValue) return result;
  cell.int64 = timestamp.hour * 3600 + timestamp.minute * 60 + timestamp.second;
  return result;
}

ReadResult readDateTimeText(const CellContent& column, std::string& text) {
  const Layout layout = layoutOf(column);
  TIMESTAMP_STRUCT t{};
  const ReadResult result = readStructure(column, layout, t);
  if (result.outcome != ReadResult::kValue) return result;
  const bool dateOnly = column.sqlType == SQL_TYPE_DATE;
  const bool timeOnly = layout == Layout::kTime;
  char date[32] = {};
  char time[32] = {};
  intl_snprintf(date, sizeof date, "%04d-%02d-%02d", int{t.year}, int{t.month}, int{t.day});
  intl_snprintf(time, sizeof time, "%02d:%02d:%02d", int{t.hour}, int{t.minute}, int{t.second});
  text = timeOnly ? time : dateOnly ? date : std::string(date) + 'T' + time;
  if (!dateOnly && !timeOnly) text += fractionText(t.fraction);
  return result;
}

}  // namespace KORVEX::Zel::DB
