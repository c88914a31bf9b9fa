#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "odbc/odbc_dbc.h"
#include "odbc/odbc_env.h"
#include "odbc/odbc_error.h"
#include "odbc/odbc_param.h"
#include "odbc/odbc_stmt.h"
#include "tests/support/fake_odbc_client.h"

namespace odbc_test {

using KORVEX::Zel::DB::getOdbcError;
using KORVEX::Zel::DB::ODBC::Odbc;
using KORVEX::Zel::DB::ODBC::OdbcDbc;
using KORVEX::Zel::DB::ODBC::OdbcEnv;
using KORVEX::Zel::DB::ODBC::OdbcParam;
using KORVEX::Zel::DB::ODBC::OdbcStmt;
using Log = std::vector<std::string>;

// The text of getOdbcError for a record, with the NUL that belongs to it.
inline std::string recordText(const std::string& visible) {
  return visible + std::string(1, '\0');
}

// A connection over the scripted ODBC. Every test ends with all handles freed in the right order.
class OdbcTest : public testing::Test {
 public:
  void SetUp() override { fake_.reset(); }

  void TearDown() override {
    env_.reset();
    EXPECT_EQ(fake_.liveHandles(), Log());
    EXPECT_EQ(fake_.misuses, Log());
  }

  void connect() {
    env_.reset(Odbc::CreateEnv());
    dbc_ = env_->CreateDbc();
    ASSERT_EQ(dbc_->Connect("fake", "user", "secret"), Odbc::e_Ok);
    fake_.log.clear();
  }

  // A connection and a statement with this text prepared.
  void prepare(const std::string& sql, bool batch = false) {
    connect();
    stmt_ = dbc_->CreateStmt();
    ASSERT_EQ(stmt_->SetSql(sql, batch), Odbc::e_Ok);
    fake_.log.clear();
  }

  // A statement on the first row of a result.
  void fetchFirst(const fake::Result& result) {
    fake_.results["select"] = {result};
    prepare("select");
    ASSERT_EQ(stmt_->Execute(), Odbc::e_Ok);
    fake_.log.clear();
  }

  fake::FakeOdbc& fake_ = fake::fakeOdbc();
  std::unique_ptr<OdbcEnv> env_;
  OdbcDbc* dbc_ = nullptr;
  OdbcStmt* stmt_ = nullptr;
};

}  // namespace odbc_test
