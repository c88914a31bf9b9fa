#include "zeldb/generation_option.h"

#include <CLI/CLI.hpp>

namespace zeldb {

void addGenerationOption(CLI::App& verb, int& generation) {
  verb.add_option("--generation", generation, "Interface of the driver: 1 by values, 2 by rows")
      ->check(CLI::IsMember({1, 2}))
      ->capture_default_str();
}

}  // namespace zeldb
