#pragma once

#include <memory>
#include <string>

#include "host/connection2.h"
#include "host/driver.h"
#include "zeldb/error_record.h"
#include "zeldb/service.h"
#include "zeldb/session.h"

namespace zeldb {

// A session over the interface of whole rows. Rows of a batch go one by one; the database does not
// tell how many rows an update has changed.
class SecondGenerationSession : public Session {
 public:
  // Connects. Throws Failure when the driver makes no connection or it cannot be opened.
  SecondGenerationSession(KORVEX::Zel::DB::Driver& driver, const Service& service);
  ~SecondGenerationSession() override;

  std::unique_ptr<RowSource> query(const std::string& sql, const Parameters& params) override;
  std::unique_ptr<RowSource> readTable(const std::string& table) override;
  std::int64_t update(const std::string& sql, const Parameters& params) override;
  std::unique_ptr<BatchWriter> insert(const std::string& sql) override;
  void commit() override;
  void rollback() noexcept override;

 private:
  struct Release {
    KORVEX::Zel::DB::Driver* driver;
    void operator()(KORVEX::Zel::DB::Connection2* connection) const;
  };

  ErrorRecord error_;
  std::unique_ptr<KORVEX::Zel::DB::Connection2, Release> connection_;
};

}  // namespace zeldb
