#pragma once

#include <string>
#include <vector>

namespace CLI {
class Option;
}

namespace zeldb {

// The words that an option takes, in their order; empty when it takes any.
std::vector<std::string> choicesOf(const CLI::Option& option);

}  // namespace zeldb
