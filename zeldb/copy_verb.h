#pragma once

#include <string>

#include "zeldb/load_options.h"
#include "zeldb/verb.h"

namespace zeldb {

// "zeldb copy FROM.TABLE TO.TABLE": inserts the rows of one service's table into another's.
class CopyVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  std::string from_;
  std::string to_;
  LoadOptions options_;
  int generation_ = 1;
};

}  // namespace zeldb
