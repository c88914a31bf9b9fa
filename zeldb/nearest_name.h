#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zeldb {

// The candidate that the name is most likely meant to be: the one that the fewest inserted, removed
// or changed letters lead to, their case apart. Nothing when all are too far away.
std::optional<std::string> nearestName(std::string_view name,
                                       const std::vector<std::string>& candidates);

// The names between double quotes, sorted; "none" when there are none.
std::string quotedList(std::vector<std::string> names);

// Whether two texts are the same but for the case of their ASCII letters.
bool equalIgnoringCase(std::string_view left, std::string_view right);

}  // namespace zeldb
