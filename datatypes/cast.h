#pragma once

#include "datatypes/data_value.h"

namespace DataTypes {

// Turns the cell's value of type `from` into one of type `to`. Returns false, and leaves the cell
// alone, when there is no such conversion, the value does not fit or would lose digits. A null cell
// stays null and is converted whenever the pair of types is possible.
//
// - Whole numbers, money, fixed decimals and booleans convert exactly into each other; only 0 and 1
//   become a boolean.
// - To float: the nearest double. From float: to money and decimals rounded to the scale, to whole
//   numbers and booleans only when it is whole.
// - Dates, timestamps, bigdatetimes and times convert by instant; a time is the time of day on
//   1970-01-01. A fraction that the target's unit cannot hold is a loss. To and from other numbers
//   they are their stored count; so are intervals, which convert to no date or time.
// - To string: the text of convertToString, hexadecimal for a binary, in storage from malloc that
// the
//   caller frees. From string: as convertFromString reads it in the default formats.
// - A binary converts from and to a string only.
// The cell frees nothing: text and bytes that it pointed at remain their owner's. Casting a string
// or binary to its own type changes nothing.
bool cast(DataValue* cell, const unsigned int& from, const unsigned int& to);

}  // namespace DataTypes
