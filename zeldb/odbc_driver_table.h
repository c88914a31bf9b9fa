#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace zeldb {

enum class DriverKind : std::uint8_t { kAny, kSqlite, kPostgresql, kMariadb };

// Who speaks first when a client connects, and what: how a server is told from a stranger.
enum class Greeting : std::uint8_t {
  kNone,
  kAnswersTlsRequest,  // the client asks for TLS, the server answers with one letter
  kSpeaksFirst,        // the server sends a packet: its protocol's version, or an error
};

// What is to be known about an ODBC driver from outside.
struct OdbcDriver {
  DriverKind kind;
  std::string_view database;      // what users call the database
  std::string_view libraryPart;   // part of the name of the driver's file
  std::string_view package;       // that brings it
  std::string_view messageMark;   // part of each of its messages; empty when it leaves no mark
  std::string_view hostKey;       // keys of a data source; empty for a database in a file
  std::string_view otherHostKey;  //
  std::string_view portKey;
  std::string_view defaultPort;
  Greeting greeting;
  std::string_view start;         // how the server is started
  std::string_view momentColumn;  // SQL type of a time stamp with microseconds
};

// The first row whose part of a name fits holds; the last fits all.
constexpr auto kOdbcDrivers = std::to_array<OdbcDriver>({
    {DriverKind::kSqlite, "SQLite", "sqlite", "libsqliteodbc", "[SQLite]", "", "", "", "",
     Greeting::kNone, "", "timestamp"},
    {DriverKind::kPostgresql, "PostgreSQL", "psqlodbc", "odbc-postgresql", "", "Servername",
     "Server", "Port", "5432", Greeting::kAnswersTlsRequest, "systemctl start postgresql",
     "timestamp"},
    {DriverKind::kMariadb, "MariaDB", "maodbc", "odbc-mariadb", "[ma-", "SERVER", "SERVERNAME",
     "PORT", "3306", Greeting::kSpeaksFirst, "systemctl start mariadb", "datetime(6)"},
    {DriverKind::kAny, "database", "", "", "", "", "", "", "", Greeting::kNone, "", "timestamp"},
});

// How a key of a data source, or of its driver's section, is judged.
enum class SettingRule : std::uint8_t { kMustBe, kMustNotBe };
enum class SettingPlace : std::uint8_t { kDataSource, kDriver };

struct SettingAdvice {
  DriverKind kind;
  SettingPlace place;
  std::string_view key;
  SettingRule rule;
  std::string_view value;
  std::string_view cause;  // what comes of it otherwise
};

constexpr auto kSettingAdvice = std::to_array<SettingAdvice>({
    {DriverKind::kPostgresql, SettingPlace::kDataSource, "UseServerSidePrepare",
     SettingRule::kMustNotBe, "0",
     "the driver then describes no parameters: no batches and no second generation"},
    {DriverKind::kPostgresql, SettingPlace::kDataSource, "BoolsAsChar", SettingRule::kMustBe, "0",
     "booleans are texts of 5 characters otherwise"},
    {DriverKind::kPostgresql, SettingPlace::kDataSource, "Protocol", SettingRule::kMustNotBe,
     "7.4-1", "any error then rolls the whole transaction back without saying so"},
    {DriverKind::kMariadb, SettingPlace::kDataSource, "CHARSET", SettingRule::kMustBe, "utf8mb4",
     "characters that the connection's character set lacks are lost or refused otherwise"},
    {DriverKind::kAny, SettingPlace::kDriver, "Threading", SettingRule::kMustNotBe, "2",
     "two threads then take several times as long as one"},
    {DriverKind::kAny, SettingPlace::kDriver, "Threading", SettingRule::kMustNotBe, "3",
     "two threads then take several times as long as one"},
});

}  // namespace zeldb
