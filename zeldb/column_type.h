#pragma once

#include <map>
#include <string>
#include <string_view>

namespace zeldb {

// The type code for a type's name ("integer", "decimal(18,4)"). Throws Failure for anything else,
// also for a decimal of more than 34 digits or with more decimals than digits.
unsigned int typeFromName(const std::string& name);

// Takes "NAME:TYPE,NAME:TYPE" apart; the comma of a decimal does not separate. Throws Failure when
// an item has no such form or a name comes twice.
std::map<std::string, unsigned int> typesFromList(std::string_view list);

// Whether the code carries no precision, as for a column that the database only calls "decimal".
bool isUnsizedDecimal(unsigned int type);

// Whether values of the type are numbers, to stand right in a table.
bool isNumberType(unsigned int type);

}  // namespace zeldb
