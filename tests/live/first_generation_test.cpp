// The value-by-value interface on real databases. Data sources come from the environment that
// `scripts/databases env` prints.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "host/host.h"
#include "tests/live/generated_row.h"
#include "tests/live/live_connection.h"
#include "tests/live/live_driver.h"

namespace live {
namespace {

using namespace KORVEX::Zel::DB;

constexpr int kRows = 100000;
constexpr int kSafeRows = 10000;
constexpr int kBatchRows = 500;

// A database, and whether the service asks for safe transfer.
class FirstGeneration : public testing::TestWithParam<std::tuple<const Quirks*, bool>> {
 protected:
  void SetUp() override {
    connection_.run("drop table if exists live");
    connection_.run(createTableSql("live", columns_));
    ASSERT_EQ(connection_->commit(), kSuccess);
  }

  void insertRows(int first, int last) {
    ASSERT_EQ(connection_->createBatch(insertSql("live", columns_)), kSuccess)
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
    const auto& sent = generated_.make(number);
    ASSERT_EQ(row.getNumColumns(), sent.size());
    for (std::size_t at = 0; at < sent.size(); ++at) {
      ASSERT_EQ(difference(sent[at], row.getColumnValue(at)), "")
          << "row " << number << " column " << columns_[at].name;
    }
  }

  void expectRows(int count) {
    std::vector<unsigned int> types;
    types.reserve(columns_.size());
    for (const LiveColumn& column : columns_) types.push_back(column.type);
    const RowDescriptor descriptor(types);
    ResultSet* rows = nullptr;
    ASSERT_EQ(connection_->executeQuery("select * from live order by id", {}, 0, rows), kSuccess);
    bool more = false;
    for (int number = 1; number <= count; ++number) {
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

  const Quirks& quirks_ = *std::get<0>(GetParam());
  const bool safe_ = std::get<1>(GetParam());
  LiveConnection connection_{quirks_, nullptr, safe_};
  zeldb::DriverLog& log_ = connection_.log();
  std::vector<LiveColumn> columns_ = liveColumns(quirks_);
  GeneratedRow generated_{quirks_, true};
};

TEST_P(FirstGeneration, CarriesEveryValueThereAndBack) {
  const int rowCount = safe_ ? kSafeRows : kRows;
  for (int first = 1; first <= rowCount; first += kBatchRows) {
    ASSERT_NO_FATAL_FAILURE(insertRows(first, first + kBatchRows - 1));
  }
  expectRows(rowCount);
}

TEST_P(FirstGeneration, ReportsWhatTheDatabaseSays) {
  int rows = -1;
  EXPECT_EQ(connection_->executeUpdate("insert into live (id) values (7)", {}, rows), kSuccess);
  EXPECT_EQ(rows, 1);
  EXPECT_EQ(connection_->executeUpdate("update live set id = 2 where id = 1", {}, rows),
            quirks_.updateOfNoRowFails && !safe_ ? kFailure : kSuccess);
  log_.clear();
  EXPECT_EQ(connection_->executeUpdate("delete from missing_table", {}, rows), kFailure);
  EXPECT_EQ(stateOfFailure(), quirks_.noSuchTable);
  EXPECT_EQ(connection_->rollback(), kSuccess);
  if (quirks_.wrongPassword != nullptr) {
    log_.clear();
    Connection* const refused = driver().createConnection(liveService(quirks_, "wrong", safe_));
    EXPECT_EQ(refused->open(), kFailure);
    EXPECT_EQ(stateOfFailure(), quirks_.wrongPassword);
    driver().releaseConnection(refused);
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
