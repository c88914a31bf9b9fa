#pragma once

#include <string>

#include "zeldb/output_format.h"
#include "zeldb/verb.h"

namespace zeldb {

// "zeldb tables SERVICE": lists the tables and views that the user can see.
class TablesVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  std::string service_;
  std::string schema_;
  OutputOptions output_;
};

}  // namespace zeldb
