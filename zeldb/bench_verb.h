#pragma once

#include <string>

#include "zeldb/verb.h"

namespace zeldb {

// "zeldb bench SERVICE": inserts and fetches rows in a scratch table, in both generations and
// beside a plain ODBC program, and prints rows a second and ratios. The table is created under a
// name of its own and dropped again, also after a failure and Ctrl-C; nothing else is touched.
class BenchVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  std::string service_;
  int rows_ = 10000;
  int rounds_ = 7;
};

}  // namespace zeldb
