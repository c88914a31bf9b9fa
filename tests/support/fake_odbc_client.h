#pragma once

// The test's way to the scripted ODBC; zel_fake_odbc_test() says in which form.

#include "tests/support/fake_odbc.h"

namespace fake {

// The data source name under which SQLConnect reaches the scripted driver.
inline constexpr char kDataSource[] = "fake";

// The scripted ODBC of this process. The first call must come before the first ODBC call.
FakeOdbc& fakeOdbc();

}  // namespace fake
