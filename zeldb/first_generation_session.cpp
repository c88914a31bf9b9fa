#include "zeldb/first_generation_session.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "host/host.h"
#include "zeldb/column_type.h"
#include "zeldb/even_batch_writer.h"
#include "zeldb/failure.h"
#include "zeldb/failure_kind.h"

namespace zeldb {
namespace {

namespace db = KORVEX::Zel::DB;

[[noreturn]] void fail(const DriverLog& log, const std::string& what) {
  throw log.failure(log.exitCode(), fmt::format("{}: {}", what, log.explanation()));
}

void check(db::ResultCode result, const DriverLog& log, const char* what) {
  if (result != db::kSuccess) {
    fail(log, what);
  }
}

// The type a column is read as. What the database only calls "decimal", and what it does not name
// at all, is read as the database's own text.
unsigned int readingType(unsigned int described) {
  return isUnsizedDecimal(described) || described == DataTypes::kUnknown
             ? static_cast<unsigned int>(DataTypes::kString)
             : described;
}

// The type of a table's column. Decimals get the column's digits, except where those are only what
// PostgreSQL's driver reports for a column declared without any.
unsigned int columnType(const db::Column& column, const std::string& databaseType) {
  const int precision = column.getSize();
  const int scale = column.getScale();
  const bool sized = precision > 0 &&
                     precision <= static_cast<int>(DataTypes::kMaxDecimalPrecision) && scale >= 0 &&
                     scale <= precision &&
                     !(databaseType == "POSTGRESQL" && precision == 28 && scale == 6);
  return isUnsizedDecimal(column.getType()) && sized
             ? DataTypes::createFixedDecimal(precision, scale)
             : column.getType();
}

class FirstGenerationRows : public RowSource {
 public:
  FirstGenerationRows(DriverLog& log, db::ResultSet& rows, const std::vector<TableColumn>& known)
      : log_(log), rows_(rows), columns_(describe(known)), descriptor_(types()) {}

  const std::vector<ResultColumn>& columns() const override { return columns_; }

  const std::vector<DataTypes::DataValue>* next() override {
    log_.clear();
    bool more = false;
    check(rows_.next(more), log_, "reading rows");
    if (!more) {
      return nullptr;
    }
    db::Row* row = nullptr;
    const db::ResultCode result = rows_.getData(descriptor_, row);
    row_.reset(row);
    ++rowNumber_;
    if (result != db::kSuccess || row == nullptr) {
      fail(log_, fmt::format("reading row {}", rowNumber_));
    }
    values_.clear();
    for (std::size_t at = 0; at < row->getNumColumns(); ++at) {
      values_.push_back(row->getColumnValue(at));
    }
    return &values_;
  }

 private:
  // The catalogue knows the types better, where it knows them: SQLite's driver describes a result's
  // binary column as text.
  std::vector<ResultColumn> describe(const std::vector<TableColumn>& known) {
    int count = 0;
    check(rows_.getNumColumns(count), log_, "describing the result");
    std::vector<ResultColumn> columns(static_cast<std::size_t>(count));
    for (int at = 0; at < count; ++at) {
      ResultColumn& column = columns[static_cast<std::size_t>(at)];
      check(rows_.getColumnInfo(at + 1, column.name, column.type), log_, "describing the result");
      for (const TableColumn& better : known) {
        if (better.name == column.name && better.type != DataTypes::kUnknown) {
          column.type = better.type;
        }
      }
    }
    return columns;
  }

  std::vector<unsigned int> types() {
    std::vector<unsigned int> types;
    for (ResultColumn& column : columns_) {
      column.type = readingType(column.type);
      types.push_back(column.type);
    }
    return types;
  }

  DriverLog& log_;
  db::ResultSet& rows_;
  std::vector<ResultColumn> columns_;
  db::RowDescriptor descriptor_;
  std::unique_ptr<db::Row> row_;
  std::vector<DataTypes::DataValue> values_;
  std::uint64_t rowNumber_ = 0;
};

class FirstGenerationBatch : public BatchWriter {
 public:
  FirstGenerationBatch(DriverLog& log, db::Connection& connection, std::string sql)
      : log_(log), connection_(connection), sql_(std::move(sql)) {}
  ~FirstGenerationBatch() override { connection_.clearBatch(); }

  void add(const Parameters& row) override {
    log_.clear();
    if (!open_) {
      check(connection_.createBatch(sql_), log_, "preparing the insert");
      open_ = true;
    }
    check(connection_.addToBatch(row), log_, "adding a row");
  }

  void send() override {
    if (!open_) {
      return;
    }
    open_ = false;
    log_.clear();
    std::vector<int> status;
    check(connection_.executeBatch(status), log_, "inserting rows");
    const auto bad = std::count_if(status.begin(), status.end(), [](int row) { return row != 0; });
    if (bad > 0) {
      fail(log_, fmt::format("inserting rows: {} of {} failed", bad, status.size()));
    }
  }

 private:
  DriverLog& log_;
  db::Connection& connection_;
  std::string sql_;
  bool open_ = false;
};

}  // namespace

FirstGenerationSession::FirstGenerationSession(db::Driver& driver, const Service& service)
    : connection_(nullptr, Release{&driver}) {
  const KORVEX::Zel::PropertyDataService description(service.name, service.properties);
  connection_.reset(driver.createConnection(description));
  if (!connection_) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("service \"{}\": the driver makes no connection", service.name));
  }
  connection_->setServiceName(service.name);
  if (connection_->open() != db::kSuccess) {
    const bool timeout = log_.exitCode() == ExitCode::kTimeout;
    throw log_.failure(timeout ? ExitCode::kTimeout : ExitCode::kConnect,
                       fmt::format("service \"{}\": {}", service.name, log_.explanation()));
  }
}

FirstGenerationSession::~FirstGenerationSession() = default;

void FirstGenerationSession::Release::operator()(db::Connection* connection) const {
  driver->releaseConnection(connection);
}

std::string FirstGenerationSession::databaseType() {
  return connection_->getDriverProperty(db::Driver::PROPERTY_KEY_DATABASE_TYPE);
}

std::vector<TableColumn> FirstGenerationSession::describeTable(const std::string& table) {
  const std::string type = databaseType();
  std::vector<TableColumn> columns;
  int count = 0;
  if (connection_->getTableNumColumns(table, count) != db::kSuccess) {
    count = 0;
  }
  for (int at = 0; at < count; ++at) {
    const db::Column* column = nullptr;
    if (connection_->getTableColumnInfo(table, at, column) == db::kSuccess && column != nullptr) {
      columns.push_back({column->getName(), columnType(*column, type), column->getSize(),
                         column->getScale(), column->isNullable(), column->isPrimaryKey()});
    }
  }
  return columns;
}

std::vector<std::string> FirstGenerationSession::tableNames(const std::string& schema) {
  log_.clear();
  std::vector<std::string> names;
  check(schema.empty() ? connection_->getTableNames(names)
                       : connection_->getTableNames(schema, names),
        log_, "listing tables");
  return names;
}

std::unique_ptr<RowSource> FirstGenerationSession::query(const std::string& sql,
                                                         const Parameters& params) {
  return query(sql, params, {});
}

std::unique_ptr<RowSource> FirstGenerationSession::readTable(const std::string& table) {
  const std::vector<TableColumn> known = describeTable(table);
  return query("select * from " + table, {}, known);
}

std::unique_ptr<RowSource> FirstGenerationSession::query(const std::string& sql,
                                                         const Parameters& params,
                                                         const std::vector<TableColumn>& known) {
  log_.clear();
  db::ResultSet* rows = nullptr;
  check(connection_->executeQuery(sql, params, 0, rows), log_, "query");
  return std::make_unique<FirstGenerationRows>(log_, *rows, known);
}

std::int64_t FirstGenerationSession::update(const std::string& sql, const Parameters& params) {
  log_.clear();
  int rows = 0;
  if (connection_->executeUpdate(sql, params, rows) == db::kSuccess) {
    return rows;
  }
  // A statement that hits no row fails without a reason where the database reports "no data".
  if (log_.diagnostic() == nullptr && log_.explanation() == "801016-3_ERROR_EXECUTING_STATEMENT") {
    return 0;
  }
  fail(log_, "statement");
}

std::unique_ptr<BatchWriter> FirstGenerationSession::insert(const std::string& sql) {
  auto writer = std::make_unique<FirstGenerationBatch>(log_, *connection_, sql);
  // Databases that the driver does not know by name, SQLite among them.
  if (databaseType() == "OTHERS") {
    return std::make_unique<EvenBatchWriter>(std::move(writer));
  }
  return writer;
}

void FirstGenerationSession::commit() {
  log_.clear();
  if (connection_->commit() != db::kSuccess) {
    throw commitFailure(log_.failure(log_.exitCode(), log_.explanation()));
  }
}

void FirstGenerationSession::rollback() noexcept {
  connection_->rollback();
}

}  // namespace zeldb
