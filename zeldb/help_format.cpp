#include "zeldb/help_format.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

#include "zeldb/option_choices.h"

namespace zeldb {
namespace {

// What stands for the value: the choices, a number, or the last part of the type's name.
std::string placeholder(const CLI::Option& option) {
  if (const auto choices = choicesOf(option); !choices.empty()) {
    return fmt::format("{}", fmt::join(choices, "|"));
  }
  const std::string type = option.get_type_name();
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
