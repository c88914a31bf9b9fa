#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zeldb/finding.h"
#include "zeldb/odbc_driver_table.h"

namespace zeldb {

// What the texts of remedies name. As they stand here nothing is known.
struct RemedyNames {
  std::string dsn = "the DSN";
  std::string user = "the user";
  std::string database = "the database";
  std::string server = "the server's address";
  std::string section = "the data source";
  std::string services = "the services file";
};

// Cause and remedy of a failure, by its text as the tool writes it: "... (SQLSTATE 42S02, native
// 1146)". Of a driver unknown (kAny) the message must tell which it is. Nothing when the text has
// no SQLSTATE.
std::optional<Advice> adviceFor(DriverKind kind, std::string_view failure,
                                const RemedyNames& names = {});

}  // namespace zeldb
