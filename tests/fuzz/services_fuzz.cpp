// A services file: every table is listed, and what is no service is refused with a reason.

#include "tests/fuzz/memory_file.h"
#include "zeldb/failure.h"
#include "zeldb/services_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static MemoryFile file;
  file.write(FuzzInput(data, size).rest());
  const zeldb::ServicesFile services(file.path());
  try {
    for (const auto& entry : services.entries()) {
      // A fuzzer would find files to read as passwords.
      if (entry.keys.contains("password_file")) continue;
      try {
        services.find(entry.name);
      } catch (const zeldb::Failure& failure) {
        require(failure.what()[0] != '\0');
      }
    }
  } catch (const zeldb::Failure& failure) {
    require(failure.what()[0] != '\0');
  }
  return 0;
}
