#include "zeldb/services_file.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

#include "zeldb/failure.h"
#include "zeldb/secrets.h"

namespace zeldb {
namespace {

enum class KeyKind { kText, kBool, kPasswordVariable, kPasswordFile };

struct Key {
  std::string_view name;
  std::string_view property;  // the property of the data service that it gives
  KeyKind kind;
  bool required;
};

constexpr std::array<Key, 8> kKeys = {{
    {"DSN", "DSN", KeyKind::kText, true},
    {"User", "User", KeyKind::kText, true},
    {"Password", "Password", KeyKind::kText, false},
    {"password_env", "Password", KeyKind::kPasswordVariable, false},
    {"password_file", "Password", KeyKind::kPasswordFile, false},
    {"DatabaseType", "DatabaseType", KeyKind::kText, false},
    {"WriteBigIntAsChar", "WriteBigIntAsChar", KeyKind::kBool, false},
    {"SafeTransfer", "SafeTransfer", KeyKind::kBool, false},
}};

const Key* keyNamed(std::string_view name) {
  const auto* const key =
      std::find_if(kKeys.begin(), kKeys.end(), [&](const Key& row) { return row.name == name; });
  return key == kKeys.end() ? nullptr : key;
}

// A file that a services file names, from the folder of that.
std::string fileOf(const std::filesystem::path& services, const std::string& name) {
  return (services.parent_path() / name).string();
}

std::optional<std::string> firstLineOf(const std::string& file) {
  std::ifstream in(file);
  std::string line;
  if (!std::getline(in, line)) {
    return std::nullopt;
  }
  if (line.ends_with('\r')) {
    line.pop_back();
  }
  return line;
}

// What the text of a key stands for; nothing when it names what is not there.
std::optional<std::string> givenText(KeyKind kind, const std::string& text,
                                     const std::filesystem::path& services) {
  switch (kind) {
    case KeyKind::kPasswordVariable: {
      const char* const value = std::getenv(text.c_str());
      return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    }
    case KeyKind::kPasswordFile:
      return firstLineOf(fileOf(services, text));
    default:
      return text;
  }
}

// Keeps the password that a key gives out of all that is written. Whoever wants it is told of
// faults elsewhere. A pipe is left to its one reader.
void hidePassword(const Key& key, const std::string& text, const std::filesystem::path& services) {
  std::error_code error;
  if (key.property != "Password" ||
      (key.kind == KeyKind::kPasswordFile &&
       !std::filesystem::is_regular_file(fileOf(services, text), error))) {
    return;
  }
  if (const auto password = givenText(key.kind, text, services)) {
    Secrets::add(*password);
  }
}

// Reads one service out of the parsed file.
class ServiceReader {
 public:
  ServiceReader(const std::filesystem::path& path, const toml::table& services)
      : path_(path), services_(services) {}

  Service read(const std::string& name) {
    const toml::node* const node = services_.get(name);
    if (node == nullptr) {
      fail({}, fmt::format("no service \"{}\"; there is {}", name, knownNames()));
    }
    if (!node->is_table()) {
      fail(node->source(), fmt::format("\"{}\" is no table of a service", name));
    }
    service_.name = name;
    const auto& table = *node->as_table();
    if (!table.contains("SafeTransfer")) {
      service_.properties["SafeTransfer"] = "true";
    }
    for (const auto& [key, value] : table) {
      readKey(key, value);
    }
    for (const Key& key : kKeys) {
      if (key.required && service_.properties[std::string(key.property)].empty()) {
        fail(node->source(), fmt::format("service \"{}\" has no {}", name, key.name));
      }
    }
    return std::move(service_);
  }

 private:
  [[noreturn]] void fail(const toml::source_region& where, const std::string& text) const {
    const std::string place =
        where.begin ? fmt::format(":{}:{}", where.begin.line, where.begin.column) : std::string();
    throw Failure(ExitCode::kUsage, fmt::format("{}{}: {}", path_.string(), place, text));
  }

  std::string knownNames() const {
    std::vector<std::string_view> names;
    for (const auto& [key, value] : services_) {
      names.push_back(key.str());
    }
    return names.empty() ? "none" : fmt::format("{}", fmt::join(names, ", "));
  }

  void readKey(const toml::key& name, const toml::node& value) {
    const Key* const key = keyNamed(name.str());
    if (key == nullptr) {
      fail(name.source(), fmt::format("unknown key \"{}\"", name.str()));
    }
    const auto [place, isNew] = service_.properties.try_emplace(std::string(key->property));
    if (!isNew) {
      fail(name.source(), "more than one password");
    }
    place->second = textOf(*key, value);
    if (key->property == "Password") {
      Secrets::add(place->second);
    }
  }

  std::string textOf(const Key& key, const toml::node& value) const {
    if (key.kind == KeyKind::kBool) {
      if (!value.is_boolean()) {
        fail(value.source(), fmt::format("{} must be true or false", key.name));
      }
      return value.as_boolean()->get() ? "true" : "false";
    }
    if (!value.is_string()) {
      fail(value.source(), fmt::format("{} must be a text", key.name));
    }
    const std::string& text = value.as_string()->get();
    if (auto given = givenText(key.kind, text, path_)) {
      return *std::move(given);
    }
    fail(value.source(),
         key.kind == KeyKind::kPasswordVariable
             ? fmt::format("environment variable {} is not set", text)
             : fmt::format("password file {} cannot be read or is empty", fileOf(path_, text)));
  }

  const std::filesystem::path& path_;
  const toml::table& services_;
  Service service_;
};

toml::table parse(const std::filesystem::path& path) {
  std::ifstream in(path);
  if (!in || std::filesystem::is_directory(path)) {
    throw Failure(ExitCode::kUsage, fmt::format("{}: services file cannot be read", path.string()));
  }
  try {
    return toml::parse(in, path.string());
  } catch (const toml::parse_error& error) {
    const auto& begin = error.source().begin;
    throw Failure(ExitCode::kUsage, fmt::format("{}:{}:{}: {}", path.string(), begin.line,
                                                begin.column, error.description()));
  }
}

}  // namespace

Service ServicesFile::find(const std::string& name) const {
  const toml::table services = parse(path_);
  return ServiceReader(path_, services).read(name);
}

std::vector<ServicesFile::Entry> ServicesFile::entries() const {
  std::vector<Entry> entries;
  const toml::table services = parse(path_);
  for (const auto& [service, node] : services) {
    if (const toml::table* const table = node.as_table()) {
      Entry& entry = entries.emplace_back(Entry{std::string(service.str()), {}});
      for (const auto& [name, value] : *table) {
        const std::string& text = entry.keys[std::string(name.str())] =
            value.value_or(std::string());
        if (const Key* const key = keyNamed(name.str())) {
          hidePassword(*key, text, path_);
        }
      }
    }
  }
  return entries;
}

std::vector<std::string> ServicesFile::knownKeys() {
  std::vector<std::string> names;
  names.reserve(kKeys.size());
  for (const Key& key : kKeys) {
    names.emplace_back(key.name);
  }
  return names;
}

}  // namespace zeldb
