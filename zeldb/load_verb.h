#pragma once

#include <memory>
#include <string>

#include "zeldb/ledger.h"
#include "zeldb/load_monitor.h"
#include "zeldb/load_options.h"
#include "zeldb/service.h"
#include "zeldb/table_preparation.h"
#include "zeldb/verb.h"

namespace zeldb {

struct CsvRecord;

// "zeldb load SERVICE TABLE FILE": inserts the rows of a CSV file into a table.
class LoadVerb : public Verb {
 public:
  CLI::App* declare(CLI::App& app) override;
  void run(Connector& connector) override;

 private:
  void declareResuming(CLI::App& verb);
  void declarePreparing(CLI::App& verb);
  void load(Connector& connector, LoadMonitor& monitor);
  std::string ledgerPath() const;
  // The ledger that the load goes on with; null for none.
  std::unique_ptr<Ledger> openLedger(const Service& service, FirstGenerationSession& session) const;
  std::unique_ptr<Ledger> startLedger(const Service& service, FirstGenerationSession& session,
                                      const LoadPosition& start) const;
  Ledger::Identity identity(const Service& service) const;

  std::string service_;
  std::string table_;
  std::string file_;
  std::string types_;
  std::string delimiter_ = ",";
  std::string ledger_;
  std::string ledgerTable_;
  bool resume_ = false;
  std::string inDoubt_;
  LoadOptions options_;
  PreparationOptions preparation_;
  int generation_ = 1;
};

}  // namespace zeldb
