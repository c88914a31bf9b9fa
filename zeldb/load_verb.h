#pragma once

#include <string>

#include "zeldb/loader.h"
#include "zeldb/verb.h"

namespace zeldb {

// "zeldb load SERVICE TABLE FILE": inserts the rows of a CSV file into a table that exists.
class LoadVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  std::string service_;
  std::string table_;
  std::string file_;
  std::string types_;
  std::string delimiter_ = ",";
  LoadOptions options_;
  int generation_ = 1;
};

}  // namespace zeldb
