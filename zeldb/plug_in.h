#pragma once

#include <filesystem>
#include <memory>

#include "host/driver.h"

namespace zeldb {

// A loaded driver plug-in and the driver that its entry point made. The library stays loaded until
// the process ends: the driver manager behind it keeps caches that an unloading would lose.
class PlugIn {
 public:
  // Loads the library and calls its FactoryDriver. Throws Failure when the file is not there, is no
  // such library or gives no driver.
  explicit PlugIn(const std::filesystem::path& library);

  // Where the plug-in is looked for when none is named: where an installation puts it, counted
  // from the program's place, or beside the program in a build folder.
  static std::filesystem::path defaultLibrary();

  KORVEX::Zel::DB::Driver& driver() { return *driver_; }

 private:
  std::unique_ptr<KORVEX::Zel::DB::Driver> driver_;
};

}  // namespace zeldb
