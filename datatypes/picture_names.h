#pragma once

// English names of months and weekdays in the three letter cases in which they are written and
// read.

#include <cstddef>

namespace DataTypes {

// Index of a name's letter case, and the values of TimeFormatParser::Case.
inline constexpr int kMixedCase = 0;
inline constexpr int kUpperCase = 1;
inline constexpr int kLowerCase = 2;

struct PictureName {
  char text[31];
  unsigned char length;
};
static_assert(sizeof(PictureName) == 32);

namespace detail {

constexpr char inCase(char c, std::size_t at, int letterCase) {
  const bool isLower = c >= 'a' && c <= 'z';
  const bool isUpper = c >= 'A' && c <= 'Z';
  const bool wantUpper = letterCase == kUpperCase || (letterCase == kMixedCase && at == 0);
  if (wantUpper && isLower) return static_cast<char>(c - 'a' + 'A');
  if (!wantUpper && isUpper) return static_cast<char>(c - 'A' + 'a');
  return c;
}

template <std::size_t Count>
struct NameTable {
  PictureName names[3][Count];

  // `length` cuts the names; 0 leaves them whole.
  constexpr NameTable(const char* const (&words)[Count], std::size_t length) : names{} {
    for (int letterCase = 0; letterCase < 3; ++letterCase)
      for (std::size_t i = 0; i < Count; ++i) {
        PictureName& name = names[letterCase][i];
        std::size_t at = 0;
        for (; words[i][at] != '\0' && (length == 0 || at < length); ++at)
          name.text[at] = inCase(words[i][at], at, letterCase);
        name.length = static_cast<unsigned char>(at);
      }
  }
};

inline constexpr const char* kMonthWords[] = {"January",   "February", "March",    "April",
                                              "May",       "June",     "July",     "August",
                                              "September", "October",  "November", "December"};
inline constexpr const char* kWeekdayWords[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                "Thursday", "Friday", "Saturday"};
inline constexpr const char* kRomanWords[] = {"I",   "II",   "III", "IV", "V",  "VI",
                                              "VII", "VIII", "IX",  "X",  "XI", "XII"};

inline constexpr NameTable<12> kMonths(kMonthWords, 0);
inline constexpr NameTable<12> kShortMonths(kMonthWords, 3);
inline constexpr NameTable<7> kWeekdays(kWeekdayWords, 0);
inline constexpr NameTable<7> kShortWeekdays(kWeekdayWords, 3);
inline constexpr NameTable<12> kRomans(kRomanWords, 0);

}  // namespace detail

// Indexed by letter case, then by month or weekday (Sunday first).
// Kept: Roman numerals in mixed case capitalise only their first letter ("Viii").
inline constexpr auto& kMonthNames = detail::kMonths.names;
inline constexpr auto& kShortMonthNames = detail::kShortMonths.names;
inline constexpr auto& kWeekdayNames = detail::kWeekdays.names;
inline constexpr auto& kShortWeekdayNames = detail::kShortWeekdays.names;
inline constexpr auto& kRomanMonthNames = detail::kRomans.names;

}  // namespace DataTypes
