#include "tests/live/live_driver.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "zeldb/plug_in.h"

namespace live {

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  if (value == nullptr) {
    ADD_FAILURE() << name << " is not set; see scripts/databases";
    return {};
  }
  return value;
}

KORVEX::Zel::DB::Driver& driver() {
  static zeldb::PlugIn plugIn(zeldb::PlugIn::defaultLibrary());
  return plugIn.driver();
}

KORVEX::Zel::PropertyDataService liveService(const Quirks& quirks, const std::string& password,
                                             bool safeTransfer) {
  return {quirks.name,
          {{"DSN", environment(quirks.dsnVariable)},
           {"User", environment("ZEL_TEST_USER")},
           {"Password", password},
           {"SafeTransfer", safeTransfer ? "true" : "false"}}};
}

}  // namespace live
