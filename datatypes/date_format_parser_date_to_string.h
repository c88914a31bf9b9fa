#pragma once

#include "datatypes/time_format_parser_time_to_string.h"

namespace DataTypes {

// Prints a date, seconds since the epoch, by a picture.
class DateFormatParser_DateToString final : public TimeFormatParser_TimeToString {
 public:
  DateFormatParser_DateToString(long value, const Zone* zone, std::string& out)
      : TimeFormatParser_TimeToString(value, 1, zone, out) {}
};

}  // namespace DataTypes
