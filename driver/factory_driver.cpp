#include <string>

#include "driver/odbc_driver.h"
#include "driver2/boundary.h"

KORVEX::Zel::DB::Driver* FactoryDriver(const char* name) {
  using namespace KORVEX::Zel::DB;
  return guarded<Driver*>(nullptr, [&]() -> Driver* {
    return new OdbcDriver(name == nullptr ? std::string() : std::string(name));
  });
}
