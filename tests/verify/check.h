#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace verify {

// Counts what a check has tried and what it has found; the first findings are printed.
class Check {
 public:
  explicit Check(std::string name) : name_(std::move(name)) {}

  void tried(std::uint64_t count = 1) { tried_ += count; }
  std::uint64_t count() const { return tried_; }
  void found(const std::string& what);
  // Prints the check's line; true when there was no finding.
  bool report() const;

  // Where checks print. Standard output is the plug-in's, which says there what it cannot make.
  static std::FILE* output;

 private:
  std::string name_;
  std::uint64_t tried_ = 0;
  std::uint64_t found_ = 0;
};

struct Options {
  std::uint64_t count = 0;  // how much to try, in the check's own unit
  std::uint64_t seed = 1;
};

// The checks; each prints its line and is true when it found nothing.

// Every ODBC call of every operation answers every return code, once and from then on.
bool checkFaults(const Options& options);
// `count` pairs of faults, the second while the first is handled.
bool checkFaultPairs(const Options& options);
// Every allocation of every operation fails, once and from then on.
bool checkAllocations(const Options& options);
// A driver that says what no driver should.
bool checkHostileDriver(const Options& options);
// `count` operations of random programs, with faults among them.
bool checkPrograms(const Options& options);

}  // namespace verify
