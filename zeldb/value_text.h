#pragma once

#include <string>

#include "datatypes/data_value.h"

namespace zeldb {

// How dates and times of day are written.
struct MomentStyle {
  char separator = ' ';      // between date and time
  const char* utcMark = "";  // behind a time in UTC
  std::string zone;          // time zone to show instants in; empty for UTC
};

// ISO 8601, for programs: "2024-02-29T12:30:00.000000Z".
inline MomentStyle isoMoments(const std::string& zone) {
  return {'T', "Z", zone};
}

// The text of a value, exact: floats with the fewest digits that read back as the same number,
// dates and times with their fraction, bytes in hexadecimal. Empty for NULL.
//
// A column of days is "YYYY-MM-DD" and belongs to no time zone. Instants are in UTC, or in the
// style's zone with the offset behind them: "2024-02-29 13:30:00.000000+01:00".
std::string valueText(unsigned int type, const DataTypes::DataValue& value,
                      const MomentStyle& style = {});

}  // namespace zeldb
