#include "driver2/parameter_conversion.h"

#include <cstdint>
#include <cstring>

#include "datatypes/data_types.h"
#include "driver2/db_error2_odbc.h"
#include "driver2/rows_by_type.h"
#include "driver2/timestamp_structure.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

using DataTypes::TypeFamily;

SQLPOINTER odbcData(const void* data) {
  return const_cast<void*>(data);  // input parameters are not written to
}

std::int64_t loadInt64(const void* value) {
  std::int64_t number = 0;
  std::memcpy(&number, value, sizeof number);
  return number;
}

int convertDate(const void* value, unsigned int type, ParameterScratch& scratch, BoundValue& bound,
                DBError* error) {
  if (!makeTimestamp(loadInt64(value), *dateUnitOf(type), scratch.timestamp)) {
    return failAccess(error, "error converting date");
  }
  bound = {&scratch.timestamp, sizeof scratch.timestamp};
  return 0;
}

int convertTime(const void* value, unsigned int, ParameterScratch& scratch, BoundValue& bound,
                DBError*) {
  const long seconds = loadInt64(value);
  scratch.time = {static_cast<SQLUSMALLINT>(seconds / 3600),
                  static_cast<SQLUSMALLINT>(seconds % 3600 / 60),
                  static_cast<SQLUSMALLINT>(seconds % 60)};
  bound = {&scratch.time, sizeof scratch.time};
  return 0;
}

int convertString(const void* value, unsigned int, ParameterScratch&, BoundValue& bound, DBError*) {
  bound = {odbcData(value), static_cast<SQLLEN>(std::strlen(static_cast<const char*>(value)))};
  return 0;
}

int convertText(const void* value, unsigned int type, ParameterScratch& scratch, BoundValue& bound,
                DBError*) {
  constexpr std::size_t kLongestText = sizeof scratch.text - 1;
  std::memset(scratch.text, 0, sizeof scratch.text);
  DataTypes::convertToString(type, false, false, static_cast<unsigned char*>(odbcData(value)),
                             scratch.text, kLongestText);
  bound = {scratch.text, static_cast<SQLLEN>(std::strlen(scratch.text))};
  return 0;
}

int convertBinary(const void* value, unsigned int, ParameterScratch&, BoundValue& bound, DBError*) {
  constexpr std::size_t kLengthBytes = 4;
  const auto* packed = static_cast<const unsigned char*>(value);
  bound = {odbcData(packed + kLengthBytes),
           static_cast<SQLLEN>(DataTypes::getLengthFromPackedBinary(packed))};
  return 0;
}

struct ConversionRow {
  TypeFamily family;
  int (*convert)(const void*, unsigned int, ParameterScratch&, BoundValue&, DBError*);
};

// Every other family is bound where its value lies.
constexpr ConversionRow kConversions[] = {
    {TypeFamily::kDate, convertDate},         {TypeFamily::kTimestamp, convertDate},
    {TypeFamily::kBigDateTime, convertDate},  {TypeFamily::kTime, convertTime},
    {TypeFamily::kString, convertString},     {TypeFamily::kMoney, convertText},
    {TypeFamily::kFixedDecimal, convertText}, {TypeFamily::kBinary, convertBinary},
};

constexpr auto kConversionOfType = rowsByType(kConversions);

}  // namespace

int convertParameter(const void* value, unsigned int type, ParameterScratch& scratch,
                     BoundValue& bound, DBError* error) {
  const ConversionRow* row = rowOf(kConversionOfType, type);
  if (row != nullptr) return row->convert(value, type, scratch, bound, error);
  bound = {odbcData(value), 0};
  return 0;
}

}  // namespace KORVEX::Zel::DB::ODBC
