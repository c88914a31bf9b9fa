#include "tests/support/fake_odbc_client.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace fake {

namespace {

FakeOdbc* connect() {
#ifdef ZEL_FAKE_ODBC_DRIVER
  // The driver manager opens the same file later, and so gets the same object.
  setenv("ODBCINI", ZEL_FAKE_ODBC_INI, 1);
  setenv("ODBCSYSINI", ZEL_FAKE_ODBC_INI_FOLDER, 1);
  void* library = dlopen(ZEL_FAKE_ODBC_DRIVER, RTLD_NOW | RTLD_LOCAL);
#else
  void* library = RTLD_DEFAULT;
#endif
  void* instance = dlsym(library, "fakeOdbcInstance");
  if (instance == nullptr) {
    std::fprintf(stderr, "no scripted ODBC: %s\n", dlerror());
    std::abort();
  }
  return reinterpret_cast<FakeOdbc* (*)()>(instance)();
}

}  // namespace

FakeOdbc& fakeOdbc() {
  static FakeOdbc* const instance = connect();
  return *instance;
}

}  // namespace fake
