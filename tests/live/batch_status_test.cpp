// What a batch with a failing row reports, and that a rollback leaves nothing of it.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "datatypes/data_types.h"
#include "tests/live/live_connection.h"

namespace live {
namespace {

using namespace KORVEX::Zel::DB;
using Rows = LiveConnection::Rows;

struct Case {
  const char* name;
  int database;             // index into kQuirks
  const char* dsnVariable;  // null for the database's own
  Rows untilRollback;       // of the four rows sent, of which the third is refused
};

const Case kCases[] = {
    {"SQLite", 0, nullptr, {{"1"}, {"2"}}},
    {"PostgreSQL", 1, nullptr, {}},
    {"PostgreSQLRowwise", 1, "ZEL_TEST_DSN_POSTGRESQL_ROWWISE", {}},
    {"MariaDB", 2, nullptr, {}},
};

class BatchStatus : public testing::TestWithParam<Case> {
 protected:
  void SetUp() override {
    connection_.run("drop table if exists batches");
    connection_.run("create table batches (id integer primary key)");
    connection_.run("insert into batches values (9)");
    ASSERT_EQ(connection_->commit(), kSuccess);
  }

  static ResultCode send(const LiveConnection& connection, const std::vector<int>& ids,
                         std::vector<int>& status) {
    EXPECT_EQ(connection->createBatch("insert into batches values (?)"), kSuccess);
    for (const int id : ids) {
      std::vector<Parameter> row(1);
      row[0].type = DataTypes::kInteger;
      row[0].value.int32 = id;
      EXPECT_EQ(connection->addToBatch(row), kSuccess);
    }
    return connection->executeBatch(status);
  }

  Rows stored() { return connection_.rows("select id from batches where id <> 9 order by id", 1); }

  LiveConnection connection_{kQuirks[GetParam().database], GetParam().dsnVariable};
};

TEST_P(BatchStatus, FailsWholeAndIsUndoneByRollback) {
  for (const std::vector<int>& ids : {std::vector{1, 2, 9, 3}, {1, 2, 2, 3}}) {
    std::vector<int> status;
    connection_.log().clear();
    EXPECT_EQ(send(connection_, ids, status), kFailure);
    EXPECT_EQ(status, std::vector<int>());
    ASSERT_NE(connection_.log().diagnostic(), nullptr);
    EXPECT_EQ(stored(), GetParam().untilRollback);
    EXPECT_EQ(connection_->rollback(), kSuccess);
    EXPECT_EQ(stored(), Rows());
  }
}

TEST_P(BatchStatus, ReportsEveryRowOfABatchThatWorksAfterOneThatFailed) {
  std::vector<int> status;
  EXPECT_EQ(send(connection_, {1, 9}, status), kFailure);
  EXPECT_EQ(connection_->rollback(), kSuccess);
  EXPECT_EQ(send(connection_, {1, 2, 3}, status), kSuccess) << connection_.log().explanation();
  EXPECT_EQ(status, std::vector<int>({0, 0, 0}));
  EXPECT_EQ(send(connection_, {}, status), kSuccess);
  EXPECT_EQ(status, std::vector<int>());
  EXPECT_EQ(connection_->commit(), kSuccess);
  LiveConnection other(kQuirks[GetParam().database]);
  EXPECT_EQ(other.rows("select count(*) from batches", 1), (Rows{{"4"}}));
}

TEST_P(BatchStatus, LosesAnOpenBatchWithItsConnection) {
  std::vector<int> status;
  {
    LiveConnection lost(kQuirks[GetParam().database], GetParam().dsnVariable);
    EXPECT_EQ(send(lost, {4}, status), kSuccess);
    EXPECT_EQ(status, std::vector<int>({0}));
  }
  EXPECT_EQ(stored(), Rows());
}

INSTANTIATE_TEST_SUITE_P(Live, BatchStatus, testing::ValuesIn(kCases),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace live
