#pragma once

// Dates and times written and read by a picture such as YYYY-MM-DD HH24:MI:SS.FF3.

#include <string>

#include "host/export.h"

namespace DataTypes {

// Each writes a value by `picture` as the clock of `zone` shows it; a null zone means UTC. `out`
// becomes the text, or empty: for an unknown zone, a picture with a token that cannot be printed,
// a value too far from 1970 for 64-bit microseconds, or when memory runs out.
// Milliseconds since the epoch.
ZEL_EXPORT void TimestampToString(long value, const char* picture, const char* zone,
                                  std::string& out);
// Seconds since the epoch.
ZEL_EXPORT void DateToString(long value, const char* picture, const char* zone, std::string& out);
// Microseconds since the epoch.
ZEL_EXPORT void BigDateTimeToString(long value, const char* picture, const char* zone,
                                    std::string& out);

// Each reads `text` by `picture`. Returns false when the text does not match or the value does not
// fit 64 bits; `out` is left alone then.
// Kept: a picture without a year means 1900, and a zone read by name shifts the reading in the same
// direction as in writing.
// Milliseconds since the epoch.
ZEL_EXPORT bool TimestampFromString(const char* text, const char* picture, long& out);
// Seconds since the epoch.
ZEL_EXPORT bool DateFromString(const char* text, const char* picture, long& out);
// Seconds; the same as DateFromString.
ZEL_EXPORT bool TimeFromString(const char* text, const char* picture, long& out);
// Microseconds since the epoch.
ZEL_EXPORT bool BigDateTimeFromString(const char* text, const char* picture, long& out);

}  // namespace DataTypes
