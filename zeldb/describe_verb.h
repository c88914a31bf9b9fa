#pragma once

#include <string>

#include "zeldb/output_format.h"
#include "zeldb/verb.h"

namespace zeldb {

// "zeldb describe SERVICE TABLE": shows the columns of a table, with the types that values of them
// are read and loaded as.
class DescribeVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  std::string service_;
  std::string table_;
  OutputOptions output_;
};

}  // namespace zeldb
