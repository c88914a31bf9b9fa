#include "zeldb/second_generation_session.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

#include "datatypes/type_code.h"
#include "host/prepared_statement.h"
#include "standin/property_data_service.h"
#include "zeldb/column_type.h"
#include "zeldb/failure.h"
#include "zeldb/failure_kind.h"

namespace zeldb {
namespace {

namespace db = KORVEX::Zel::DB;

// A prepared statement that goes back to its connection.
class Statement {
 public:
  Statement(ErrorRecord& error, db::Connection2& connection, const std::string& sql)
      : error_(error), connection_(connection) {
    own(connection.createPreparedStatement(sql.c_str(), error.fresh()));
    if (readAsText()) {
      connection_.releaseStatement(statement_, nullptr);
      own(connection.createPreparedStatement(sql.c_str(), static_cast<int>(types_.size()),
                                             types_.data(), false, error.fresh()));
    }
  }
  ~Statement() { connection_.releaseStatement(statement_, nullptr); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  db::PreparedStatement& operator*() { return *statement_; }
  db::PreparedStatement* operator->() { return statement_; }

  void execute(const Parameters& params) {
    std::vector<DataTypes::DataValue> values;
    std::vector<unsigned int> types;
    for (const db::Parameter& parameter : params) {
      values.push_back(parameter.value);
      types.push_back(parameter.type);
    }
    db::DBError* const record = error_.fresh();
    const int result =
        params.empty() ? statement_->execute(record) : statement_->execute(values, types, record);
    error_.check(result, "statement");
  }

  std::vector<ResultColumn> columns() {
    int count = 0;
    error_.check(statement_->getEffectiveNumberColumns(count, error_.fresh()), "describing");
    std::vector<ResultColumn> columns(static_cast<std::size_t>(count));
    for (int at = 0; at < count; ++at) {
      ResultColumn& column = columns[static_cast<std::size_t>(at)];
      column.name = statement_->getColumnName(static_cast<std::size_t>(at), nullptr);
      error_.check(statement_->getEffectiveDataType(at, column.type, error_.fresh()), "describing");
    }
    return columns;
  }

 private:
  void own(db::PreparedStatement* statement) {
    statement_ = statement;
    error_.check(statement != nullptr ? 0 : -1, "statement");
  }

  // Whether columns must be asked for as text: those that the driver cannot describe exactly.
  bool readAsText() {
    bool changed = false;
    for (const ResultColumn& column : columns()) {
      const bool text = isUnsizedDecimal(column.type) || column.type == DataTypes::kUnknown;
      types_.push_back(text ? static_cast<unsigned int>(DataTypes::kString) : column.type);
      changed = changed || text;
    }
    return changed;
  }

  ErrorRecord& error_;
  db::Connection2& connection_;
  db::PreparedStatement* statement_ = nullptr;
  std::vector<unsigned int> types_;
};

class SecondGenerationRows : public RowSource {
 public:
  SecondGenerationRows(ErrorRecord& error, db::Connection2& connection, const std::string& sql,
                       const Parameters& params)
      : error_(error), statement_(error, connection, sql), columns_(statement_.columns()) {
    statement_.execute(params);
    bool more = false;
    error_.check(statement_->nextResultSet(more, error_.fresh()), "reading rows");
  }
  ~SecondGenerationRows() override { freeValues(); }
  SecondGenerationRows(const SecondGenerationRows&) = delete;
  SecondGenerationRows& operator=(const SecondGenerationRows&) = delete;

  const std::vector<ResultColumn>& columns() const override { return columns_; }

  const std::vector<DataTypes::DataValue>* next() override {
    freeValues();
    bool more = false;
    error_.check(statement_->hasMoreData(more, error_.fresh()), "reading rows");
    if (!more) {
      return nullptr;
    }
    values_.resize(columns_.size());
    error_.check(statement_->nextRow(values_, error_.fresh()), "reading rows");
    return &values_;
  }

 private:
  void freeValues() {
    for (std::size_t at = 0; at < values_.size(); ++at) {
      const unsigned int type = DataTypes::typeNumber(columns_[at].type);
      if (!values_[at].isNull() && type == DataTypes::kString) {
        std::free(const_cast<char*>(values_[at].string));
      } else if (!values_[at].isNull() && type == DataTypes::kBinary) {
        std::free(const_cast<unsigned char*>(values_[at].binary.data));
      }
    }
    values_.clear();
  }

  ErrorRecord& error_;
  Statement statement_;
  std::vector<ResultColumn> columns_;
  std::vector<DataTypes::DataValue> values_;
};

class SecondGenerationInserts : public BatchWriter {
 public:
  SecondGenerationInserts(ErrorRecord& error, db::Connection2& connection, const std::string& sql)
      : statement_(error, connection, sql) {}

  void add(const Parameters& row) override { statement_.execute(row); }
  void send() override {}
  bool sendsEachRow() const override { return true; }

 private:
  Statement statement_;
};

}  // namespace

SecondGenerationSession::SecondGenerationSession(db::Driver& driver, const Service& service)
    : error_(driver), connection_(nullptr, Release{&driver}) {
  const KORVEX::Zel::PropertyDataService description(service.name, service.properties);
  connection_.reset(driver.createConnection2(description, error_.fresh()));
  if (!connection_ || connection_->connect(error_.fresh()) != 0) {
    const bool timeout = error_.exitCode() == ExitCode::kTimeout;
    throw Failure(timeout ? ExitCode::kTimeout : ExitCode::kConnect,
                  fmt::format("service \"{}\": {}", service.name, error_.explanation()),
                  error_.diagnostic().state, error_.diagnostic().native);
  }
}

SecondGenerationSession::~SecondGenerationSession() {
  connection_->rollback(nullptr);
}

void SecondGenerationSession::Release::operator()(db::Connection2* connection) const {
  connection->disconnect(true, nullptr);
  driver->releaseConnection2(connection, nullptr);
}

std::unique_ptr<RowSource> SecondGenerationSession::query(const std::string& sql,
                                                          const Parameters& params) {
  return std::make_unique<SecondGenerationRows>(error_, *connection_, sql, params);
}

std::unique_ptr<RowSource> SecondGenerationSession::readTable(const std::string& table) {
  return query("select * from " + table, {});
}

std::int64_t SecondGenerationSession::update(const std::string& sql, const Parameters& params) {
  Statement(error_, *connection_, sql).execute(params);
  return -1;
}

std::unique_ptr<BatchWriter> SecondGenerationSession::insert(const std::string& sql) {
  return std::make_unique<SecondGenerationInserts>(error_, *connection_, sql);
}

void SecondGenerationSession::commit() {
  if (connection_->commit(error_.fresh()) != 0) {
    const Diagnostic why = error_.diagnostic();
    throw commitFailure(Failure(error_.exitCode(), error_.explanation(), why.state, why.native));
  }
}

void SecondGenerationSession::rollback() noexcept {
  connection_->rollback(nullptr);
}

}  // namespace zeldb
