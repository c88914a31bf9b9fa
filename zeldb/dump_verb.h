#pragma once

#include <memory>
#include <string>

#include "zeldb/output_format.h"
#include "zeldb/session.h"
#include "zeldb/verb.h"

namespace zeldb {

// "zeldb dump SERVICE TABLE|SQL": writes the rows of a table or a query to a file or to standard
// output, row by row. As CSV "zeldb load" reads them back exactly.
class DumpVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  std::unique_ptr<RowSource> open(Session& session) const;
  void dumpToFile(RowSource& rows) const;

  std::string service_;
  std::string source_;
  std::string file_;
  OutputOptions output_{"csv", ""};
  int generation_ = 1;
};

}  // namespace zeldb
