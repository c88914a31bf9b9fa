#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zeldb/odbc_driver_table.h"

namespace zeldb {

// The row of the driver whose file has this name, or of a driver unknown.
const OdbcDriver& driverOfFile(std::string_view fileName);

// Every file of the name that stands in one of the folders where ODBC drivers are installed.
std::vector<std::filesystem::path> installedDrivers(const std::filesystem::path& fileName);

// Why the file is no shared library for this machine; nothing when it is one.
std::optional<std::string> whyNoLibrary(const std::filesystem::path& file);

// Loads the library with all that it needs, in a process of its own, so that whatever it does on
// loading stays there. Returns why that cannot be done, or nothing.
std::optional<std::string> whyNotLoadable(const std::filesystem::path& file);

}  // namespace zeldb
