#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "zeldb/odbc_ini.h"

namespace zeldb {

// The files that the ODBC driver manager reads in this environment:
//
//   drivers        $ODBCSYSINI/$ODBCINSTINI; ODBCSYSINI is /etc and ODBCINSTINI odbcinst.ini by
//                  default, and a path in ODBCINSTINI counts from ODBCSYSINI all the same
//   user's own     $ODBCINI, by default .odbc.ini in the home folder of the password database
//   everybody's    $ODBCSYSINI/odbc.ini
class OdbcConfiguration {
 public:
  OdbcConfiguration();

  const OdbcIni& drivers() const { return drivers_; }
  const OdbcIni& userSources() const { return userSources_; }
  const OdbcIni& systemSources() const { return systemSources_; }

  // A section of one of the files; `section` is null when there is none of that name.
  struct Place {
    const OdbcIniSection* section = nullptr;
    const OdbcIni* file = nullptr;
  };
  // The user's own data source goes before everybody's.
  Place findSource(std::string_view name) const;
  // The names of all data sources.
  std::vector<std::string> sourceNames() const;

 private:
  OdbcIni drivers_;
  OdbcIni userSources_;
  OdbcIni systemSources_;
};

}  // namespace zeldb
