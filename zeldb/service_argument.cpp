#include "zeldb/service_argument.h"

#include <CLI/CLI.hpp>

namespace zeldb {

void addServiceArgument(CLI::App& verb, std::string& service) {
  // The shell completes by the name of the type.
  verb.add_option("SERVICE", service, "Name in the services file")
      ->required()
      ->type_name("SERVICE");
}

}  // namespace zeldb
