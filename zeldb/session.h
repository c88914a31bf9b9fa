#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "zeldb/parameters.h"
#include "zeldb/row_writer.h"

namespace zeldb {

// The rows of a running query. Goes before its session runs something else.
class RowSource {
 public:
  virtual ~RowSource() = default;
  // Empty when the statement has no result rows.
  virtual const std::vector<ResultColumn>& columns() const = 0;
  // The next row, valid until the next call, or null at the end. Throws Failure.
  virtual const std::vector<DataTypes::DataValue>* next() = 0;
};

// Collects rows for one INSERT statement and sends them together.
class BatchWriter {
 public:
  virtual ~BatchWriter() = default;
  // Adds a row; its values are copied. Throws Failure.
  virtual void add(const Parameters& row) = 0;
  // Sends the rows added since the last call. Throws Failure when any of them fails; the
  // transaction is to be rolled back then.
  virtual void send() = 0;
  // Whether add() sends the row by itself, so that its failure is that row's.
  virtual bool sendsEachRow() const { return false; }
};

// An open connection to a service, of either generation of the driver's interface. Nothing is
// committed unless commit() is called. All operations throw Failure with the database's reason.
class Session {
 public:
  virtual ~Session() = default;
  virtual std::unique_ptr<RowSource> query(const std::string& sql, const Parameters& params) = 0;
  // All rows of a table, written as in SQL, with its columns' own types.
  virtual std::unique_ptr<RowSource> readTable(const std::string& table) = 0;
  // Returns the number of rows changed, or -1 when the database does not tell.
  virtual std::int64_t update(const std::string& sql, const Parameters& params) = 0;
  virtual std::unique_ptr<BatchWriter> insert(const std::string& sql) = 0;
  // Throws Failure with kInDoubt when the connection was lost and with it the answer.
  virtual void commit() = 0;
  // Never throws: what cannot be rolled back any more is rolled back by the database.
  virtual void rollback() noexcept = 0;
};

}  // namespace zeldb
