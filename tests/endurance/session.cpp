#include "tests/endurance/session.h"

#include <array>
#include <cstring>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "datatypes/data_types.h"
#include "standin/log_sink.h"

namespace endurance {
namespace {

using namespace KORVEX::Zel::DB;

constexpr std::array<std::string_view, 3> kConnectionLost = {"08003", "08007", "08S01"};

thread_local std::string threadLog;

// A driver hands out connections to one caller at a time.
std::mutex& driverMutex() {
  static std::mutex mutex;
  return mutex;
}

std::string insertInto(const std::string& table) {
  return "insert into " + table + " (batch, part, note) values (?,?,?)";
}

std::string partsOf(const std::string& table, int batch) {
  return "select part, note from " + table + " where batch = " + std::to_string(batch) +
         " order by part";
}

// Some are empty and some long: lengths must not leak from row to row.
std::string noteOf(int batch, int part) {
  return std::string(static_cast<std::size_t>((batch + part) % 40), static_cast<char>('a' + part));
}

// The text between the brackets behind `from`, when it looks like an SQLSTATE.
std::string stateIn(std::string_view text, std::size_t from) {
  const std::size_t open = text.find('[', from);
  if (open == std::string_view::npos || text.size() < open + 7 || text[open + 6] != ']') return {};
  return std::string(text.substr(open + 1, 5));
}

class FirstSession : public Session {
 public:
  FirstSession(Driver& driver, const KORVEX::Zel::DataService& service) : driver_(driver) {
    const std::lock_guard lock(driverMutex());
    connection_ = driver.createConnection(service);
  }
  ~FirstSession() override { driver_.releaseConnection(connection_); }

  bool open() override { return ended(connection_ != nullptr && connection_->open() == kSuccess); }

  bool write(const std::string& table, int batch, int parts) override {
    if (!ended(connection_->createBatch(insertInto(table)) == kSuccess)) return false;
    for (int part = 0; part < parts; ++part) {
      const std::string note = noteOf(batch, part);
      std::vector<Parameter> row(3);
      row[0].type = row[1].type = DataTypes::kInteger;
      row[0].value.int32 = batch;
      row[1].value.int32 = part;
      row[2].type = DataTypes::kString;
      row[2].value.string = note.c_str();
      if (!ended(connection_->addToBatch(row) == kSuccess)) return false;
    }
    std::vector<int> status;
    return ended(connection_->executeBatch(status) == kSuccess);
  }

  bool commit() override { return ended(connection_->commit() == kSuccess); }

  int read(const std::string& table, int batch) override {
    ResultSet* rows = nullptr;
    if (!ended(connection_->executeQuery(partsOf(table, batch), {}, 0, rows) == kSuccess)) {
      return -1;
    }
    const RowDescriptor descriptor({DataTypes::kInteger, DataTypes::kString});
    int right = 0;
    bool more = true;
    while (ended(rows->next(more) == kSuccess)) {
      if (!more) return right;
      Row* row = nullptr;
      if (!ended(rows->getData(descriptor, row) == kSuccess)) return -1;
      const std::unique_ptr<Row> owned(row);
      const int part = row->getColumnValue(0).int32;
      if (row->getColumnValue(1).string == noteOf(batch, part)) ++right;
    }
    return -1;
  }

  bool run(const std::string& sql) override {
    int rows = 0;
    return ended(connection_->executeUpdate(sql, {}, rows) == kSuccess);
  }

 private:
  bool ended(bool well) {
    if (well) return true;
    failure_ = {};
    failure_.text = takeLog();
    failure_.state = stateIn(failure_.text, 0);
    std::string errors;
    if (connection_ != nullptr) connection_->getLastErrors(errors);
    failure_.text += errors;
    return false;
  }

  Driver& driver_;
  Connection* connection_ = nullptr;
};

class SecondSession : public Session {
 public:
  SecondSession(Driver& driver, const KORVEX::Zel::DataService& service)
      : driver_(driver), error_(driver.createError("")) {
    const std::lock_guard lock(driverMutex());
    connection_ = driver.createConnection2(service, error_);
  }
  ~SecondSession() override {
    const std::lock_guard lock(driverMutex());
    driver_.releaseConnection2(connection_, error_);
    driver_.releaseError(error_);
  }

  bool open() override {
    return ended(connection_ != nullptr && connection_->connect(error_) == 0);
  }

  bool write(const std::string& table, int batch, int parts) override {
    PreparedStatement* const insert =
        connection_->createPreparedStatement(insertInto(table).c_str(), error_);
    if (insert == nullptr) return ended(false);
    bool well = true;
    for (int part = 0; part < parts && well; ++part) {
      const std::string note = noteOf(batch, part);
      std::vector<DataTypes::DataValue> cells(3);
      cells[0].int32 = batch;
      cells[1].int32 = part;
      cells[2].string = note.c_str();
      well = ended(insert->execute(cells, types_, error_) == 0);
    }
    return released(insert) && well;
  }

  bool commit() override { return ended(connection_->commit(error_) == 0); }

  int read(const std::string& table, int batch) override {
    std::vector<unsigned int> types = {DataTypes::kInteger, DataTypes::kString};
    PreparedStatement* const query = connection_->createPreparedStatement(
        partsOf(table, batch).c_str(), static_cast<int>(types.size()), types.data(), false, error_);
    if (!ended(query != nullptr)) return -1;
    const int right = readParts(query, batch);
    return released(query) ? right : -1;
  }

  bool run(const std::string& sql) override {
    PreparedStatement* const statement = connection_->createPreparedStatement(sql.c_str(), error_);
    if (statement == nullptr) return ended(false);
    const bool well = ended(statement->execute(error_) == 0);
    return released(statement) && well;
  }

 private:
  int readParts(PreparedStatement* query, int batch) {
    bool more = false;
    if (!ended(query->execute(error_) == 0 && query->nextResultSet(more, error_) == 0)) return -1;
    int right = 0;
    while (ended(query->hasMoreData(more, error_) == 0)) {
      if (!more) return right;
      const RowInternal2* const row = query->nextRow(error_);
      if (!ended(row != nullptr)) return -1;
      int part = 0;
      std::memcpy(&part, row->value(0), sizeof part);
      const auto* note = reinterpret_cast<const char*>(row->value(1));
      if (note != nullptr && note == noteOf(batch, part)) ++right;
      std::free(const_cast<RowInternal2*>(row));
    }
    return -1;
  }

  bool released(PreparedStatement* statement) {
    return ended(connection_->releaseStatement(statement, error_) == 0);
  }

  bool ended(bool well) {
    if (well) return true;
    const bool flagsWereRight = failure_.flagIsRight;
    failure_ = {};
    failure_.text = error_->getErrorString();
    const bool own = std::string_view(error_->getErrorSource()) == "dbaccess";
    if (!own) failure_.state = stateIn(failure_.text, 1);
    failure_.flagged = error_->isConnectionError();
    bool lost = own && failure_.text == "not connected";
    for (const std::string_view state : kConnectionLost) lost |= failure_.state == state;
    failure_.flagIsRight = flagsWereRight && failure_.flagged == lost;
    // The flag is never taken back: the next failure gets a record of its own.
    driver_.releaseError(error_);
    error_ = driver_.createError("");
    return false;
  }

  Driver& driver_;
  DBError* error_;
  Connection2* connection_ = nullptr;
  std::vector<unsigned int> types_ = {DataTypes::kInteger, DataTypes::kInteger, DataTypes::kString};
};

}  // namespace

std::unique_ptr<Session> makeSession(int generation, Driver& driver,
                                     const KORVEX::Zel::DataService& service) {
  if (generation == 1) return std::make_unique<FirstSession>(driver, service);
  return std::make_unique<SecondSession>(driver, service);
}

void recordLogs() {
  KORVEX::Zel::installLogSink([](const KORVEX::Zel::LogMessage& message) {
    for (const std::string_view text : {message.key, message.text1, message.text2}) {
      threadLog.append(text).append(" ");
    }
  });
}

std::string takeLog() {
  return std::exchange(threadLog, {});
}

}  // namespace endurance
