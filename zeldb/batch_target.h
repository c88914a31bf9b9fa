#pragma once

#include <functional>
#include <memory>
#include <string>

#include "zeldb/session.h"

namespace zeldb {

// Where batches go: a session with one INSERT statement, which can be connected anew.
class BatchTarget {
 public:
  using Connect = std::function<std::unique_ptr<Session>()>;

  // Connects. Throws Failure.
  BatchTarget(Connect connect, std::string sql);

  // The session, connected again when it has been closed. Throws Failure.
  Session& session();
  // The statement of the session, likewise.
  BatchWriter& writer();
  // Forgets the rows added that have not been sent.
  void forget() noexcept { writer_.reset(); }
  // Rolls back, and forgets the rows added.
  void rollback() noexcept;
  // The same, and closes the session.
  void disconnect() noexcept;

 private:
  Connect connect_;
  std::string sql_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<BatchWriter> writer_;  // goes before its session
};

}  // namespace zeldb
