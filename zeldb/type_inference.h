#pragma once

#include <cstdint>
#include <string>

namespace zeldb {

// Finds the narrowest type that all texts of a column are values of: boolean (true, false),
// integer, long, decimal, float, date, bigdatetime, time, else string. Numbers that a number type
// would not give back as they were, as "007" and "+1", make a column of strings.
class TypeInference {
 public:
  // Takes a text that is not NULL into account.
  void add(const std::string& text);

  // The type code; a string when there were no texts. Decimals have room for more digits before the
  // point, and as many behind it as the longest.
  unsigned int type() const;

  std::uint64_t texts() const { return texts_; }

 private:
  void addNumber(const std::string& text);

  std::uint64_t texts_ = 0;
  bool boolean_ = true;
  bool integer_ = true;
  bool long_ = true;
  bool decimal_ = true;
  bool float_ = true;
  bool day_ = true;
  bool moment_ = true;
  bool time_ = true;
  unsigned integerDigits_ = 0;
  unsigned fractionDigits_ = 0;
};

}  // namespace zeldb
