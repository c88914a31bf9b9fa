#pragma once

#include <string>

#include "datatypes/data_value.h"

namespace zeldb {

// The text of a value, exact: floats with the fewest digits that read back as the same number,
// dates as "YYYY-MM-DD hh:mm:ss" with their fraction in UTC, bytes in hexadecimal. Empty for NULL.
std::string valueText(unsigned int type, const DataTypes::DataValue& value);

}  // namespace zeldb
