// The row-by-row interface on real databases.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "datatypes/data_types.h"
#include "host/host.h"
#include "tests/live/generated_row.h"
#include "tests/live/live_driver.h"
#include "tests/live/quirks.h"
#include "tests/support/packed_row.h"

namespace live {
namespace {

using namespace KORVEX::Zel::DB;
using Cells = std::vector<DataTypes::DataValue>;
using Types = std::vector<unsigned int>;

constexpr int kRows = 100000;
constexpr int kPlainRows = 1000;
constexpr int kRowsPerCommit = 1000;

class SecondGeneration : public testing::TestWithParam<const Quirks*> {
 protected:
  void SetUp() override { error_ = driver().createError(""); }

  void TearDown() override {
    if (connection_ != nullptr) driver().releaseConnection2(connection_, error_);
    driver().releaseError(error_);
  }

  void open(bool safe) {
    connection_ = driver().createConnection2(
        liveService(quirks_, environment("ZEL_TEST_PASSWORD"), safe), error_);
    ASSERT_NE(connection_, nullptr) << error_->getErrorString();
    ASSERT_EQ(connection_->connect(error_), 0) << error_->getErrorString();
  }

  // An empty table "live2" of the given columns.
  void createTable(const std::vector<LiveColumn>& columns) {
    columns_ = columns;
    types_.clear();
    for (const LiveColumn& column : columns_) types_.push_back(column.type);
    for (const std::string& sql :
         {std::string("drop table if exists live2"), createTableSql("live2", columns)}) {
      PreparedStatement* statement = connection_->createPreparedStatement(sql.c_str(), error_);
      ASSERT_NE(statement, nullptr) << error_->getErrorString();
      // Statements that change no row may answer a warning, which only safe transfer lets pass.
      statement->execute(error_);
      ASSERT_EQ(connection_->releaseStatement(statement, error_), 0);
      ASSERT_EQ(connection_->commit(error_), 0) << error_->getErrorString();
    }
  }

  PreparedStatement* prepareInsert() {
    return connection_->createPreparedStatement(insertSql("live2", columns_).c_str(), error_);
  }

  // Odd rows as value vectors, even ones packed.
  int write(PreparedStatement* insert, int number, const std::vector<Parameter>& row) {
    if (number % 2 != 0) {
      Cells cells;
      for (const Parameter& parameter : row) cells.push_back(parameter.value);
      return insert->execute(cells, types_, error_);
    }
    std::vector<PackedValue> packed;
    std::vector<int> columns;
    for (const Parameter& parameter : row) {
      columns.push_back(static_cast<int>(packed.size()));
      packed.push_back(packedValue(parameter.value, parameter.type));
    }
    if (insert->setBindings(columns, types_.data(), error_) != 0) return -1;
    return insert->execute(PackedRow(packed).get(), error_);
  }

  template <typename MakeRow>
  void writeRows(int rows, MakeRow makeRow) {
    PreparedStatement* insert = prepareInsert();
    ASSERT_NE(insert, nullptr) << error_->getErrorString();
    for (int number = 1; number <= rows; ++number) {
      ASSERT_EQ(write(insert, number, makeRow(number)), 0)
          << number << ": " << error_->getErrorString();
      if (number % kRowsPerCommit == 0 || number == rows) {
        ASSERT_EQ(connection_->commit(error_), 0);
      }
    }
    ASSERT_EQ(connection_->releaseStatement(insert, error_), 0);
  }

  void expectCell(int number, std::size_t at, const Parameter& sent, DataTypes::DataValue got) {
    ASSERT_EQ(difference(sent, got), "") << "row " << number << " column " << columns_[at].name;
  }

  void readCells(PreparedStatement* query, int number, const std::vector<Parameter>& row) {
    Cells cells(row.size());
    ASSERT_EQ(query->nextRow(cells, error_), 0) << number << error_->getErrorString();
    for (std::size_t at = 0; at < row.size(); ++at) {
      expectCell(number, at, row[at], cells[at]);
      if (cells[at].isNull()) continue;
      if (types_[at] == DataTypes::kString) std::free(const_cast<char*>(cells[at].string));
      if (types_[at] == DataTypes::kBinary) {
        std::free(const_cast<unsigned char*>(cells[at].binary.data));
      }
    }
  }

  void readPacked(PreparedStatement* query, int number, const std::vector<Parameter>& row) {
    const RowInternal2* packed = query->nextRow(error_);
    ASSERT_NE(packed, nullptr) << number << error_->getErrorString();
    for (std::size_t at = 0; at < row.size(); ++at) {
      DataTypes::DataValue cell;
      DataTypes::unpackValue(types_[at], const_cast<unsigned char*>(packed->value(at)), cell);
      expectCell(number, at, row[at], cell);
    }
    std::free(const_cast<RowInternal2*>(packed));
  }

  template <typename MakeRow>
  void expectRows(int rows, MakeRow makeRow) {
    for (const bool packed : {false, true}) {
      PreparedStatement* query = connection_->createPreparedStatement(
          "select * from live2 order by id", static_cast<int>(types_.size()), types_.data(), false,
          error_);
      ASSERT_NE(query, nullptr) << error_->getErrorString();
      bool more = false;
      ASSERT_EQ(query->execute(error_), 0) << error_->getErrorString();
      ASSERT_EQ(query->nextResultSet(more, error_), 0);
      for (int number = 1; number <= rows; ++number) {
        ASSERT_EQ(query->hasMoreData(more, error_), 0) << error_->getErrorString();
        ASSERT_TRUE(more) << number;
        const auto& row = makeRow(number);
        ASSERT_NO_FATAL_FAILURE(packed ? readPacked(query, number, row)
                                       : readCells(query, number, row));
      }
      ASSERT_EQ(query->hasMoreData(more, error_), 0);
      EXPECT_FALSE(more);
      ASSERT_EQ(connection_->releaseStatement(query, error_), 0);
    }
  }

  const Quirks& quirks_ = *GetParam();
  DBError* error_ = nullptr;
  Connection2* connection_ = nullptr;
  std::vector<LiveColumn> columns_;
  Types types_;
};

TEST_P(SecondGeneration, CarriesAnyMixSafely) {
  ASSERT_NO_FATAL_FAILURE(open(true));
  ASSERT_NO_FATAL_FAILURE(createTable(liveColumns(quirks_)));
  GeneratedRow generated(quirks_, false);
  const auto makeRow = [&](int number) -> const auto& { return generated.make(number); };
  ASSERT_NO_FATAL_FAILURE(writeRows(kRows, makeRow));
  expectRows(kRows, makeRow);
}

// What one indicator for all parameters can carry: fixed-size values without NULL.
TEST_P(SecondGeneration, CarriesFixedSizesPlainly) {
  ASSERT_NO_FATAL_FAILURE(open(false));
  ASSERT_NO_FATAL_FAILURE(createTable({{"id", DataTypes::kInteger, "integer"},
                                       {"l", DataTypes::kLong, "bigint"},
                                       {"d", DataTypes::kFloat, quirks_.float64},
                                       {"b", DataTypes::kBoolean, quirks_.boolean},
                                       {"i", DataTypes::kInterval, "bigint"}}));
  std::vector<Parameter> row(types_.size());
  for (std::size_t at = 0; at < row.size(); ++at) row[at].type = types_[at];
  const auto makeRow = [&](int number) -> const auto& {
    row[0].value.int32 = number;
    row[1].value.int64 = number * 92233720368547L;
    row[2].value.float64 = number / 8.0;
    row[3].value.boolean = number % 3 == 0;
    row[4].value.int64 = -number;
    return row;
  };
  ASSERT_NO_FATAL_FAILURE(writeRows(kPlainRows, makeRow));
  expectRows(kPlainRows, makeRow);
}

INSTANTIATE_TEST_SUITE_P(Live, SecondGeneration,
                         testing::Values(&kQuirks[0], &kQuirks[1], &kQuirks[2]),
                         [](const auto& parameter) { return std::string(parameter.param->name); });

}  // namespace
}  // namespace live
