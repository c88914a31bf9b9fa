// The published figures of the value library, each as a ratio to the straightforward form in the
// same run, beside the libraries that do the same work. With a number as argument it instead counts
// differences between our text of that many random doubles and printf's; with "instructions", what
// ours executes for a value, under callgrind.

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

#include "contest.h"
#include "contests.h"

int main(int argc, char** argv) {
  if (argc > 1 && std::string_view(argv[1]) == "instructions") {
    countInsteadOfTiming();
  } else if (argc > 1) {
    return countDifferences(std::strtol(argv[1], nullptr, 10));
  }
  int missed = 0;
  for (const auto contest : {timestampContests, doubleContests, decimalContests, moneyContests,
                             integerContests, pictureContests, hexContests})
    missed += contest() ? 0 : 1;
  if (countsInsteadOfTiming()) return EXIT_SUCCESS;
  std::printf(missed == 0 ? "all targets met\n" : "targets missed in %d groups\n", missed);
  return EXIT_SUCCESS;
}
