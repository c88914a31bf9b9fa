#include "driver2/timestamp_structure.h"

#include "datatypes/calendar.h"

namespace KORVEX::Zel::DB::ODBC {

bool makeTimestamp(long count, long unitsPerSecond, unsigned int nanosPerUnit,
                   TIMESTAMP_STRUCT& timestamp) {
  // Floor division: the remainder, and with it the fraction, is never negative.
  long seconds = count / unitsPerSecond;
  long remainder = count % unitsPerSecond;
  if (remainder < 0) {
    remainder += unitsPerSecond;
    --seconds;
  }
  std::tm time{};
  if (!DataTypes::breakDownUtc(seconds, time)) return false;
  timestamp = {static_cast<SQLSMALLINT>(time.tm_year + 1900),
               static_cast<SQLUSMALLINT>(time.tm_mon + 1),
               static_cast<SQLUSMALLINT>(time.tm_mday),
               static_cast<SQLUSMALLINT>(time.tm_hour),
               static_cast<SQLUSMALLINT>(time.tm_min),
               static_cast<SQLUSMALLINT>(time.tm_sec),
               static_cast<SQLUINTEGER>(remainder) * nanosPerUnit};
  return true;
}

std::tm brokenDown(const TIMESTAMP_STRUCT& timestamp) {
  std::tm time{};
  time.tm_year = timestamp.year - 1900;
  time.tm_mon = timestamp.month - 1;
  time.tm_mday = timestamp.day;
  time.tm_hour = timestamp.hour;
  time.tm_min = timestamp.minute;
  time.tm_sec = timestamp.second;
  return time;
}

}  // namespace KORVEX::Zel::DB::ODBC
