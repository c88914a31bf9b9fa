#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zeldb/file_descriptor.h"
#include "zeldb/load_position.h"

namespace zeldb {

// A file that tells how far a load has come, whole whenever the process or the machine stops: a
// head that says what is loaded, and two places of fixed size, each with a number and a checksum,
// that are written in turn and reach the disk before the load goes on.
//
// A commit and the note of it cannot be one step. So what is about to be committed is noted before,
// and that it is committed after; in between a batch is in doubt.
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

  // Starts a ledger for the load of the file `source`. Throws Failure when there is one under the
  // name, or it cannot be written.
  static Ledger create(const std::string& path, const std::string& source, const Identity& identity,
                       const LoadPosition& start);
  // Goes on with a ledger. Throws Failure when it is none, another process uses it, or the identity
  // or what has been read of the source differ, and names what does.
  static Ledger open(const std::string& path, const std::string& source, const Identity& identity);

  // What is true of a file as long as nobody changes it: its size and a sum of its start.
  static Identity identityOf(const std::string& source);

  const State& state() const { return state_; }
  // The rows before `reached` are settled, and no others are on their way.
  void reach(const LoadPosition& reached);
  void intend(const Intent& intent);
  // There are no more rows.
  void complete();

 private:
  Ledger(const std::string& path, int flags, const std::string& source);

  void check(const std::string& path, const Identity& identity);
  void write();
  std::uint64_t tailSum() const;
  std::string slotText() const;
  bool readSlot(const std::string& text);

  std::unique_ptr<FileDescriptor> file_;
  std::unique_ptr<FileDescriptor> source_;
  std::uint64_t slotsAt_ = 0;
  std::uint64_t number_ = 0;  // of the place written last
  std::uint64_t readTailSum_ = 0;
  State state_;
};

}  // namespace zeldb
