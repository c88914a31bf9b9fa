#include "tests/live/live_connection.h"

#include <gtest/gtest.h>

#include "datatypes/data_types.h"
#include "tests/live/live_driver.h"

namespace live {

using namespace KORVEX::Zel::DB;

void LiveConnection::Release::operator()(Connection* connection) const {
  driver().releaseConnection(connection);
}

LiveConnection::LiveConnection(const Quirks& quirks, const char* dsnVariable, bool safeTransfer) {
  Quirks source = quirks;
  if (dsnVariable != nullptr) source.dsnVariable = dsnVariable;
  connection_.reset(driver().createConnection(
      liveService(source, environment("ZEL_TEST_PASSWORD"), safeTransfer)));
  EXPECT_EQ(connection_->open(), kSuccess) << log_.explanation();
}

void LiveConnection::run(const std::string& sql) {
  int rows = 0;
  EXPECT_EQ(connection_->executeUpdate(sql, {}, rows), kSuccess) << sql << log_.explanation();
}

LiveConnection::Rows LiveConnection::rows(const std::string& sql, std::size_t columns) {
  const RowDescriptor descriptor(std::vector<unsigned int>(columns, DataTypes::kString));
  Rows texts;
  ResultSet* result = nullptr;
  EXPECT_EQ(connection_->executeQuery(sql, {}, 0, result), kSuccess) << sql << log_.explanation();
  bool more = result != nullptr;
  while (more && result->next(more) == kSuccess && more) {
    Row* row = nullptr;
    EXPECT_EQ(result->getData(descriptor, row), kSuccess) << sql << log_.explanation();
    if (row == nullptr) break;
    const std::unique_ptr<Row> owned(row);
    texts.emplace_back();
    for (std::size_t at = 0; at < columns; ++at) {
      const DataTypes::DataValue& value = row->getColumnValue(at);
      texts.back().emplace_back(value.isNull() ? "NULL" : value.string);
    }
  }
  return texts;
}

}  // namespace live
