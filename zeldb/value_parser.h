#pragma once

#include <string>
#include <vector>

#include "datatypes/data_value.h"
#include "zeldb/value_limits.h"

namespace zeldb {

// Reads texts as values of one type, exactly: what would be cut, rounded or shifted is refused.
//
// Numbers: digits with sign and point, floats also nan, inf and -inf; decimals and money may not
// have more digits than the type. Dates: YYYY-MM-DD, or with a time hh:mm[:ss[.fraction]] behind a
// "T" or a blank, in UTC ("Z",
// "+00" and "+00:00" may follow). Times: hh:mm[:ss]. Intervals: microseconds. Booleans: true,
// false, t, f, yes, no, y, n, on, off, 1, 0. Binary: hexadecimal digits. Strings: as they are.
class ValueParser {
 public:
  // A decimal without a precision takes any decimal number and hands it on as text.
  explicit ValueParser(unsigned int type, const ValueLimits& limits = {});

  // The type code of the values that parse() gives.
  unsigned int valueType() const;

  // Fills the value and returns true, or returns false with reason() saying why. A string points
  // into `text`, a binary value into this parser until the next call.
  bool parse(const std::string& text, DataTypes::DataValue& value);

  // Why the last text was refused.
  const std::string& reason() const { return reason_; }
  // The SQLSTATE of that.
  const char* state() const { return state_; }

 private:
  static constexpr const char* kBadValue = "22018";

  bool parseString(const std::string& text, DataTypes::DataValue& value);
  bool parseBinary(const std::string& text, DataTypes::DataValue& value);
  bool parseExactNumber(const std::string& text, DataTypes::DataValue& value);
  bool parseMoment(const std::string& text, DataTypes::DataValue& value);
  bool parseTime(const std::string& text, DataTypes::DataValue& value);
  bool parsePlain(const std::string& text, DataTypes::DataValue& value);
  bool parseFloat(const std::string& text, DataTypes::DataValue& value);
  bool hasRoomFor(const std::string& text);
  bool refuse(std::string reason, const char* state = kBadValue);

  unsigned int type_;
  ValueLimits limits_;
  std::vector<unsigned char> bytes_;
  std::string reason_;
  const char* state_ = kBadValue;
};

}  // namespace zeldb
