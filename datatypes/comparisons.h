#pragma once

// Equality, order and hashing of values.

#include "datatypes/data_value.h"

namespace DataTypes {

// Whether two cells of one type are equal. False when either is null, for a NaN, and for codes
// without a value. Decimals compare as they are stored: 1.0 and 1.00 differ.
bool equalValues(DataValue& a, DataValue& b, const unsigned int& type);

// The bytes to hash of a value, and their length in bytes. Null and 0 for a null cell, an empty
// binary value and codes without a value.
const unsigned char* getRawValueForHash(DataValue& cell, const unsigned int& type, int& length);

// Whether the packed value `a` is less than `b`. Text and bytes compare byte by byte, a shorter one
// first; decimals by their value. False when either is null, for a NaN, and for codes without a
// value.
bool lessThan(const unsigned char* a, const unsigned char* b, const unsigned int& type);

}  // namespace DataTypes
