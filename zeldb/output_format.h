#pragma once

#include <iosfwd>
#include <memory>
#include <string>

#include "zeldb/row_writer.h"

namespace CLI {
class App;
}

namespace zeldb {

// In which form rows are written, as the command line gives it.
struct OutputOptions {
  std::string format = "table";
  std::string zone;  // time zone of the instants; empty for UTC
};

// Adds "--format" and "--tz" to a verb.
void addOutputOptions(CLI::App& verb, OutputOptions& options);

// The writer of the form. `out` must outlive it.
std::unique_ptr<RowWriter> makeRowWriter(const OutputOptions& options, std::ostream& out);

}  // namespace zeldb
