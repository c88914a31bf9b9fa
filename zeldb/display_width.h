#pragma once

#include <cstddef>
#include <string_view>

namespace zeldb {

// The number of terminal cells that UTF-8 text takes: two for wide characters, none for combining
// ones. A byte that is no UTF-8 takes one.
std::size_t displayWidth(std::string_view text);

}  // namespace zeldb
