#pragma once

#include <string>
#include <string_view>

namespace zeldb {

// A column's name as it stands in SQL for the kind of database, in quotes.
std::string quotedIdentifier(std::string_view name, std::string_view databaseType);

}  // namespace zeldb
