// The same rows through the plug-in, in the types of their columns.

#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "fetch.h"
#include "host/host.h"
#include "standin/property_data_service.h"

namespace bench {

using namespace KORVEX::Zel;
using namespace KORVEX::Zel::DB;

namespace {

const std::vector<unsigned int> kTypes = {
    DataTypes::kInteger, DataTypes::kLong,        DataTypes::kFloat,
    DataTypes::kString,  DataTypes::kBigDateTime, DataTypes::createFixedDecimal(18, 4),
    DataTypes::kBoolean};
constexpr std::size_t kTextColumn = 3;

PropertyDataService serviceOf(const DataSource& source, bool safe) {
  return {"bench",
          {{"DSN", source.dsn},
           {"User", source.user},
           {"Password", source.password},
           {"SafeTransfer", safe ? "true" : "false"}}};
}

class FirstGenerationReader : public Reader {
 public:
  explicit FirstGenerationReader(const DataSource& source)
      : driver_(FactoryDriver("bench")),
        connection_(driver_->createConnection(serviceOf(source, false))) {
    check(connection_->open());
  }
  ~FirstGenerationReader() override { driver_->releaseConnection(connection_); }

  int read() override {
    ResultSet* rows = nullptr;
    check(connection_->executeQuery(kQuery, {}, 0, rows));
    const RowDescriptor descriptor(kTypes);
    int count = 0;
    bool more = false;
    for (check(rows->next(more)); more; check(rows->next(more)), ++count) {
      Row* row = nullptr;
      check(rows->getData(descriptor, row));
      delete row;
    }
    return count;
  }

  void run(const std::string& sql) {
    int rows = 0;
    check(connection_->executeUpdate(sql, {}, rows));
  }

  Connection& connection() { return *connection_; }

  void check(ResultCode result) {
    if (result == kSuccess) return;
    std::string errors;
    connection_->getLastErrors(errors);
    throw std::runtime_error("first generation: " + errors);
  }

 private:
  std::unique_ptr<Driver> driver_;
  Connection* connection_;
};

class SecondGenerationReader : public Reader {
 public:
  SecondGenerationReader(const DataSource& source, bool safe)
      : driver_(FactoryDriver("bench")), error_(driver_->createError("")) {
    connection_ = driver_->createConnection2(serviceOf(source, safe), error_);
    check(connection_->connect(error_));
  }
  ~SecondGenerationReader() override {
    driver_->releaseConnection2(connection_, error_);
    driver_->releaseError(error_);
  }

  int read() override {
    PreparedStatement* query =
        connection_->createPreparedStatement(kQuery, kColumns, kTypes.data(), false, error_);
    check(query == nullptr ? -1 : query->execute(error_));
    bool more = false;
    check(query->nextResultSet(more, error_));
    std::vector<DataTypes::DataValue> cells(kColumns);
    int count = 0;
    for (check(query->hasMoreData(more, error_)); more;
         check(query->hasMoreData(more, error_)), ++count) {
      check(query->nextRow(cells, error_));
      std::free(const_cast<char*>(cells[kTextColumn].string));
    }
    check(connection_->releaseStatement(query, error_));
    return count;
  }

 private:
  void check(int result) {
    if (result != 0) throw std::runtime_error(error_->getErrorString());
  }

  std::unique_ptr<Driver> driver_;
  DBError* error_;
  Connection2* connection_;
};

struct TypeNames {
  const char* databaseType;
  const char* columns;
};

constexpr TypeNames kTypeNames[] = {
    {"POSTGRESQL",
     "n integer, b bigint, d double precision, s varchar(20), t timestamp(6),"
     " a numeric(18,4), f boolean"},
    {"OTHERS",
     "n integer, b bigint, d double, s varchar(20), t datetime(6), a decimal(18,4),"
     " f bit(1)"},
};
constexpr char kSqliteColumns[] =
    "n integer, b bigint, d double, s varchar(20), t timestamp, a decimal(18,4), f bit";

std::string columnsFor(const DataSource& source, const std::string& databaseType) {
  if (source.dsn.find("SQLite") != std::string::npos) return kSqliteColumns;
  return databaseType == kTypeNames[0].databaseType ? kTypeNames[0].columns : kTypeNames[1].columns;
}

}  // namespace

std::unique_ptr<Reader> makeFirstGenerationReader(const DataSource& source) {
  return std::make_unique<FirstGenerationReader>(source);
}

std::unique_ptr<Reader> makeSecondGenerationReader(const DataSource& source, bool safe) {
  return std::make_unique<SecondGenerationReader>(source, safe);
}

void fillTable(const DataSource& source, int rows) {
  FirstGenerationReader session(source);
  Connection& connection = session.connection();
  const std::string type = connection.getDriverProperty(Driver::PROPERTY_KEY_DATABASE_TYPE);
  session.run("drop table if exists fetch_bench");
  session.run("create table fetch_bench (" + columnsFor(source, type) + ")");
  session.check(connection.createBatch("insert into fetch_bench values (?,?,?,?,?,?,?)"));
  std::vector<Parameter> row(kColumns);
  for (std::size_t i = 0; i < row.size(); ++i) row[i].type = kTypes[i];
  for (int i = 0; i < rows; ++i) {
    const std::string text = "row number " + std::to_string(i);
    row[0].value.int32 = i;
    row[1].value.int64 = i * 1000000007L;
    row[2].value.float64 = i * 0.25;
    row[3].value.string = text.c_str();
    row[4].value.int64 = 1700000000000000L + i * 1003000L;
    row[5].value.decimal = {0, static_cast<std::uint64_t>(i * 12345L), 4, 18};
    row[6].value.boolean = i % 2 == 0;
    session.check(connection.addToBatch(row));
    if ((i + 1) % 1000 != 0 && i + 1 != rows) continue;
    std::vector<int> status;
    session.check(connection.executeBatch(status));
    session.check(connection.commit());
    if (i + 1 < rows) {
      session.check(connection.createBatch("insert into fetch_bench values (?,?,?,?,?,?,?)"));
    }
  }
}

}  // namespace bench
