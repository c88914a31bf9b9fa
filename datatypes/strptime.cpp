#include <strings.h>

#include <climits>
#include <cstddef>
#include <initializer_list>

#include "datatypes/characters.h"
#include "datatypes/picture_names.h"
#include "datatypes/time_text.h"

namespace DataTypes {
namespace {

constexpr int kYearBase = 1900;

// A conversion that reads one number.
struct NumberRow {
  char conversion;
  const char* modifiers;  // of "E" and "O", those it may carry
  int min;
  int max;
  int std::tm::* field;  // null: read and discarded
  int offset;            // added to the number
  int modulus;           // the number is taken modulo this
};

constexpr NumberRow kNumberRows[] = {
    {'d', "O", 1, 31, &std::tm::tm_mday, 0, INT_MAX},
    {'e', "O", 1, 31, &std::tm::tm_mday, 0, INT_MAX},
    {'H', "O", 0, 23, &std::tm::tm_hour, 0, INT_MAX},
    {'k', "", 0, 23, &std::tm::tm_hour, 0, INT_MAX},
    {'I', "O", 1, 12, &std::tm::tm_hour, 0, 12},
    {'l', "", 1, 12, &std::tm::tm_hour, 0, 12},
    {'j', "", 1, 366, &std::tm::tm_yday, -1, INT_MAX},
    {'M', "O", 0, 59, &std::tm::tm_min, 0, INT_MAX},
    {'m', "O", 1, 12, &std::tm::tm_mon, -1, INT_MAX},
    {'S', "O", 0, 61, &std::tm::tm_sec, 0, INT_MAX},
    {'U', "O", 0, 53, nullptr, 0, INT_MAX},
    {'W', "O", 0, 53, nullptr, 0, INT_MAX},
    {'w', "O", 0, 6, &std::tm::tm_wday, 0, INT_MAX},
};

// A conversion that stands for a format.
struct CompositeRow {
  char conversion;
  const char* modifiers;
  const char* format;
};

constexpr CompositeRow kCompositeRows[] = {
    {'c', "E", "%x %X"},   {'D', "", "%m/%d/%y"},  {'R', "", "%H:%M"},     {'r', "", "%I:%M:%S %p"},
    {'T', "", "%H:%M:%S"}, {'X', "E", "%H:%M:%S"}, {'x', "E", "%m/%d/%y"},
};

class FormatReader {
 public:
  FormatReader(const char* text, std::tm* result) : at_(text), result_(result) {}

  const char* position() const { return at_; }

  bool read(const char* format) {
    for (; *format != '\0'; ++format) {
      if (isWhiteSpace(*format)) {
        skipWhiteSpace();
      } else if (*format != '%') {
        if (*at_ != *format) return false;
        ++at_;
      } else {
        ++format;
        char modifier = '\0';
        if (*format == 'E' || *format == 'O') modifier = *format++;
        if (*format == '\0' || !readConversion(*format, modifier)) return false;
      }
    }
    return true;
  }

 private:
  void skipWhiteSpace() {
    while (isWhiteSpace(*at_)) ++at_;
  }

  // Takes another digit only while ten times the value does not exceed the maximum.
  bool readNumber(int min, int max, int& value) {
    if (!isDigit(*at_)) return false;
    value = 0;
    do value = value * 10 + (*at_++ - '0');
    while (value * 10 <= max && isDigit(*at_));
    return value >= min && value <= max;
  }

  template <std::size_t Count>
  bool readName(const PictureName (&full)[3][Count], const PictureName (&brief)[3][Count],
                int& index) {
    for (const auto* names : {&full[kMixedCase], &brief[kMixedCase]}) {
      for (std::size_t i = 0; i < Count; ++i) {
        const PictureName& name = (*names)[i];
        if (!beginsWith(at_, name.text)) continue;
        at_ += name.length;
        index = static_cast<int>(i);
        return true;
      }
    }
    return false;
  }

  bool readConversion(char conversion, char modifier) {
    const auto allowed = [modifier](const char* modifiers) {
      if (modifier == '\0') return true;
      while (*modifiers != '\0' && *modifiers != modifier) ++modifiers;
      return *modifiers != '\0';
    };
    for (const NumberRow& row : kNumberRows)
      if (row.conversion == conversion) return allowed(row.modifiers) && readNumberRow(row);
    for (const CompositeRow& row : kCompositeRows)
      if (row.conversion == conversion) return allowed(row.modifiers) && read(row.format);
    switch (conversion) {
      case 'C':
        return allowed("E") && readCentury();
      case 'Y':
        return allowed("E") && readYear();
      case 'y':
        return allowed("EO") && readYearOfCentury();
      default:
        return allowed("") && readWord(conversion);
    }
  }

  bool readWord(char conversion) {
    switch (conversion) {
      case '%':
        if (*at_ != '%') return false;
        ++at_;
        return true;
      case 'n':
      case 't':
        skipWhiteSpace();
        return true;
      case 'a':
      case 'A':
        return readName(kWeekdayNames, kShortWeekdayNames, result_->tm_wday);
      case 'b':
      case 'B':
      case 'h':
        return readName(kMonthNames, kShortMonthNames, result_->tm_mon);
      case 'p':
        return readHalfOfDay();
      default:
        return false;
    }
  }

  bool readNumberRow(const NumberRow& row) {
    int value = 0;
    if (!readNumber(row.min, row.max, value)) return false;
    if (row.field != nullptr) result_->*row.field = value % row.modulus + row.offset;
    return true;
  }

  // Kept: a century without a year counts from year 0, not from 1900.
  bool readCentury() {
    int century = 0;
    if (!readNumber(0, 99, century)) return false;
    result_->tm_year = century * 100 + (hasYear_ ? result_->tm_year % 100 : 0);
    hasCentury_ = true;
    return true;
  }

  bool readYear() {
    int year = 0;
    if (!readNumber(0, 9999, year)) return false;
    result_->tm_year = year - kYearBase;
    hasYear_ = true;
    return true;
  }

  bool readYearOfCentury() {
    constexpr int kFirstOf1900s = 69;
    int year = 0;
    if (!readNumber(0, 99, year)) return false;
    if (hasCentury_)
      result_->tm_year = result_->tm_year / 100 * 100 + year;
    else
      result_->tm_year = year < kFirstOf1900s ? year + 100 : year;
    hasYear_ = true;
    return true;
  }

  // Kept: the marker is compared with the whole rest of the text.
  bool readHalfOfDay() {
    const bool isPm = strcasecmp(at_, "PM") == 0;
    if (!isPm && strcasecmp(at_, "AM") != 0) return false;
    if (result_->tm_hour > 11) return false;
    if (isPm) result_->tm_hour += 12;
    at_ += 2;
    return true;
  }

  const char* at_;
  std::tm* result_;
  bool hasYear_ = false;
  bool hasCentury_ = false;
};

}  // namespace

const char* strptime(const char* text, const char* format, std::tm* result) {
  *result = std::tm{};
  result->tm_year = 70;
  result->tm_mday = 1;
  FormatReader reader(text, result);
  return reader.read(format) ? reader.position() : nullptr;
}

}  // namespace DataTypes
