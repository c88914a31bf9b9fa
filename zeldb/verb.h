#pragma once

#include <memory>
#include <vector>

namespace CLI {
class App;
}

namespace zeldb {

class Connector;

// One of the things the tool does: "zeldb VERB ...".
class Verb {
 public:
  virtual ~Verb() = default;
  // Adds the verb with its options to the command line. Called once, before run().
  virtual CLI::App* declare(CLI::App& app) = 0;
  // Does it. Throws Failure.
  virtual void run(Connector& connector) = 0;
};

// All verbs, in the order of the help text.
std::vector<std::unique_ptr<Verb>> makeVerbs();

}  // namespace zeldb
