#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "datatypes/calendar.h"
#include "datatypes/characters.h"
#include "datatypes/conversions.h"
#include "datatypes/hex.h"
#include "datatypes/instant_text.h"
#include "datatypes/money_format.h"
#include "datatypes/number_text.h"
#include "datatypes/packed.h"
#include "datatypes/time_text.h"

namespace DataTypes {

const char* const kOutputBufferOverflow = "output buffer overflow";

namespace {

constexpr const char* kUnknownType = "conversion to unknown type";

// The formats of a conversion, none of them null.
struct Formats {
  Formats(const char* dateFormat, const char* timestampFormat, const char* bigdatetimeFormat,
          const char* timeFormat)
      : date(dateFormat != nullptr ? dateFormat : g_date_format),
        timestamp(timestampFormat != nullptr ? timestampFormat : date),
        bigdatetime(bigdatetimeFormat != nullptr ? bigdatetimeFormat : timestamp),
        time(timeFormat != nullptr ? timeFormat : g_time_format) {}
  const char* date;
  const char* timestamp;
  const char* bigdatetime;
  const char* time;
};

// A text to be read as a type of fixed size.
struct Parsing {
  unsigned type;
  const char* text;
  const Formats& formats;
};

// Each sets the cell's payload and returns null, or returns the message.
using Parser = const char* (*)(const Parsing&, DataValue&);

struct NumberMessages {
  const char* badBegin;
  const char* badEnd;
  const char* outOfRange;
  const char* badFraction = nullptr;

  const char* of(NumberStatus status) const {
    switch (status) {
      case NumberStatus::kBadBegin:
        return badBegin;
      case NumberStatus::kBadFraction:
        return badFraction;
      case NumberStatus::kBadEnd:
        return badEnd;
      case NumberStatus::kOutOfRange:
        return outOfRange;
      case NumberStatus::kOk:
        break;
    }
    return nullptr;
  }
};

constexpr NumberMessages kInt16Messages = {"integer constant does not begin with a legal character",
                                           "integer constant does not end with a legal character",
                                           "16-bit integer constant out of range"};
constexpr NumberMessages kIntegerMessages = {
    "integer constant does not begin with a legal character",
    "integer constant does not end with a legal character", "integer constant out of range"};
constexpr NumberMessages kLongMessages = {"long constant does not begin with a legal character",
                                          "long constant does not end with a legal character",
                                          "long constant out of range"};
constexpr NumberMessages kIntervalMessages = {
    "interval constant does not begin with a legal character",
    "interval constant does not end with a legal character", "integer constant out of range"};
constexpr NumberMessages kFloatMessages = {"float constant does not begin with a legal character",
                                           "float constant does not end with a legal character",
                                           "float constant out of range"};
constexpr NumberMessages kMoneyMessages = {
    "money constant does not begin with a legal character",
    "money constant does not end with a legal character", "money constant out of range",
    "money constant fractional part does not begin with a digit"};

template <const NumberMessages& Messages>
const char* parseCount(const Parsing& p, DataValue& cell, long min, long max) {
  long value = 0;
  const NumberStatus status = parseInteger(p.text, value);
  if (status != NumberStatus::kOk) return Messages.of(status);
  if (value < min || value > max) return Messages.outOfRange;
  cell.int64 = value;
  return nullptr;
}

const char* parseInt16(const Parsing& p, DataValue& cell) {
  DataValue wide;
  const char* message = parseCount<kInt16Messages>(p, wide, SHRT_MIN, SHRT_MAX);
  if (message == nullptr) cell.int16 = static_cast<std::int16_t>(wide.int64);
  return message;
}

const char* parseInt32(const Parsing& p, DataValue& cell) {
  DataValue wide;
  const char* message = parseCount<kIntegerMessages>(p, wide, INT_MIN, INT_MAX);
  if (message == nullptr) cell.int32 = static_cast<std::int32_t>(wide.int64);
  return message;
}

template <const NumberMessages& Messages>
const char* parseInt64(const Parsing& p, DataValue& cell) {
  return parseCount<Messages>(p, cell, LONG_MIN, LONG_MAX);
}

const char* parseFloat(const Parsing& p, DataValue& cell) {
  return kFloatMessages.of(parseDouble(p.text, cell.float64));
}

const char* parseMoneyValue(const Parsing& p, DataValue& cell) {
  const MoneyFormat format = moneyFormat(p.type);
  return kMoneyMessages.of(parseMoney(p.text, format.decimals, format.factor, cell.int64));
}

const char* parseDate(const Parsing& p, DataValue& cell) {
  if (parseSeconds(p.text, p.formats.date, cell.int64) == InstantStatus::kOk) return nullptr;
  return std::strcmp(p.formats.date, "%s") == 0 ? "date constant does not match standard format"
                                                : "date constant does not match format";
}

const char* parseTime(const Parsing& p, DataValue& cell) {
  std::tm t{};
  if (DataTypes::strptime(p.text, p.formats.time, &t) == nullptr)
    return "time constant does not match format";
  cell.int64 = tm2sec(&t);
  return nullptr;
}

const char* parseTimestamp(const Parsing& p, DataValue& cell) {
  switch (parseInstant(p.text, kTimestampUnit, p.formats.timestamp, cell.int64)) {
    case InstantStatus::kNoSplit:
      return "could not split timestamp into datetime and millisecond portions.";
    case InstantStatus::kNoMatch:
      return "timestamp constant does not match format";
    case InstantStatus::kOverflow:
      return "timestamp overflow";
    case InstantStatus::kOk:
      break;
  }
  return nullptr;
}

const char* parseBigDateTime(const Parsing& p, DataValue& cell) {
  switch (parseInstant(p.text, kBigDateTimeUnit, p.formats.bigdatetime, cell.int64)) {
    case InstantStatus::kNoSplit:
      return "could not split bigdatetime into datetime and microsecond portions.";
    case InstantStatus::kNoMatch:
      return "bigdatetime constant does not match format";
    case InstantStatus::kOverflow:
      return "bigdatetime overflow";
    case InstantStatus::kOk:
      break;
  }
  return nullptr;
}

struct BooleanWord {
  const char* text;
  std::uint8_t value;
};

// A word is the whole text between blanks, so the order does not matter.
constexpr BooleanWord kBooleanWords[] = {{"t", 1},  {"true", 1}, {"y", 1},   {"yes", 1},
                                         {"on", 1}, {"1", 1},    {"f", 0},   {"false", 0},
                                         {"n", 0},  {"no", 0},   {"off", 0}, {"0", 0}};

// The white space that may surround a boolean and stand in hexadecimal text.
const char* skipBlanks(const char* text) {
  return text + std::strspn(text, "\t \r\n");
}

const char* parseBoolean(const Parsing& p, DataValue& cell) {
  const char* begin = skipBlanks(p.text);
  for (const BooleanWord& word : kBooleanWords) {
    if (!beginsWith(begin, word.text) || *skipBlanks(begin + std::strlen(word.text)) != '\0')
      continue;
    cell.boolean = word.value;
    return nullptr;
  }
  return "not a legal boolean value";
}

const char* parseFixedDecimal(const Parsing& p, DataValue& cell) {
  FixedDecimalValue value;
  if (!value.setDecimalValue(static_cast<int>(precisionOf(p.type)),
                             static_cast<int>(scaleOf(p.type)), p.text))
    return "input exceeds specified precision";
  std::memcpy(cell.bytes, &value, sizeof value);
  return nullptr;
}

struct ParserRow {
  TypeFamily family;
  Parser parse;
};

// Strings and binaries have no fixed size, other codes no value.
constexpr ParserRow kParserRows[] = {
    {TypeFamily::kInt16, parseInt16},
    {TypeFamily::kInt32, parseInt32},
    {TypeFamily::kInt64, parseInt64<kLongMessages>},
    {TypeFamily::kDouble, parseFloat},
    {TypeFamily::kDate, parseDate},
    {TypeFamily::kMoney, parseMoneyValue},
    {TypeFamily::kTimestamp, parseTimestamp},
    {TypeFamily::kBoolean, parseBoolean},
    {TypeFamily::kInterval, parseInt64<kIntervalMessages>},
    {TypeFamily::kBigDateTime, parseBigDateTime},
    {TypeFamily::kTime, parseTime},
    {TypeFamily::kFixedDecimal, parseFixedDecimal},
};

// The parser of each type number.
constexpr auto kParsers = [] {
  std::array<Parser, kTypeCount> parsers{};
  for (unsigned type = 0; type < kTypeCount; ++type)
    for (const ParserRow& row : kParserRows)
      if (row.family == kTypeTable[type].family) parsers[type] = row.parse;
  return parsers;
}();

// Reads a value of fixed size into a zeroed cell; returns null or the message.
const char* parseFixedSize(const Parsing& p, DataValue& cell) {
  const unsigned number = typeNumber(p.type);
  const Parser parse = number < kTypeCount ? kParsers[number] : nullptr;
  return parse != nullptr ? parse(p, cell) : kUnknownType;
}

// Where a text is packed to.
struct Target {
  unsigned char* out;
  std::size_t size;
};

int packString(const char* text, Target target, const char*& message) {
  const std::size_t bytes = std::strlen(text) + 1;
  if (bytes > target.size || bytes > INT_MAX) {
    message = kOutputBufferOverflow;
    return -1;
  }
  std::memcpy(target.out, text, bytes);
  return static_cast<int>(bytes);
}

int packBinary(const char* text, Target target, const char*& message) {
  if (target.size < kPackedLengthBytes) {
    message = kOutputBufferOverflow;
    return -1;
  }
  const int length = convertBinaryFromHexString(text, target.out + kPackedLengthBytes,
                                                target.size - kPackedLengthBytes, message);
  if (length < 0) {
    message = "DataType::convertFromStringAndPack() could not convert binary data from hex.";
    return -1;
  }
  storePackedLength(static_cast<std::uint32_t>(length), target.out);
  return length + static_cast<int>(kPackedLengthBytes);
}

int packFixedSize(const Parsing& p, bool swap, Target target, const char*& message) {
  DataValue cell;
  if (const char* failure = parseFixedSize(p, cell)) {
    message = failure;
    return -1;
  }
  const unsigned bytes = g_column_lengths[typeNumber(p.type)];
  if (bytes > target.size) {
    message = kOutputBufferOverflow;
    return -1;
  }
  std::memcpy(target.out, cell.bytes, bytes);
  if (swap && payloadOf(p.type) != PayloadKind::kDecimal)
    std::reverse(target.out, target.out + bytes);
  return static_cast<int>(bytes);
}

bool setString(const char* text, DataValue& cell, const char*& message) {
  char* copy = ::strdup(text);
  if (copy == nullptr) {
    message = "DataType::convertFromString() could not allocate memory for string copy.";
    return false;
  }
  // The copy is made first: the text may be the cell's own.
  if (!cell.isNull()) std::free(const_cast<char*>(cell.string));
  cell.clear();
  cell.string = copy;
  return true;
}

bool setBinary(const char* text, DataValue& cell, const char*& message) {
  const std::size_t expected = getBinaryDataSizeFromHexString(text);
  auto* data = static_cast<unsigned char*>(std::malloc(expected != 0 ? expected : 1));
  if (data == nullptr) {
    message = "DataType::convertFromString() could not allocate memory for binary value.";
    return false;
  }
  const int length = convertBinaryFromHexString(text, data, expected, message);
  // Kept: the length promises the bytes, so all but a single white-space character is refused.
  if (length < 0 || static_cast<std::size_t>(length) != expected) {
    std::free(data);
    message = "DataType::convertFromString() could not convert binary data from hex.";
    return false;
  }
  if (!cell.isNull()) std::free(const_cast<unsigned char*>(cell.binary.data));
  cell.clear();
  cell.binary.data = data;
  cell.binary.length = static_cast<std::uint32_t>(expected);
  return true;
}

}  // namespace

int convertFromStringAndPack(const unsigned int& type, bool swap, const char* text,
                             unsigned char* out, std::size_t outSize, const char*& message,
                             const char* dateFormat, const char* timestampFormat,
                             const char* bigdatetimeFormat, const char* timeFormat) {
  if (text == nullptr) text = "";
  if (familyOf(type) == TypeFamily::kString) return packString(text, {out, outSize}, message);
  if (familyOf(type) == TypeFamily::kBinary) return packBinary(text, {out, outSize}, message);
  const Formats formats(dateFormat, timestampFormat, bigdatetimeFormat, timeFormat);
  return packFixedSize({type, text, formats}, swap, {out, outSize}, message);
}

bool convertFromString(const unsigned int& type, const char* text, DataValue& cell,
                       const char*& message, const char* dateFormat, const char* timestampFormat,
                       const char* bigdatetimeFormat, const char* timeFormat) {
  if (text == nullptr) text = "";
  if (familyOf(type) == TypeFamily::kString) return setString(text, cell, message);
  if (familyOf(type) == TypeFamily::kBinary) return setBinary(text, cell, message);
  const Formats formats(dateFormat, timestampFormat, bigdatetimeFormat, timeFormat);
  DataValue parsed;
  if (const char* failure = parseFixedSize({type, text, formats}, parsed)) {
    message = failure;
    return false;
  }
  cell = parsed;
  return true;
}

int packAndAppendValue(unsigned char* out, std::size_t outSize, const char* text,
                       const unsigned int& type, const char* dateFormat,
                       const char* timestampFormat, const char* bigdatetimeFormat,
                       const char* timeFormat, const char*& message) {
  const int bytes = convertFromStringAndPack(type, false, text, out, outSize, message, dateFormat,
                                             timestampFormat, bigdatetimeFormat, timeFormat);
  return bytes < 0 ? 0 : bytes;
}

}  // namespace DataTypes
