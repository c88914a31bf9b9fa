#pragma once

#include <sql.h>
#include <sqlext.h>

#include <ctime>

namespace KORVEX::Zel::DB::ODBC {

// A count of units since 1970-01-01 00:00:00 UTC as an ODBC timestamp. False, with `timestamp` left
// alone, when the year cannot be expressed.
bool makeTimestamp(long count, long unitsPerSecond, unsigned int nanosPerUnit,
                   TIMESTAMP_STRUCT& timestamp);

// An ODBC timestamp as a broken-down time; the fraction is left out.
std::tm brokenDown(const TIMESTAMP_STRUCT& timestamp);

}  // namespace KORVEX::Zel::DB::ODBC
