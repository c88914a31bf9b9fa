#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zeldb/service.h"

namespace zeldb {

// The TOML file that lists the data services, a table for each:
//
//   [orders]
//   DSN = "orders"
//   User = "app"
//   Password = "..."                 or password_env = "NAME", or password_file = "path"
//   DatabaseType = "POSTGRESQL"      optional
//   WriteBigIntAsChar = true         optional
//   SafeTransfer = false             optional; true when not given
//
// A password file's path counts from the folder of the services file; its first line is taken.
class ServicesFile {
 public:
  explicit ServicesFile(std::filesystem::path path) : path_(std::move(path)) {}

  // Reads the file and returns one service. Throws Failure with file, line and column when the
  // file cannot be read or parsed, has no such service, or the service has an unknown key, a value
  // of the wrong type, more than one password or no DSN or User.
  Service find(const std::string& name) const;

  // A table of the file, unchecked: its keys, with the values that are texts, else empty ones.
  struct Entry {
    std::string name;
    std::map<std::string, std::string> keys;
  };
  // All tables of the file, by name; their passwords are secrets from then on, as far as they can
  // be read. Throws Failure when the file cannot be read or parsed.
  std::vector<Entry> entries() const;

  // The keys that a service may have.
  static std::vector<std::string> knownKeys();

 private:
  std::filesystem::path path_;
};

}  // namespace zeldb
