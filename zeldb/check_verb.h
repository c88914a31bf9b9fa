#pragma once

#include <string>

#include "zeldb/verb.h"

namespace zeldb {

// "zeldb check SERVICE": connects, and says with what.
class CheckVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  std::string service_;
};

}  // namespace zeldb
