#include "tests/verify/check.h"

namespace verify {
namespace {

constexpr std::uint64_t kShown = 20;

}  // namespace

std::FILE* Check::output = stdout;

void Check::found(const std::string& what) {
  if (found_++ < kShown) std::fprintf(output, "  %s: %s\n", name_.c_str(), what.c_str());
}

bool Check::report() const {
  std::fprintf(output, "%-24s %12llu tried %8llu findings\n", name_.c_str(),
               static_cast<unsigned long long>(tried_), static_cast<unsigned long long>(found_));
  std::fflush(output);
  return found_ == 0;
}

}  // namespace verify
