#pragma once

#include <memory>
#include <string>

#include "host/host.h"
#include "rows/plain_session.h"

namespace bench {

// A connection through the plug-in's first generation.
class FirstGenerationSession {
 public:
  explicit FirstGenerationSession(const DataSource& source);
  ~FirstGenerationSession();
  FirstGenerationSession(const FirstGenerationSession&) = delete;
  FirstGenerationSession& operator=(const FirstGenerationSession&) = delete;

  KORVEX::Zel::DB::Connection& connection() { return *connection_; }
  // Executes a statement without parameters.
  void run(const std::string& sql);
  // Throws std::runtime_error with the connection's errors.
  void check(KORVEX::Zel::DB::ResultCode result) {
    if (result != KORVEX::Zel::DB::kSuccess) fail();
  }

 private:
  [[noreturn]] void fail();

  std::unique_ptr<KORVEX::Zel::DB::Driver> driver_;
  KORVEX::Zel::DB::Connection* connection_;
};

// A connection through the second generation, plain or safe.
class SecondGenerationSession {
 public:
  SecondGenerationSession(const DataSource& source, bool safe);
  ~SecondGenerationSession();
  SecondGenerationSession(const SecondGenerationSession&) = delete;
  SecondGenerationSession& operator=(const SecondGenerationSession&) = delete;

  KORVEX::Zel::DB::Connection2& connection() { return *connection_; }
  KORVEX::Zel::DB::DBError* error() { return error_; }
  // Throws std::runtime_error with the error record's text.
  void check(int result) {
    if (result != 0) fail();
  }

 private:
  [[noreturn]] void fail();

  std::unique_ptr<KORVEX::Zel::DB::Driver> driver_;
  KORVEX::Zel::DB::DBError* error_;
  KORVEX::Zel::DB::Connection2* connection_;
};

}  // namespace bench
