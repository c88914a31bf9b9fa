#include "zeldb/option_choices.h"

#include <CLI/CLI.hpp>

namespace zeldb {

// They stand in braces in the name of the option's type: "TEXT:{csv,json}", or, where a word is
// read as something else, "{csv->1,json->2}".
std::vector<std::string> choicesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t open = type.find('{');
  const std::size_t close = type.find('}', open);
  if (close == std::string::npos) {
    return {};
  }
  std::vector<std::string> words = CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
  for (std::string& word : words) {
    word = word.substr(0, word.find("->"));
  }
  return words;
}

}  // namespace zeldb
