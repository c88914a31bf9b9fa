#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace zeldb {

// The help text's form of options: "--batch N (500)", "--format table|csv", with the default in
// brackets, and "with --rejects" where one option needs another.
class HelpFormat : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override;
};

}  // namespace zeldb
