// bare_load LIBRARY COUNT: loads a driver plug-in, makes a driver, deletes it and unloads, COUNT
// times, in a process that is linked with none of the server's libraries. Ends with 0 when every
// round unloaded the library and memory and file descriptors stayed what they were after the first
// tenth.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "host/driver.h"
#include "tests/endurance/process_size.h"

namespace {

constexpr long kGrowthKilobytes = 512;

bool loadOnce(const char* library) {
  void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return false;
  }
  const auto factory = reinterpret_cast<decltype(&FactoryDriver)>(dlsym(handle, "FactoryDriver"));
  KORVEX::Zel::DB::Driver* const driver = factory != nullptr ? factory("odbc") : nullptr;
  const bool made = driver != nullptr && driver->initialize() == KORVEX::Zel::DB::kSuccess;
  delete driver;
  dlclose(handle);
  if (dlopen(library, RTLD_NOW | RTLD_NOLOAD) != nullptr) {
    std::fprintf(stderr, "the library stays loaded\n");
    return false;
  }
  return made;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int count = static_cast<int>(std::strtol(argv[2], nullptr, 10));
  long resident = 0;
  long files = 0;
  for (int round = 0; round < count; ++round) {
    if (!loadOnce(argv[1])) return 1;
    if (round == count / 10) {
      resident = endurance::residentKilobytes();
      files = endurance::openFiles();
    }
  }
  const long grown = endurance::residentKilobytes() - resident;
  std::printf("%d loads, %ld kB resident, %+ld kB, %+ld files\n", count, resident, grown,
              endurance::openFiles() - files);
  return grown <= kGrowthKilobytes && endurance::openFiles() == files ? 0 : 1;
}
