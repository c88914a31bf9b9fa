#include "driver2/timestamp_structure.h"

namespace KORVEX::Zel::DB::ODBC {

bool makeTimestamp(long count, const DateUnit& unit, TIMESTAMP_STRUCT& timestamp) {
  // Floor division: the remainder, and with it the fraction, is never negative.
  long seconds = count / unit.perSecond;
  long remainder = count % unit.perSecond;
  if (remainder < 0) {
    remainder += unit.perSecond;
    --seconds;
  }
  std::tm time{};
  if (!DataTypes::breakDownUtc(seconds, time)) return false;
  const long year = time.tm_year + 1900L;
  if (year != static_cast<SQLSMALLINT>(year)) return false;
  timestamp = {static_cast<SQLSMALLINT>(year),
               static_cast<SQLUSMALLINT>(time.tm_mon + 1),
               static_cast<SQLUSMALLINT>(time.tm_mday),
               static_cast<SQLUSMALLINT>(time.tm_hour),
               static_cast<SQLUSMALLINT>(time.tm_min),
               static_cast<SQLUSMALLINT>(time.tm_sec),
               static_cast<SQLUINTEGER>(remainder) * unit.nanosPerUnit};
  return true;
}

long secondsOfPlain(const TIMESTAMP_STRUCT& timestamp, SecondsOf secondsOf) {
  std::tm time{};
  time.tm_year = timestamp.year - 1900;
  time.tm_mon = timestamp.month - 1;
  time.tm_mday = timestamp.day;
  time.tm_hour = timestamp.hour;
  time.tm_min = timestamp.minute;
  time.tm_sec = timestamp.second;
  return secondsOf(&time);
}

}  // namespace KORVEX::Zel::DB::ODBC
