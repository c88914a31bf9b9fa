#pragma once

// Names, classes and alignment of types.

#include <string>

#include "datatypes/type_table.h"

namespace DataTypes {

// The name of a type, "decimal(p,s)" with its numbers for a fixed decimal. "N/A" for codes without
// a value and above 30; empty for a decimal of precision above 34 or with more decimals than
// digits, and when memory runs out.
std::string typeToString(const unsigned int& type);

// The same in capitals; "UNKNOWN" in place of "N/A".
std::string typeToStringUpper(const unsigned int& type);

// The same names, but "int32", "int64" and "double" for integer, long and float.
std::string typeToLegacyString(const unsigned int& type);
std::string typeToLegacyStringUpper(const unsigned int& type);

// The name of the constant of a type, for instance "&intConst" for all integers; "N/A" as above.
std::string typeToTypeConstString(const unsigned int& type);

// The type code of a lower-case name, current or legacy. A text that contains "decimal" anywhere
// gives the decimal of the numbers between "(", "," and ")", each 0 where it is missing; they are
// not checked. Any other text gives 6 (unknown).
unsigned int stringToType(const std::string& name);

// Whether a type belongs to a class. False for type numbers above 30.
bool numericType(const unsigned int& type);
bool integerType(const unsigned int& type);
bool genericDateType(const unsigned int& type);

// The alignment of a value in bytes: at least 1, 24 for a fixed decimal, 1 for type numbers above
// 30.
unsigned int getAlignment(const unsigned int& type);

// getAlignment minus 1.
// Kept: 23 for a fixed decimal, which is no mask; callers know it.
unsigned int getAlignmentMask(const unsigned int& type);

}  // namespace DataTypes
