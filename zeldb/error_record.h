#pragma once

#include <memory>
#include <string>

#include "host/driver.h"
#include "zeldb/diagnostic.h"

namespace zeldb {

// The error record of a session of the second generation.
class ErrorRecord {
 public:
  explicit ErrorRecord(KORVEX::Zel::DB::Driver& driver);

  // A record without a failure in it, to be filled by the next operation.
  KORVEX::Zel::DB::DBError* fresh();

  // What the last operation has left in it.
  bool connectionIsLost() const;
  ExitCode exitCode() const;
  std::string explanation() const;
  // Taken apart; empty when the record has no such form.
  Diagnostic diagnostic() const;

  // Throws Failure that says what failed and why, when the result of an operation is not 0.
  void check(int result, const char* what) const;

 private:
  struct Release {
    KORVEX::Zel::DB::Driver* driver;
    void operator()(KORVEX::Zel::DB::DBError* record) const { driver->releaseError(record); }
  };

  KORVEX::Zel::DB::Driver& driver_;
  std::unique_ptr<KORVEX::Zel::DB::DBError, Release> record_;
};

}  // namespace zeldb
