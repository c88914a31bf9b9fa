#pragma once

#include <functional>

// Counting instructions under callgrind.
//
// Work is done in two sizes, and what is written are the counts of both: their difference is free
// of what the work costs once. A first run outside the count warms up what is made on first use.
// Each count becomes a file of callgrind's named by its trigger, "NAME SIZE UNITS"; scripts read
// these. Outside of callgrind the work is done and nothing is counted.
//
// `unitsPerSize`: how many values (bytes, ...) a size of 1 stands for.
void countInstructions(const char* name, int smallSize, int largeSize, double unitsPerSize,
                       const std::function<void(int size)>& work);
