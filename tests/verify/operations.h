#pragma once

#include <span>
#include <string_view>

#include "tests/verify/check.h"
#include "tests/verify/world.h"

namespace verify {

enum class Generation { kFirst, kSecond };

// One thing that a server does with the plug-in. In a world without what it needs (an open
// connection, a statement, rows) `run` must still be safe to call, or be skipped: `possible`.
struct Operation {
  const char* name;
  Generation generation;
  void (*prepare)(World&);
  Outcome (*run)(World&);
  bool (*possible)(const World&);
};

// Closes a world in which the operation has run; an ODBC handle that is left then is a finding.
void expectNothingLeft(Check& check, World& world, std::string_view operation,
                       const std::string& what);

// Every operation of both generations' interfaces and of the metadata object.
std::span<const Operation> operations();

}  // namespace verify
