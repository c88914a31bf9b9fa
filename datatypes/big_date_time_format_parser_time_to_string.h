#pragma once

#include "datatypes/time_format_parser_time_to_string.h"

namespace DataTypes {

// Prints a bigdatetime, microseconds since the epoch, by a picture.
class BigDateTimeFormatParser_TimeToString final : public TimeFormatParser_TimeToString {
 public:
  BigDateTimeFormatParser_TimeToString(long value, const Zone* zone, std::string& out)
      : TimeFormatParser_TimeToString(value, 1000000, zone, out) {}
};

}  // namespace DataTypes
