#include "zeldb/identifier_quotes.h"

#include <algorithm>
#include <array>

namespace zeldb {
namespace {

struct Quotes {
  std::string_view databaseType;
  char open;
  char close;
};

// All others use the standard's double quotes. "OTHERS" are SQLite, which takes both, and MariaDB,
// which takes double quotes for a text.
constexpr std::array<Quotes, 4> kQuotes = {{
    {"MSSQL", '[', ']'},
    {"OPX", '[', ']'},
    {"MYSQL", '`', '`'},
    {"OTHERS", '`', '`'},
}};

}  // namespace

std::string quotedIdentifier(std::string_view name, std::string_view databaseType) {
  const auto* const row =
      std::find_if(kQuotes.begin(), kQuotes.end(),
                   [&](const Quotes& candidate) { return candidate.databaseType == databaseType; });
  const Quotes quotes = row != kQuotes.end() ? *row : Quotes{databaseType, '"', '"'};
  std::string quoted(1, quotes.open);
  for (const char character : name) {
    quoted.append(character == quotes.close ? 2 : 1, character);
  }
  return quoted + quotes.close;
}

}  // namespace zeldb
