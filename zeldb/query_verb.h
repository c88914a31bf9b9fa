#pragma once

#include <string>
#include <vector>

#include "zeldb/output_format.h"
#include "zeldb/session.h"
#include "zeldb/verb.h"

namespace zeldb {

// "zeldb query SERVICE SQL": runs a statement, commits, and writes its rows or their number.
class QueryVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  void writeRows(Session& session, const std::string& sql, const Parameters& params) const;

  std::string service_;
  std::string sql_;
  std::vector<std::string> params_;
  OutputOptions output_;
  int generation_ = 1;
};

}  // namespace zeldb
