#pragma once

#include <functional>
#include <string>
#include <vector>

// One way to do the work of a figure.
struct Contender {
  std::string name;
  std::function<void()> work;  // a batch, the same for all contenders of a figure
};

// A published figure: the first contender is the straightforward form and counts 1.00, the second
// one is ours.
struct Contest {
  std::string figure;
  std::string what;
  double target;  // ours, as a ratio; 0: no target
  std::vector<Contender> contenders;
};

// Runs all contenders in turn, many times, and prints the medians of their ratios. Returns whether
// the target was met.
bool run(const Contest& contest);

// From now on `run` counts the instructions of ours (counted.h) instead of timing.
void countInsteadOfTiming();
bool countsInsteadOfTiming();

// The nanoseconds of one run of `work`, the median of several.
double medianNanoseconds(const std::function<void()>& work);

// Keeps the compiler from leaving out what fills `memory`.
inline void keep(const void* memory) {
  asm volatile("" : : "g"(memory) : "memory");
}
