#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/connection.h"
#include "host/driver.h"
#include "zeldb/driver_log.h"
#include "zeldb/service.h"
#include "zeldb/session.h"
#include "zeldb/table_column.h"

namespace zeldb {

// A session over the value-by-value interface.
class FirstGenerationSession : public Session {
 public:
  // Opens a connection. Throws Failure when the driver makes none or it cannot be opened.
  FirstGenerationSession(KORVEX::Zel::DB::Driver& driver, const Service& service);
  ~FirstGenerationSession() override;

  // The driver's name for the kind of database ("POSTGRESQL", "OTHERS").
  std::string databaseType();
  // The columns of a table as the catalogue knows them, with sized decimals; empty when it does not
  // know the table.
  std::vector<TableColumn> describeTable(const std::string& table);
  // The tables and views of a schema, or of all when it is empty. Throws Failure.
  std::vector<std::string> tableNames(const std::string& schema);

  std::unique_ptr<RowSource> query(const std::string& sql, const Parameters& params) override;
  std::unique_ptr<RowSource> readTable(const std::string& table) override;
  std::int64_t update(const std::string& sql, const Parameters& params) override;
  std::unique_ptr<BatchWriter> insert(const std::string& sql) override;
  void commit() override;
  void rollback() noexcept override;

 private:
  std::unique_ptr<RowSource> query(const std::string& sql, const Parameters& params,
                                   const std::vector<TableColumn>& known);

  struct Release {
    KORVEX::Zel::DB::Driver* driver;
    void operator()(KORVEX::Zel::DB::Connection* connection) const;
  };

  DriverLog log_;
  std::unique_ptr<KORVEX::Zel::DB::Connection, Release> connection_;
};

}  // namespace zeldb
