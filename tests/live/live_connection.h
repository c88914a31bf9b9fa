#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/host.h"
#include "tests/live/quirks.h"
#include "zeldb/driver_log.h"

namespace live {

// An open connection of the first generation, and what the driver has logged since it was made. A
// failure to connect is a failed test.
class LiveConnection {
 public:
  using Rows = std::vector<std::vector<std::string>>;

  // `dsnVariable`: the variable of another data source of the same database, or null.
  explicit LiveConnection(const Quirks& quirks, const char* dsnVariable = nullptr,
                          bool safeTransfer = true);

  KORVEX::Zel::DB::Connection* operator->() const { return connection_.get(); }
  zeldb::DriverLog& log() { return log_; }

  // Runs a statement; a failure is a failed test.
  void run(const std::string& sql);
  // The rows of a query as texts, NULL as "NULL"; a failure is a failed test.
  Rows rows(const std::string& sql, std::size_t columns);

 private:
  struct Release {
    void operator()(KORVEX::Zel::DB::Connection* connection) const;
  };

  zeldb::DriverLog log_;
  std::unique_ptr<KORVEX::Zel::DB::Connection, Release> connection_;
};

}  // namespace live
