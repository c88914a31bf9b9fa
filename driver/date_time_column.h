#pragma once

#include <string>

#include "driver/reader_table.h"
#include "odbc/cell_content.h"
#include "odbc/odbc.h"

namespace KORVEX::Zel::DB {

// Date (seconds), timestamp (milliseconds) and big date-time (microseconds), by the type code's low
// 8 bits. Takes timestamp columns; time columns as that time on 1970-01-01; and text columns that
// hold an ISO date and time, with "T" or a blank between them and perhaps a fraction. Digits beyond
// the type's unit are cut, not rounded.
// Kept: dates before 1970 count as local time of the process, which is right only in UTC.
ReadResult readDateTime(const ODBC::CellContent& column, unsigned int type,
                        DataTypes::DataValue& cell);

// The same with every date in UTC.
ReadResult readDateTimeUtc(const ODBC::CellContent& column, unsigned int type,
                           DataTypes::DataValue& cell);

// The reader of timestamp columns as one of the three types, or null for another type. It gives
// what readDateTime (`safely`: readDateTimeUtc) gives, without a look at other columns.
ColumnReader findTimestampReader(unsigned int type, bool safely);

// Time of day in seconds since midnight. Takes date, timestamp and time columns, and wide text of
// the form hh:mm:ss.
ReadResult readTime(const ODBC::CellContent& column, unsigned int type, DataTypes::DataValue& cell);

// The ISO text of a timestamp, date or time column: YYYY-MM-DDThh:mm:ss with the fraction's digits
// up to the last that is not 0, YYYY-MM-DD, or hh:mm:ss.
ReadResult readDateTimeText(const ODBC::CellContent& column, std::string& text);

// The number in a two-character field of a time: its decimal value when that is not 0; 0 for "00"
// and "0"; -1 for anything else.
int safeTimeAtoi(const char* text);

}  // namespace KORVEX::Zel::DB
