#pragma once

#include <memory>
#include <string>

#include "host/host.h"

namespace endurance {

// Why the last operation of a session failed.
struct Failure {
  std::string text;      // as the plug-in gives it: error record, or log
  std::string state;     // SQLSTATE; empty when the plug-in found the failure by itself
  bool flagged = false;  // second generation: a connection error, the record says
  // The record's flag was always what its SQLSTATE or its own finding asks for; true in the first
  // generation, which has no such flag.
  bool flagIsRight = true;
};

// One connection of a generation, used as a server uses it. Rows have the columns batch, part and
// note; a batch's parts count from 0, and every note follows from both. After a failure the only
// thing to do is to make another session.
class Session {
 public:
  virtual ~Session() = default;

  virtual bool open() = 0;
  // Writes the parts of a batch, without committing.
  virtual bool write(const std::string& table, int batch, int parts) = 0;
  virtual bool commit() = 0;
  // The number of parts of a batch that hold what write() put there; -1 when reading failed.
  virtual int read(const std::string& table, int batch) = 0;
  // Runs a statement that has no result; its failure may be only that it changed nothing.
  virtual bool run(const std::string& sql) = 0;

  // Of the last operation that failed.
  const Failure& failure() const { return failure_; }

 protected:
  Failure failure_;
};

// A session that is not open yet, for one thread. `driver` may be used by others meanwhile, who
// make their sessions with this function, too.
std::unique_ptr<Session> makeSession(int generation, KORVEX::Zel::DB::Driver& driver,
                                     const KORVEX::Zel::DataService& service);

// Keeps each thread's last log messages from now on, for failure().
void recordLogs();
// What was logged in this thread since the last call.
std::string takeLog();

}  // namespace endurance
