// zel_verify CHECK [COUNT [SEED]]: one of the checks of the plug-in over the scripted ODBC. Ends
// with 0 when nothing was found.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "tests/verify/check.h"

namespace {

struct Row {
  std::string_view name;
  bool (*run)(const verify::Options&);
};

constexpr Row kChecks[] = {
    {"allocations", verify::checkAllocations}, {"faults", verify::checkFaults},
    {"hostile", verify::checkHostileDriver},   {"pairs", verify::checkFaultPairs},
    {"programs", verify::checkPrograms},
};

}  // namespace

int main(int argc, char** argv) {
  const int output = dup(STDOUT_FILENO);
  verify::Check::output = output < 0 ? nullptr : fdopen(output, "w");
  if (verify::Check::output == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
    return 2;
  verify::Options options;
  if (argc > 2) options.count = std::strtoull(argv[2], nullptr, 10);
  if (argc > 3) options.seed = std::strtoull(argv[3], nullptr, 10);
  for (const Row& row : kChecks) {
    if (argc > 1 && row.name == argv[1]) return row.run(options) ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  std::fprintf(stderr, "usage: zel_verify CHECK [COUNT [SEED]]\n");
  return 2;
}
