#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zeldb {

// A section of an ODBC configuration file. Names and keys are found without regard to case.
struct OdbcIniSection {
  std::string name;
  std::vector<std::pair<std::string, std::string>> entries;

  // The value of the key that the section gives first; empty when it has none.
  std::string value(std::string_view key) const;
};

// One of the files that the ODBC driver manager reads: odbcinst.ini or odbc.ini.
class OdbcIni {
 public:
  enum class State : std::uint8_t { kRead, kMissing, kUnreadable };

  // Reads the file, as far as that is possible.
  explicit OdbcIni(std::filesystem::path path);

  const std::filesystem::path& path() const { return path_; }
  State state() const { return state_; }
  // Why it could not be read.
  const std::string& reason() const { return reason_; }

  // Null when there is none of that name.
  const OdbcIniSection* find(std::string_view name) const;
  // The names of the sections that stand for a data source or a driver, in the file's order.
  std::vector<std::string> names() const;

 private:
  std::filesystem::path path_;
  State state_ = State::kRead;
  std::string reason_;
  std::vector<OdbcIniSection> sections_;
};

}  // namespace zeldb
