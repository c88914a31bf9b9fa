#pragma once

#include <string>

#include "host/driver.h"
#include "standin/property_data_service.h"
#include "tests/live/quirks.h"

namespace live {

// A variable of the environment that `scripts/databases env` prints; a failed test without it.
std::string environment(const char* name);

// The plug-in's driver, loaded as the tool loads it.
KORVEX::Zel::DB::Driver& driver();

// The data service of a database.
KORVEX::Zel::PropertyDataService liveService(const Quirks& quirks, const std::string& password,
                                             bool safeTransfer);

}  // namespace live
