#pragma once

#include <string>

namespace CLI {
class App;
}

namespace zeldb {

// Adds the name of a data service to a verb's arguments.
void addServiceArgument(CLI::App& verb, std::string& service);

}  // namespace zeldb
