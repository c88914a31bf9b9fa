#pragma once

#include <string>

#include "zeldb/database_product.h"
#include "zeldb/first_generation_session.h"
#include "zeldb/ledger.h"

namespace zeldb {

// A ledger in the database that is loaded: a table with a row for each load, changed in the same
// transaction as the load's rows. So nothing is ever in doubt for longer than it takes to look.
class LedgerTable : public Ledger {
 public:
  // Looks for the load of a file into a table; the ledger's table is made when it is missing.
  // Throws Failure.
  LedgerTable(FirstGenerationSession& session, const ProductTraits& product, std::string table,
              const std::string& loadName);

  // Whether there is an earlier load.
  bool isStarted() const { return !identity_.empty(); }
  // Starts the load. Throws Failure.
  void start(FirstGenerationSession& session, const Identity& identity, const LoadPosition& start);
  // Throws Failure that names what differs when the earlier load is another one.
  void check(const Identity& identity) const;

  // Throws Failure when another load has moved the ledger meanwhile.
  void intend(Session& session, const Intent& intent) override;
  void reach(const LoadPosition& reached) override;
  void complete(Session& session) override;
  std::optional<bool> isCommitted(Session& session) override;

 private:
  // What the table says; false when it has no such load.
  bool read(Session& session, LoadPosition& position);
  // Writes a position over the one that is reached, and the mark of completeness.
  void update(Session& session, const LoadPosition& position, bool complete);

  std::string table_;
  std::string key_;
  std::string identity_;  // lines
  LoadPosition inTable_;  // committed there
};

}  // namespace zeldb
