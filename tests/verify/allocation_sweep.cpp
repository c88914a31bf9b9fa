// Every allocation of every operation made to fail.

#include <exception>

#include "tests/verify/check.h"
#include "tests/verify/failing_allocator.h"
#include "tests/verify/operations.h"

namespace verify {
namespace {

struct Result {
  Outcome outcome = Outcome::kImpossible;
  std::uint64_t allocations = 0;
  bool thrown = false;
};

Result runWith(const Operation& operation, World& world, std::uint64_t failAt, bool fromThenOn) {
  Result result;
  FailingAllocator::arm(failAt, fromThenOn);
  try {
    result.outcome = operation.run(world);
  } catch (...) {
    result.thrown = true;
  }
  result.allocations = FailingAllocator::disarm();
  return result;
}

void tryAllocation(Check& check, const Operation& operation, bool safe, std::uint64_t at,
                   bool fromThenOn) {
  const std::string what = std::string(operation.name) + (safe ? ", safe" : "") + ", allocation " +
                           std::to_string(at) + (fromThenOn ? " from then on" : "");
  World world(safe);
  operation.prepare(world);
  check.tried();
  const Result result = runWith(operation, world, at, fromThenOn);
  if (result.thrown) {
    check.found(what + ": an exception left");
  } else if (result.outcome == Outcome::kImpossible) {
    check.found(what + ": an impossible result");
  }
  expectNothingLeft(check, world, operation.name, what);
}

}  // namespace

bool checkAllocations(const Options&) {
  Check check("allocations");
  for (const Operation& operation : operations()) {
    for (const bool safe : {false, true}) {
      std::uint64_t allocations = 0;
      {
        World world(safe);
        operation.prepare(world);
        allocations = runWith(operation, world, 0, false).allocations;
      }
      for (std::uint64_t at = 1; at <= allocations; ++at) {
        tryAllocation(check, operation, safe, at, false);
        tryAllocation(check, operation, safe, at, true);
      }
    }
  }
  return check.report();
}

}  // namespace verify
