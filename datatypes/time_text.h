#pragma once

// Date and time text without pictures: the default formats, the parser of strftime-style formats
// and the splitting of fractions.

#include <ctime>

namespace DataTypes {

// The strptime formats used where a conversion is given none. Process globals without a lock.
extern const char* g_date_format;              // "%Y-%m-%dT%H:%M:%S" at first
extern const char* g_time_format;              // "%H:%M:%S"
extern unsigned char g_date_format_allocated;  // 1 once g_date_format is the library's own copy

// How a date and time is written where no picture is given.
inline constexpr const char* kDateTimeLayout = "%04d-%02d-%02dT%02d:%02d:%02d";

// Makes a copy of `format` the default date format and frees the copy made before. A null format,
// or no memory, changes nothing. For start-up: nobody may be converting meanwhile.
void setDateFormat(char* format);

// Reads `text` by `format` into `result`, which is first set to 1970-01-01 00:00:00. Returns the
// first character that was not read, or null when the text does not match; fields read before
// the mismatch are set then. Knows the POSIX conversions with English names; see docs for the
// differences.
// Inside this name space always call it qualified: argument-dependent lookup also finds the C
// library's.
const char* strptime(const char* text, const char* format, std::tm* result);

// Splits a text at its last "." into what stands before it and the first 3 (6) characters behind
// it that are no white space, filled up with "0" on the right. Both are allocated with malloc and
// the caller's to free. Returns true; false with both null when memory runs out.
bool splitTimestamp(const char* text, char*& whole, char*& fraction);
bool splitBigdatetime(const char* text, char*& whole, char*& fraction);

}  // namespace DataTypes
