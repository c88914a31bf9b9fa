#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zeldb/load_position.h"
#include "zeldb/session.h"

namespace zeldb {

// Tells how far a load has come, so that another one can go on there.
class Ledger {
 public:
  // What tells one load from another: names and their values.
  using Identity = std::vector<std::pair<std::string, std::string>>;

  // Rows that are about to be committed.
  struct Intent {
    LoadPosition to;  // where the load will stand then
    std::uint64_t rows = 0;
    std::uint64_t firstLine = 0;
    std::uint64_t lastLine = 0;
  };

  struct State {
    LoadPosition reached;
    std::optional<Intent> intent;
    bool complete = false;
  };

  virtual ~Ledger() = default;

  // What is true of a file as long as nobody changes it: its size and a sum of its start. Throws
  // Failure when it is no regular file.
  static Identity identityOf(const std::string& source);
  // The identity as lines of text, one for each name.
  static std::vector<std::string> linesOf(const Identity& identity);
  // The lines of a text.
  static std::vector<std::string> linesFrom(const std::string& text);
  // Throws Failure that names the first line that differs. `name` is what it calls the ledger.
  static void checkLines(const std::string& name, const std::vector<std::string>& has,
                         const Identity& wanted);

  const State& state() const { return state_; }

  // Called before a commit, in the transaction that is to be committed.
  virtual void intend(Session& session, const Intent& intent) = 0;
  // The rows before `reached` are settled, and no others are on their way.
  virtual void reach(const LoadPosition& reached) = 0;
  // There are no more rows.
  virtual void complete(Session& session) = 0;
  // Whether the commit of what was intended last has happened; nothing when the ledger cannot tell.
  virtual std::optional<bool> isCommitted(Session& session) = 0;

 protected:
  State state_;
};

// A 64-bit sum of a text, to notice changes.
std::uint64_t ledgerSum(std::string_view text);

}  // namespace zeldb
