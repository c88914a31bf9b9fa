#include "tests/live/generated_row.h"

#include <iterator>
#include <limits>

#include "datatypes/data_types.h"
#include "zeldb/value_text.h"

namespace live {
namespace {

using namespace DataTypes;

constexpr std::int64_t kSecondsOfRange = 2'500'000'000;  // 1890 to 2049
constexpr std::int64_t kSecondsOfDay = 86'400;
constexpr std::size_t kMaxPieces = 30;
constexpr std::size_t kBufferEnd = 128;
constexpr std::size_t kFixedBytes = 8;
constexpr std::size_t kMaxBytes = 200;
constexpr std::size_t kShownBytes = 40;

std::string shown(unsigned int type, const DataValue& value) {
  if (value.isNull()) return "NULL";
  const std::string text = zeldb::valueText(type, value);
  return text.size() <= kShownBytes ? text : std::to_string(text.size()) + " characters";
}

}  // namespace

std::vector<LiveColumn> liveColumns(const Quirks& quirks) {
  return {
      {"id", kInteger, "integer"},
      {"c_int16", kInt16, "smallint"},
      {"c_integer", kInteger, "integer"},
      {"c_long", kLong, "bigint"},
      {"c_float", kFloat, quirks.float64},
      {"c_string", kString, "varchar(400)"},
      {"c_money", kMoney, quirks.money},
      {"c_money2", kMoney1 + 1, quirks.money},
      {"c_decimal", createFixedDecimal(34, 10), quirks.decimal34},
      {"c_boolean", kBoolean, quirks.boolean},
      {"c_date", kDate, quirks.date},
      {"c_timestamp", kTimestamp, quirks.timestamp},
      {"c_bigdatetime", kBigDateTime, quirks.bigDateTime},
      {"c_time", kTime, "time"},
      {"c_interval", kInterval, "bigint"},
      {"c_binary", kBinary, quirks.binary},
  };
}

std::string createTableSql(const std::string& table, const std::vector<LiveColumn>& columns) {
  std::string list;
  for (const LiveColumn& column : columns) {
    list += (list.empty() ? "" : ", ") + std::string(column.name) + " " + column.sqlType +
            (list.empty() ? " primary key" : " null");
  }
  return "create table " + table + " (" + list + ")";
}

std::string insertSql(const std::string& table, const std::vector<LiveColumn>& columns) {
  std::string markers = "?";
  for (std::size_t at = 1; at < columns.size(); ++at) markers += ", ?";
  return "insert into " + table + " values (" + markers + ")";
}

std::string difference(const KORVEX::Zel::DB::Parameter& sent, DataValue got) {
  DataValue want = sent.value;
  const bool same = want.isNull() || got.isNull() ? want.isNull() == got.isNull()
                                                  : equalValues(want, got, sent.type);
  return same ? "" : shown(sent.type, want) + " comes back as " + shown(sent.type, got);
}

const std::vector<KORVEX::Zel::DB::Parameter>& GeneratedRow::make(int number) {
  state_ = static_cast<std::uint64_t>(number);
  row_.assign(columns_.size(), {});
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    row_[at].type = columns_[at].type;
    if (at == 0) {
      row_[at].value.int32 = number;
    } else if (random() % 5 == 0) {
      row_[at].value.setNull();
    } else {
      fill(columns_[at].type, row_[at].value);
    }
  }
  return row_;
}

void GeneratedRow::fill(unsigned int type, DataValue& value) {
  switch (typeNumber(type)) {
    case kInt16:
      value.int16 = static_cast<std::int16_t>(upTo(std::numeric_limits<std::int16_t>::max()));
      break;
    case kInteger:
      value.int32 = static_cast<std::int32_t>(upTo(std::numeric_limits<std::int32_t>::max()));
      break;
    case kFloat:  // 15 digits: what every driver carries as text
      value.float64 = static_cast<double>(upTo(7'999'999'999'999)) / 8;
      break;
    case kBoolean:
      value.boolean = random() % 2;
      break;
    case kString:
      fillString(value);
      break;
    case kBinary:
      fillBinary(value);
      break;
    case kFixedDecimal:
      fillDecimal(type, value);
      break;
    case kDate:
      value.int64 = upTo(kSecondsOfRange);
      break;
    case kTimestamp:
      value.int64 = upTo(kSecondsOfRange * 1000);
      break;
    case kBigDateTime:
      value.int64 =
          upTo(kSecondsOfRange * 1'000'000 / quirks_.microsecondStep) * quirks_.microsecondStep;
      break;
    case kTime:
      value.int64 = static_cast<std::int64_t>(random() % kSecondsOfDay);
      break;
    case kMoney1 + 1:  // the column holds 15 digits before the point
      value.int64 = upTo(99'999'999'999'999'999);
      break;
    default:
      value.int64 = upTo(std::numeric_limits<std::int64_t>::max());
  }
}

void GeneratedRow::fillString(DataValue& value) {
  static constexpr const char* kPieces[] = {"a", "Z9", " ", "'\"", "é", "€", "😀", "ไทย"};
  text_.clear();
  for (std::size_t pieces = random() % kMaxPieces; pieces > 0; --pieces) {
    text_ += kPieces[random() % std::size(kPieces)];
  }
  if (random() % 4 == 0) text_.assign(kBufferEnd - 1 + random() % 3, 'x');
  value.string = text_.c_str();
}

void GeneratedRow::fillBinary(DataValue& value) {
  bytes_.resize(binaryLengthsDiffer_ ? random() % kMaxBytes : kFixedBytes);
  for (unsigned char& byte : bytes_) {
    byte = static_cast<unsigned char>(random());
  }
  value.binary = {bytes_.data(), static_cast<std::uint32_t>(bytes_.size())};
}

void GeneratedRow::fillDecimal(unsigned int type, DataValue& value) {
  __extension__ using Wide = __int128;
  Wide coefficient = 0;
  for (std::uint64_t digits = random() % (precisionOf(type) + 1); digits > 0; --digits) {
    coefficient = coefficient * 10 + static_cast<Wide>(random() % 10);
  }
  coefficient = random() % 2 == 0 ? coefficient : -coefficient;
  value.decimal.low = static_cast<std::uint64_t>(coefficient);
  value.decimal.high = static_cast<std::uint64_t>(coefficient >> 64);
  value.decimal.scale = static_cast<std::uint8_t>(scaleOf(type));
  value.decimal.precision = static_cast<std::uint8_t>(precisionOf(type));
}

// Steps a counter and mixes its bits.
std::uint64_t GeneratedRow::random() {
  state_ += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return mixed ^ (mixed >> 31);
}

std::int64_t GeneratedRow::upTo(std::int64_t limit) {
  const std::uint64_t bits = random();
  switch (bits % 16) {
    case 0:
      return limit;
    case 1:
      return -limit;
    case 2:
      return 0;
    default: {
      const auto magnitude =
          static_cast<std::int64_t>((bits >> 1) % static_cast<std::uint64_t>(limit));
      return bits >> 63 == 0 ? magnitude : -magnitude;
    }
  }
}

}  // namespace live
