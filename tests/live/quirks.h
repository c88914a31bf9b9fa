#pragma once

#include <span>
#include <string>

namespace live {

// A value that a database or its driver does not carry.
struct Limit {
  const char* type;
  const char* value;
  const char* reason;
};

// In what the databases differ, as far as the live tests care.
struct Quirks {
  const char* name;
  const char* dsnVariable;  // environment variable with the data source

  // Column types. Every other type has the same name everywhere.
  const char* float64;
  const char* boolean;
  const char* decimal34;  // 34 digits, 10 of them behind the point
  const char* money;
  const char* date;
  const char* timestamp;
  const char* bigDateTime;
  const char* binary;

  int microsecondStep;          // the finest step of a bigdatetime that is kept
  bool binaryLengthsMayDiffer;  // within a batch
  bool updateOfNoRowFails;      // the driver answers "no data"
  const char* noSuchTable;      // SQLSTATE of a statement on a missing table
  const char* wrongPassword;    // SQLSTATE; null where there are no passwords
  std::span<const Limit> limits;
};

inline constexpr char kFifteenDigits[] = "the driver reads numbers as texts of 15 digits";
inline constexpr char kStoredAsDouble[] =
    "the database stores a double; keep exact decimals in a text column";

inline constexpr Limit kSqliteLimits[] = {
    {"float", "min", kFifteenDigits},
    {"float", "max", kFifteenDigits},
    {"float", "17 digits", kFifteenDigits},
    {"float", "smallest", kFifteenDigits},
    {"money", "min", kStoredAsDouble},
    {"money", "max", kStoredAsDouble},
    {"money(15)", "min", kStoredAsDouble},
    {"money(15)", "max", kStoredAsDouble},
    {"decimal(34,10)", "min", kStoredAsDouble},
    {"decimal(34,10)", "max", kStoredAsDouble},
    {"decimal(34,10)", "smallest", kStoredAsDouble},
    {"decimal(34,0)", "min", kStoredAsDouble},
    {"decimal(34,0)", "max", kStoredAsDouble},
    {"bigdatetime", "microseconds", "the driver keeps milliseconds"},
    {"binary", "several lengths in a batch", "the driver takes row 1's length for every row"},
};

inline constexpr Quirks kQuirks[] = {
    {.name = "SQLite",
     .dsnVariable = "ZEL_TEST_DSN_SQLITE",
     .float64 = "double",
     .boolean = "bit",
     .decimal34 = "varchar(40)",  // numbers of more than 15 digits would become doubles
     .money = "varchar(40)",
     .date = "timestamp",
     .timestamp = "timestamp",
     .bigDateTime = "timestamp",
     .binary = "blob",
     .microsecondStep = 1000,
     .binaryLengthsMayDiffer = false,
     .updateOfNoRowFails = true,
     .noSuchTable = "HY000",
     .wrongPassword = nullptr,
     .limits = kSqliteLimits},
    {.name = "PostgreSQL",
     .dsnVariable = "ZEL_TEST_DSN_POSTGRESQL",
     .float64 = "double precision",
     .boolean = "boolean",
     .decimal34 = "numeric(34,10)",
     .money = "numeric(19,4)",
     .date = "timestamp(0)",
     .timestamp = "timestamp(3)",
     .bigDateTime = "timestamp(6)",
     .binary = "bytea",
     .microsecondStep = 1,
     .binaryLengthsMayDiffer = true,
     .updateOfNoRowFails = true,
     .noSuchTable = "42P01",
     .wrongPassword = "08001",
     .limits = {}},
    {.name = "MariaDB",
     .dsnVariable = "ZEL_TEST_DSN_MARIADB",
     .float64 = "double",
     .boolean = "bit(1)",
     .decimal34 = "decimal(34,10)",
     .money = "decimal(19,4)",
     .date = "datetime",
     .timestamp = "datetime(3)",
     .bigDateTime = "datetime(6)",
     .binary = "varbinary(300)",
     .microsecondStep = 1,
     .binaryLengthsMayDiffer = true,
     .updateOfNoRowFails = false,
     .noSuchTable = "42S02",
     .wrongPassword = "28000",
     .limits = {}},
};

}  // namespace live
