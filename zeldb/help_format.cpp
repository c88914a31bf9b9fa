#include "zeldb/help_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace zeldb {
namespace {

// The words of a set in the name of an option's type: "TEXT:{csv,json}", or "{csv->1,json->2}".
std::vector<std::string> choicesOf(const std::string& type) {
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

// What stands for the value: the choices, a number, or the last part of the type's name.
std::string placeholder(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  if (const auto choices = choicesOf(type); !choices.empty()) {
    return fmt::format("{}", fmt::join(choices, "|"));
  }
  for (const std::string_view number : {"INT", "UINT", "FLOAT"}) {
    if (type.starts_with(number)) {
      return "N";
    }
  }
  return type.substr(type.rfind(':') + 1);
}

}  // namespace

std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
  if (option->get_positional()) {
    return {};
  }
  std::string text;
  if (option->get_items_expected_max() > 0) {
    text = " " + placeholder(*option);
    if (!option->get_default_str().empty()) {
      text += fmt::format(" ({})", option->get_default_str());
    }
  }
  std::vector<std::string> needed;
  for (const CLI::Option* const other : option->get_needs()) {
    needed.push_back(other->get_name());
  }
  return needed.empty() ? text : fmt::format("{}, with {}", text, fmt::join(needed, ", "));
}

}  // namespace zeldb
