// The value-by-value interface on real databases. Data sources come from the environment that
// `scripts/databases env` prints.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "datatypes/data_types.h"
#include "host/host.h"
#include "tests/live/generated_row.h"
#include "tests/live/live_driver.h"
#include "tests/live/quirks.h"
#include "zeldb/driver_log.h"
#include "zeldb/value_text.h"

namespace live {
namespace {

using namespace KORVEX::Zel::DB;

constexpr int kRows = 100000;
constexpr int kSafeRows = 10000;
constexpr int kBatchRows = 500;

// A database, and whether the service asks for safe transfer.
class FirstGeneration : public testing::TestWithParam<std::tuple<const Quirks*, bool>> {
 protected:
  FirstGeneration() : quirks_(*std::get<0>(GetParam())) {}

  struct Release {
    void operator()(Connection* connection) const { driver().releaseConnection(connection); }
  };
  using ConnectionPointer = std::unique_ptr<Connection, Release>;

  ConnectionPointer connect(const std::string& password) {
    const auto service = liveService(quirks_, password, std::get<1>(GetParam()));
    return ConnectionPointer(driver().createConnection(service));
  }

  void SetUp() override {
    connection_ = connect(environment("ZEL_TEST_PASSWORD"));
    ASSERT_NE(connection_, nullptr);
    ASSERT_EQ(connection_->open(), kSuccess) << log_.explanation();
    run("drop table if exists live");
    std::string columns;
    for (const LiveColumn& column : columns_) {
      columns += (columns.empty() ? "" : ", ") + std::string(column.name) + " " + column.sqlType +
                 (columns.empty() ? " primary key" : " null");
    }
    run("create table live (" + columns + ")");
    ASSERT_EQ(connection_->commit(), kSuccess);
  }

  void run(const std::string& sql) {
    int rows = 0;
    ASSERT_EQ(connection_->executeUpdate(sql, {}, rows), kSuccess) << sql << log_.explanation();
  }

  void insertRows(int first, int last) {
    std::string markers = "?";
    for (std::size_t at = 1; at < columns_.size(); ++at) {
      markers += ", ?";
    }
    ASSERT_EQ(connection_->createBatch("insert into live values (" + markers + ")"), kSuccess)
        << log_.explanation();
    for (int number = first; number <= last; ++number) {
      ASSERT_EQ(connection_->addToBatch(generated_.make(number)), kSuccess) << number;
    }
    std::vector<int> status;
    ASSERT_EQ(connection_->executeBatch(status), kSuccess) << first << log_.explanation();
    ASSERT_EQ(status, std::vector<int>(static_cast<std::size_t>(last - first + 1), 0));
    ASSERT_EQ(connection_->commit(), kSuccess) << log_.explanation();
  }

  void expectRow(int number, const Row& row) {
    const auto& expected = generated_.make(number);
    ASSERT_EQ(row.getNumColumns(), expected.size());
    for (std::size_t at = 0; at < expected.size(); ++at) {
      DataTypes::DataValue want = expected[at].value;
      DataTypes::DataValue got = row.getColumnValue(at);
      const unsigned int type = expected[at].type;
      if (want.isNull() != got.isNull() ||
          (!want.isNull() && !DataTypes::equalValues(want, got, type))) {
        ADD_FAILURE() << "row " << number << " column " << columns_[at].name << ": "
                      << (got.isNull() ? "NULL" : zeldb::valueText(type, got)) << ", sent "
                      << (want.isNull() ? "NULL" : zeldb::valueText(type, want));
        FAIL();
      }
    }
  }

  void expectRows(int first, int last) {
    std::vector<unsigned int> types;
    types.reserve(columns_.size());
    for (const LiveColumn& column : columns_) {
      types.push_back(column.type);
    }
    const RowDescriptor descriptor(types);
    ResultSet* rows = nullptr;
    ASSERT_EQ(connection_->executeQuery("select * from live order by id", {}, 0, rows), kSuccess);
    bool more = false;
    for (int number = first; number <= last; ++number) {
      ASSERT_EQ(rows->next(more), kSuccess);
      ASSERT_TRUE(more) << number;
      Row* row = nullptr;
      ASSERT_EQ(rows->getData(descriptor, row), kSuccess) << number << log_.explanation();
      const std::unique_ptr<Row> owned(row);
      ASSERT_NO_FATAL_FAILURE(expectRow(number, *row));
    }
    ASSERT_EQ(rows->next(more), kSuccess);
    EXPECT_FALSE(more);
  }

  std::string stateOfFailure() const {
    return log_.diagnostic() != nullptr ? log_.diagnostic()->state : log_.explanation();
  }

  const Quirks& quirks_;
  zeldb::DriverLog log_;
  std::vector<LiveColumn> columns_ = liveColumns(quirks_);
  GeneratedRow generated_{quirks_, true};
  ConnectionPointer connection_;
};

TEST_P(FirstGeneration, CarriesEveryValueThereAndBack) {
  const int rowCount = std::get<1>(GetParam()) ? kSafeRows : kRows;
  for (int first = 1; first <= rowCount; first += kBatchRows) {
    ASSERT_NO_FATAL_FAILURE(insertRows(first, first + kBatchRows - 1));
  }
  expectRows(1, rowCount);
}

TEST_P(FirstGeneration, BindsSingleRowsToo) {
  for (int number = 1; number <= 50; ++number) {
    std::string markers = "?";
    for (std::size_t at = 1; at < columns_.size(); ++at) {
      markers += ", ?";
    }
    int rows = 0;
    ASSERT_EQ(connection_->executeUpdate("insert into live values (" + markers + ")",
                                         generated_.make(number), rows),
              kSuccess)
        << log_.explanation();
    EXPECT_EQ(rows, 1);
  }
  expectRows(1, 50);
}

TEST_P(FirstGeneration, UndoesAFailedBatchByRollback) {
  ASSERT_NO_FATAL_FAILURE(insertRows(1, 5));
  ASSERT_EQ(connection_->createBatch("insert into live (id) values (?)"), kSuccess);
  for (const int id : {6, 7, 3, 8}) {
    std::vector<Parameter> row(1);
    row[0].type = DataTypes::kInteger;
    row[0].value.int32 = id;
    ASSERT_EQ(connection_->addToBatch(row), kSuccess);
  }
  std::vector<int> status;
  EXPECT_EQ(connection_->executeBatch(status), kFailure);
  EXPECT_EQ(connection_->rollback(), kSuccess) << log_.explanation();
  expectRows(1, 5);
}

TEST_P(FirstGeneration, ReportsWhatTheDatabaseSays) {
  int rows = -1;
  EXPECT_EQ(connection_->executeUpdate("update live set id = 2 where id = 1", {}, rows),
            quirks_.updateOfNoRowFails && !std::get<1>(GetParam()) ? kFailure : kSuccess);
  log_.clear();
  EXPECT_EQ(connection_->executeUpdate("delete from missing_table", {}, rows), kFailure);
  EXPECT_EQ(stateOfFailure(), quirks_.noSuchTable);
  EXPECT_EQ(connection_->rollback(), kSuccess);
  if (quirks_.wrongPassword != nullptr) {
    log_.clear();
    EXPECT_EQ(connect("wrong")->open(), kFailure);
    EXPECT_EQ(stateOfFailure(), quirks_.wrongPassword);
  }
}

INSTANTIATE_TEST_SUITE_P(Live, FirstGeneration,
                         testing::Combine(testing::Values(&kQuirks[0], &kQuirks[1], &kQuirks[2]),
                                          testing::Bool()),
                         [](const auto& parameter) {
                           return std::string(std::get<0>(parameter.param)->name) +
                                  (std::get<1>(parameter.param) ? "Safe" : "Plain");
                         });

}  // namespace
}  // namespace live
