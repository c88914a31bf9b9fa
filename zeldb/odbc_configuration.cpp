#include "zeldb/odbc_configuration.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace zeldb {
namespace {

std::string variable(const char* name, const std::string& otherwise) {
  const char* const text = std::getenv(name);
  return text != nullptr && *text != '\0' ? text : otherwise;
}

std::filesystem::path inSystemFolder(const std::string& name) {
  return variable("ODBCSYSINI", "/etc") + "/" + name;
}

std::filesystem::path homeFile() {
  const passwd* const user = getpwuid(getuid());
  return std::filesystem::path(user != nullptr ? user->pw_dir : "/") / ".odbc.ini";
}

}  // namespace

OdbcConfiguration::OdbcConfiguration()
    : drivers_(inSystemFolder(variable("ODBCINSTINI", "odbcinst.ini"))),
      userSources_(variable("ODBCINI", homeFile().string())),
      systemSources_(inSystemFolder("odbc.ini")) {}

OdbcConfiguration::Place OdbcConfiguration::findSource(std::string_view name) const {
  for (const OdbcIni* const file : {&userSources_, &systemSources_}) {
    if (const OdbcIniSection* const section = file->find(name)) {
      return {section, file};
    }
  }
  return {};
}

std::vector<std::string> OdbcConfiguration::sourceNames() const {
  std::vector<std::string> names = userSources_.names();
  for (const std::string& name : systemSources_.names()) {
    if (userSources_.path() != systemSources_.path() && userSources_.find(name) == nullptr) {
      names.push_back(name);
    }
  }
  return names;
}

}  // namespace zeldb
