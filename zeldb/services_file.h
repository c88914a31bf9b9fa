#pragma once

#include <filesystem>
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

  // The names of all services, in alphabetical order. Throws Failure when the file cannot be read
  // or parsed.
  std::vector<std::string> names() const;

 private:
  std::filesystem::path path_;
};

}  // namespace zeldb
