#pragma once

#include <string>
#include <vector>

#include "zeldb/verb.h"

namespace zeldb {

// "zeldb complete -- zeldb WORD...": what can stand in place of the last word, a line each, for the
// completion scripts of shells. Not shown in the help.
class CompleteVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  CLI::App* app_ = nullptr;
  std::vector<std::string> words_;
};

}  // namespace zeldb
