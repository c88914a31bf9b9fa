#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "zeldb/file_descriptor.h"
#include "zeldb/ledger.h"

namespace zeldb {

// A file that tells how far a load has come, whole whenever the process or the machine stops: a
// head that says what is loaded, and two places of fixed size, each with a number and a checksum,
// that are written in turn and reach the disk before the load goes on.
//
// A commit and the note of it cannot be one step. So what is about to be committed is noted before,
// and that it is committed after; in between a batch is in doubt.
class LedgerFile : public Ledger {
 public:
  // Starts a ledger for the load of the file `source`. Throws Failure when there is one under the
  // name, or it cannot be written.
  static LedgerFile create(const std::string& path, const std::string& source,
                           const Identity& identity, const LoadPosition& start);
  // Goes on with a ledger. Throws Failure when it is none, another process uses it, or the identity
  // or what has been read of the source differ, and names what does.
  static LedgerFile open(const std::string& path, const std::string& source,
                         const Identity& identity);

  void reach(const LoadPosition& reached) override;
  void intend(Session& session, const Intent& intent) override;
  void complete(Session& session) override;
  std::optional<bool> isCommitted(Session& /*session*/) override { return std::nullopt; }

 private:
  LedgerFile(const std::string& path, int flags, const std::string& source);

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
};

}  // namespace zeldb
