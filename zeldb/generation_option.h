#pragma once

namespace CLI {
class App;
}

namespace zeldb {

// Adds "--generation" to a verb: which of the driver's two interfaces it uses, 1 or 2.
void addGenerationOption(CLI::App& verb, int& generation);

}  // namespace zeldb
