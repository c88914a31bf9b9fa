#include "zeldb/moment_text.h"

#include <array>
#include <chrono>

namespace zeldb {
namespace {

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// Takes texts off the front of a view.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  bool atEnd() const { return text_.empty(); }

  bool take(std::string_view expected) {
    const bool found = text_.starts_with(expected);
    text_.remove_prefix(found ? expected.size() : 0);
    return found;
  }

  // Exactly `digits` digits as a number not above `limit`; -1 when they are not there.
  int takeNumber(std::size_t digits, int limit) {
    int number = 0;
    for (std::size_t at = 0; at < digits; ++at) {
      if (at >= text_.size() || !isDigit(text_[at])) {
        return -1;
      }
      number = number * 10 + (text_[at] - '0');
    }
    text_.remove_prefix(digits);
    return number <= limit ? number : -1;
  }

  std::string_view takeDigits() {
    std::size_t count = 0;
    while (count < text_.size() && isDigit(text_[count])) {
      ++count;
    }
    const std::string_view digits = text_.substr(0, count);
    text_.remove_prefix(count);
    return digits;
  }

 private:
  std::string_view text_;
};

bool takeDate(Scanner& scanner) {
  const int year = scanner.takeNumber(4, 9999);
  const int month = year >= 0 && scanner.take("-") ? scanner.takeNumber(2, 12) : -1;
  const int day = month >= 1 && scanner.take("-") ? scanner.takeNumber(2, 31) : -1;
  return day >= 1 && std::chrono::year_month_day(std::chrono::year(year),
                                                 std::chrono::month(static_cast<unsigned>(month)),
                                                 std::chrono::day(static_cast<unsigned>(day)))
                         .ok();
}

// hh:mm[:ss]; `out` becomes "hh:mm:ss".
bool takeTime(Scanner& scanner, std::string& out) {
  const int hour = scanner.takeNumber(2, 23);
  const int minute = hour >= 0 && scanner.take(":") ? scanner.takeNumber(2, 59) : -1;
  const int second = minute >= 0 && scanner.take(":") ? scanner.takeNumber(2, 59) : 0;
  if (minute < 0 || second < 0) {
    return false;
  }
  const std::array<char, 8> text = {
      static_cast<char>('0' + hour / 10),   static_cast<char>('0' + hour % 10),   ':',
      static_cast<char>('0' + minute / 10), static_cast<char>('0' + minute % 10), ':',
      static_cast<char>('0' + second / 10), static_cast<char>('0' + second % 10)};
  out.assign(text.data(), text.size());
  return true;
}

}  // namespace

std::optional<MomentText> readMoment(std::string_view text) {
  Scanner scanner(text);
  if (!takeDate(scanner)) {
    return std::nullopt;
  }
  std::string time = "00:00:00";
  MomentText moment;
  if (scanner.take("T") || scanner.take(" ")) {
    if (!takeTime(scanner, time)) {
      return std::nullopt;
    }
    if (scanner.take(".")) {
      const std::string_view digits = scanner.takeDigits();
      if (digits.empty()) {
        return std::nullopt;
      }
      const std::size_t kept = digits.find_last_not_of('0') + 1;
      moment.fractionDigits = static_cast<int>(kept);
      time.append(kept > 0 ? "." : "").append(digits.substr(0, kept));
    }
    if (!scanner.take("Z") && scanner.take("+00")) {
      scanner.take(":00");
    }
  }
  if (!scanner.atEnd()) {
    return std::nullopt;
  }
  moment.text.append(text.substr(0, 10)).append("T").append(time);
  return moment;
}

std::optional<std::string> readTimeOfDay(std::string_view text) {
  Scanner scanner(text);
  std::string time;
  if (!takeTime(scanner, time) || !scanner.atEnd()) {
    return std::nullopt;
  }
  return time;
}

}  // namespace zeldb
