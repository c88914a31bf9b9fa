#include "instructions/counted.h"

#include <cstdio>

#ifdef NVALGRIND
// Without valgrind there is nothing to count.
#define CALLGRIND_ZERO_STATS static_cast<void>(0)
#define CALLGRIND_DUMP_STATS_AT(trigger) static_cast<void>(trigger)
#else
#include <valgrind/callgrind.h>
#endif

void countInstructions(const char* name, int smallSize, int largeSize, double unitsPerSize,
                       const std::function<void(int size)>& work) {
  work(smallSize);
  for (const int size : {smallSize, largeSize}) {
    char trigger[128];
    std::snprintf(trigger, sizeof trigger, "%s %d %g", name, size, size * unitsPerSize);
    CALLGRIND_ZERO_STATS;
    work(size);
    CALLGRIND_DUMP_STATS_AT(trigger);
  }
}
