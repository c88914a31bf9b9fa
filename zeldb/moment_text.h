#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zeldb {

// A date and time as people write it, brought into one form.
struct MomentText {
  std::string text;        // "YYYY-MM-DDThh:mm:ss", with ".fraction" when that is not zero
  int fractionDigits = 0;  // without zeros at the end
};

// Reads YYYY-MM-DD, or YYYY-MM-DD hh:mm[:ss[.fraction]] with a blank or "T" between, and "Z", "+00"
// or "+00:00" behind. Nothing when the text has another form or is no day of the calendar.
std::optional<MomentText> readMoment(std::string_view text);

// Reads hh:mm or hh:mm:ss and returns "hh:mm:ss"; nothing when it is no time of day.
std::optional<std::string> readTimeOfDay(std::string_view text);

}  // namespace zeldb
