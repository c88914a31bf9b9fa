#pragma once

#include <string>

#include "zeldb/verb.h"

namespace zeldb {

// "zeldb doctor [SERVICE]": examines a service, or all of them, step by step, and says of each
// failure what it comes of and what helps.
class DoctorVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  // Throws Failure with the first failing step's exit code when any has failed.
  void run(Connector& connector) override;

 private:
  std::string service_;
  std::string format_ = "text";
  double seconds_ = 5;
};

}  // namespace zeldb
