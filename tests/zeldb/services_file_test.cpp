#include "zeldb/services_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/zeldb/scratch_folder.h"
#include "zeldb/failure.h"
#include "zeldb/secrets.h"

namespace zeldb {
namespace {

TEST(ServicesFile, GivesTheDriversProperties) {
  const ScratchFolder folder;
  folder.write("secret", "p w\r\nrest\n");
  setenv("ZELDB_TEST_PASSWORD", "from env", 1);
  const ServicesFile file(folder.write("zeldb.toml", R"(
[orders]
DSN = "db1"
User = "app"
Password = "p=;"
DatabaseType = "POSTGRESQL"
WriteBigIntAsChar = true
[by_env]
DSN = "db1"
User = "app"
password_env = "ZELDB_TEST_PASSWORD"
[by_file]
DSN = "db1"
User = "app"
password_file = "secret"
WriteBigIntAsChar = false
SafeTransfer = false
)"));
  using Properties = KORVEX::Zel::PropertyDataService::Properties;
  EXPECT_EQ(file.find("orders").properties, (Properties{{"DSN", "db1"},
                                                        {"User", "app"},
                                                        {"Password", "p=;"},
                                                        {"DatabaseType", "POSTGRESQL"},
                                                        {"SafeTransfer", "true"},
                                                        {"WriteBigIntAsChar", "true"}}));
  EXPECT_EQ(file.find("orders").name, "orders");
  EXPECT_EQ(file.find("by_env").properties.at("Password"), "from env");
  EXPECT_EQ(file.find("by_file").properties.at("Password"), "p w");
  EXPECT_EQ(file.find("by_file").properties.at("WriteBigIntAsChar"), "false");
  EXPECT_EQ(file.find("by_file").properties.at("SafeTransfer"), "false");
}

TEST(ServicesFile, NamesThePlaceOfAFault) {
  struct Case {
    const char* text;
    const char* expected;  // behind the file's name; of what is no TOML the beginning
  };
  const Case cases[] = {
      {"[s]\nDSN = \"d\"\nUser = \n", ":3:"},
      {"", ": no service \"s\"; there is none"},
      {"[a]\n[b]\n", ": no service \"s\"; there is a, b"},
      {"s = 1\n", ":1:5: \"s\" is no table of a service"},
      {"[s]\nUser = \"u\"\n", ":1:1: service \"s\" has no DSN"},
      {"[s]\nDSN = \"d\"\nUser = \"\"\n", ":1:1: service \"s\" has no User"},
      {"[s]\nDSN = \"d\"\nUsr = \"u\"\n", ":3:1: unknown key \"Usr\""},
      {"[s]\nDSN = 1\n", ":2:7: DSN must be a text"},
      {"[s]\nWriteBigIntAsChar = \"yes\"\n", ":2:21: WriteBigIntAsChar must be true or false"},
      {"[s]\nPassword = \"x\"\npassword_env = \"HOME\"\n", ":3:1: more than one password"},
      {"[s]\npassword_env = \"ZELDB_NOT_SET\"\n",
       ":2:16: environment variable ZELDB_NOT_SET is not set"},
      {"[s]\npassword_file = \"/nonexistent/p\"\n",
       ":2:17: password file /nonexistent/p cannot be read or is empty"},
  };
  const ScratchFolder folder;
  for (const Case& row : cases) {
    const auto path = folder.write("zeldb.toml", row.text);
    try {
      ServicesFile(path).find("s");
      ADD_FAILURE() << row.text;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.exitCode(), ExitCode::kUsage);
      const std::string expected = path.string() + row.expected;
      const std::string said = failure.what();
      EXPECT_EQ(expected.ends_with(':') ? said.substr(0, expected.size()) : said, expected);
    }
  }
  EXPECT_THROW(ServicesFile("/nonexistent/zeldb.toml").find("s"), Failure);
}

// Also of a service that is wrong, and of one that nobody has asked for.
TEST(ServicesFile, HidesThePasswordOfEveryEntry) {
  struct Case {
    const char* text;
    const char* seen;  // what is shown then of "in-line in-env in-file, missing"
  };
  const Case cases[] = {
      {"", "in-line in-env in-file, missing"},
      {"[a]\npassword_file = \"missing\"\npassword_env = \"ZELDB_NOT_SET\"\n",
       "in-line in-env in-file, missing"},
      {"[a]\nUsr = \"u\"\nPassword = \"in-line\"\n", "*** in-env in-file, missing"},
      {"[a]\npassword_env = \"ZELDB_TEST_PASSWORD\"\n[b]\npassword_file = \"password\"\n",
       "*** *** ***, missing"},
  };
  const ScratchFolder folder;
  folder.write("password", "in-file\n");
  setenv("ZELDB_TEST_PASSWORD", "in-env", 1);
  for (const Case& row : cases) {  // what is secret stays so
    ServicesFile(folder.write("zeldb.toml", row.text)).entries();
    EXPECT_EQ(Secrets::masked("in-line in-env in-file, missing"), row.seen) << row.text;
  }
}

}  // namespace
}  // namespace zeldb
