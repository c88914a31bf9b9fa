#include "zeldb/odbc_ini.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "zeldb/nearest_name.h"

namespace zeldb {
namespace {

// Sections that the driver manager keeps for itself.
constexpr std::array<std::string_view, 3> kOwnSections = {"ODBC", "ODBC Data Sources", "DEFAULT"};

std::string trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos
             ? std::string()
             : std::string(text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1));
}

}  // namespace

std::string OdbcIniSection::value(std::string_view key) const {
  const auto entry = std::find_if(entries.begin(), entries.end(), [&](const auto& candidate) {
    return equalIgnoringCase(candidate.first, key);
  });
  return entry != entries.end() ? entry->second : std::string();
}

OdbcIni::OdbcIni(std::filesystem::path path) : path_(std::move(path)) {
  errno = 0;
  std::ifstream in(path_);
  if (!in || std::filesystem::is_directory(path_)) {
    state_ = errno == ENOENT || errno == ENOTDIR ? State::kMissing : State::kUnreadable;
    reason_ = errno == 0 ? "is a directory" : std::strerror(errno);
    return;
  }
  for (std::string raw; std::getline(in, raw);) {
    const std::string line = trimmed(raw);
    const std::size_t equals = line.find('=');
    if (line.starts_with('[')) {
      sections_.push_back({trimmed(line.substr(1, line.find(']') - 1)), {}});
    } else if (!sections_.empty() && equals != std::string::npos && !line.starts_with('#') &&
               !line.starts_with(';')) {
      sections_.back().entries.emplace_back(trimmed(line.substr(0, equals)),
                                            trimmed(line.substr(equals + 1)));
    }
  }
}

const OdbcIniSection* OdbcIni::find(std::string_view name) const {
  const auto section = std::find_if(
      sections_.begin(), sections_.end(),
      [&](const OdbcIniSection& candidate) { return equalIgnoringCase(candidate.name, name); });
  return section != sections_.end() ? &*section : nullptr;
}

std::vector<std::string> OdbcIni::names() const {
  std::vector<std::string> names;
  for (const OdbcIniSection& section : sections_) {
    if (std::none_of(kOwnSections.begin(), kOwnSections.end(),
                     [&](std::string_view own) { return equalIgnoringCase(own, section.name); })) {
      names.push_back(section.name);
    }
  }
  return names;
}

}  // namespace zeldb
