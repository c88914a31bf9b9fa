#pragma once

#include <array>
#include <string_view>

#include "zeldb/odbc_driver_table.h"

namespace zeldb {

// What a failure that a driver reports usually comes of, and what helps. In both texts {dsn},
// {user}, {database}, {server}, {section} and {services} stand for what is known of the connection.
struct Remedy {
  DriverKind kind;           // kAny for every driver
  std::string_view state;    // SQLSTATE, or how it begins; empty for any
  int native;                // native code; 0 for any
  std::string_view message;  // part of the driver's message; empty for any
  std::string_view cause;
  std::string_view remedy;
};

// The first row that fits holds, so what is known better stands before what is known in general.
constexpr auto kRemedies = std::to_array<Remedy>({
    // Finding the data source and its driver.
    {DriverKind::kAny, "IM002", 0, "", "{dsn} is in no odbc.ini, or has no Driver",
     "correct DSN in {services}, or add the data source to odbc.ini; zeldb doctor names the files"},
    {DriverKind::kAny, "IM003", 0, "", "the ODBC driver cannot be loaded",
     "correct Driver of {section}; install the driver's package"},
    {DriverKind::kAny, "IM004", 0, "", "the ODBC driver has loaded but cannot start",
     "install the driver's package anew, in the version that fits its libraries"},
    {DriverKind::kAny, "01000", 0, "Can't open lib",
     "the driver's file is missing, is no library, or a library that it needs is missing",
     "install the driver's package, or correct Driver of {section}"},
    {DriverKind::kAny, "01000", 0, "", "the driver sends a warning only",
     "read its text; nothing has been refused"},
    {DriverKind::kPostgresql, "IM001", 0, "",
     "the driver does not describe parameters (SQLDescribeParam): no batches, and no second "
     "generation",
     "set UseServerSidePrepare=1 in {section}, or remove the line: 1 is the default"},
    {DriverKind::kAny, "IM001", 0, "",
     "the driver lacks an ODBC function; SQLDescribeParam is needed for batches and the second "
     "generation",
     "take a driver that describes parameters; for PostgreSQL set UseServerSidePrepare=1"},
    {DriverKind::kAny, "HY090", 0, "", "a name is too long; a DSN may have 32 characters",
     "give the data source a shorter name in odbc.ini and {services}"},

    // Reaching the server.
    {DriverKind::kPostgresql, "08001", 0, "password authentication failed",
     "the server does not know {user}, or the password is wrong",
     "correct User and password in {services}, or: alter role ... password '...'"},
    {DriverKind::kPostgresql, "08001", 0, "no password supplied",
     "the server wants a password, and {services} gives none",
     "set password_env, password_file or Password in {services}"},
    {DriverKind::kPostgresql, "08001", 0, "no pg_hba.conf entry",
     "the server's pg_hba.conf does not let {user} into {database} from this machine",
     "add a line for user, database and address to pg_hba.conf, and reload the server"},
    {DriverKind::kPostgresql, "08001", 0, "role \"", "the server has no {user}",
     "correct User in {services}, or: create role ... login password '...'"},
    {DriverKind::kPostgresql, "08001", 0, "permission denied for database",
     "{user} may not connect to {database}", "grant connect on database ... to the user"},
    {DriverKind::kPostgresql, "08001", 0, "database \"", "the server has no {database}",
     "correct Database of {section}, or create it: create database ..."},
    {DriverKind::kPostgresql, "08001", 0, "Connection refused", "nothing listens on {server}",
     "start the server, or correct Servername and Port of {section}"},
    {DriverKind::kPostgresql, "08001", 0, "could not translate host name",
     "the server's name has no address", "correct Servername of {section}"},
    {DriverKind::kPostgresql, "08001", 0, "too many clients",
     "the server has as many connections as it may have",
     "close connections, or raise max_connections of the server"},
    {DriverKind::kPostgresql, "08001", 0, "but received",
     "what listens on {server} is no PostgreSQL", "correct Port of {section}"},
    {DriverKind::kMariadb, "", 1045, "",
     "the server does not know {user}, or the password is wrong",
     "correct User and password in {services}, or: alter user ... identified by '...'; "
     "NAME@localhost and NAME@'%' are two users, each with a password"},
    {DriverKind::kMariadb, "", 1044, "",
     "{database} is missing, or {user} has not the right to do this in it",
     "correct DATABASE of {section}, create the database, or: grant all on DATABASE.* to the "
     "user"},
    {DriverKind::kMariadb, "", 1049, "", "the server has no {database}",
     "correct DATABASE of {section}, or create it: create database ..."},
    {DriverKind::kMariadb, "", 1040, "", "the server has as many connections as it may have",
     "close connections, or raise max_connections of the server"},
    {DriverKind::kMariadb, "", 1129, "", "the server blocks this machine after too many errors",
     "mariadb-admin flush-hosts, on the server"},
    {DriverKind::kMariadb, "", 1130, "", "the server lets no user in from this machine",
     "create the user for this machine's name or address: create user ...@'ADDRESS'"},
    {DriverKind::kMariadb, "", 2002, "", "nothing listens on {server}",
     "start the server, or correct SERVER and PORT of {section}"},
    {DriverKind::kMariadb, "", 2003, "", "nothing listens on {server}",
     "start the server, or correct SERVER and PORT of {section}"},
    {DriverKind::kMariadb, "", 2005, "", "the server's name has no address",
     "correct SERVER of {section}"},
    {DriverKind::kMariadb, "", 2006, "",
     "the server has closed the connection: idle too long, restarted, or a packet too large",
     "connect again; raise wait_timeout or max_allowed_packet of the server"},
    {DriverKind::kMariadb, "", 2013, "", "the connection was lost in the middle of a statement",
     "look whether the server has been restarted or killed, then connect again; a COMMIT that "
     "fails so may have happened"},
    {DriverKind::kMariadb, "", 1047, "",
     "the cluster's node is not in the majority and takes no statements",
     "start the other nodes, or connect to one that is Synced: list all nodes in SERVER of "
     "{section}"},
    {DriverKind::kMariadb, "", 1180, "",
     "the cluster's node could not commit: it has left the majority",
     "start the other nodes; look whether the transaction is there before sending it again"},
    {DriverKind::kSqlite, "", 14, "",
     "the database's file cannot be opened: its folder is missing or may not be entered",
     "correct Database of {section}, or create the folder"},
    {DriverKind::kAny, "28", 0, "", "the server does not know {user}, or the password is wrong",
     "correct User and password in {services}"},
    {DriverKind::kAny, "08001", 0, "", "the server cannot be reached or lets nobody in",
     "look whether it runs, and correct host and port of {section}"},
    {DriverKind::kAny, "08S01", 0, "", "the connection to the server was lost",
     "look whether the server has been restarted or killed, then connect again; a COMMIT that "
     "fails so may have happened"},
    {DriverKind::kAny, "08", 0, "", "there is no connection to the server any more",
     "look whether the server runs, then connect again"},
    {DriverKind::kAny, "HYT", 0, "", "the server did not answer in time",
     "look for locks and load on the server, or raise the time limit"},

    // What statements need.
    {DriverKind::kMariadb, "", 1142, "", "{user} has not the right to do this with the table",
     "grant it, as an administrator: grant select, insert on DATABASE.TABLE to the user"},
    {DriverKind::kMariadb, "", 1366, "",
     "the character set of the connection or the column has no such characters",
     "set CHARSET=utf8mb4 in {section}, and give the table character set utf8mb4"},
    {DriverKind::kMariadb, "", 1205, "", "another transaction holds the row too long",
     "let it end, then send the transaction again"},
    {DriverKind::kMariadb, "", 1213, "", "two transactions wait for each other; this one was ended",
     "send the transaction again"},
    {DriverKind::kMariadb, "", 1153, "", "a value is larger than a packet may be",
     "raise max_allowed_packet of the server"},
    {DriverKind::kPostgresql, "42501", 0, "temporary tables",
     "{user} may create no temporary tables in {database}",
     "as an administrator: grant temporary on database ... to the user"},
    {DriverKind::kAny, "42501", 0, "", "{user} has not the right to do this",
     "grant it, as an administrator: grant ... on ... to the user"},
    {DriverKind::kSqlite, "", 1, "no such table", "there is no table or view of this name",
     "list them with zeldb tables; look whether Database of {section} is the right file"},
    {DriverKind::kSqlite, "", 5, "", "another program writes to the file and locks it",
     "let it end, then send the transaction again"},
    {DriverKind::kSqlite, "", 8, "", "the file or its folder may not be written to",
     "give the user of this process write permission to both"},
    {DriverKind::kSqlite, "", 13, "", "the disk is full", "make room"},
    {DriverKind::kSqlite, "", 19, "", "a key comes twice, a value is missing, or a check fails",
     "correct the row; zeldb load --rejects goes on without it"},
    {DriverKind::kSqlite, "", 26, "", "the file is no SQLite database",
     "correct Database of {section}"},
    {DriverKind::kAny, "42S02", 0, "", "there is no table or view of this name",
     "list them with zeldb tables; write the schema before the name"},
    {DriverKind::kAny, "42P01", 0, "", "there is no table or view of this name",
     "list them with zeldb tables; write the schema before the name"},
    {DriverKind::kAny, "42S22", 0, "", "there is no column of this name",
     "list them with zeldb describe"},
    {DriverKind::kAny, "42703", 0, "", "there is no column of this name",
     "list them with zeldb describe"},
    {DriverKind::kAny, "42", 0, "",
     "the statement is wrong, or {user} has not the right to do this",
     "correct the SQL at the place that the message names, or grant the right"},
    {DriverKind::kAny, "22001", 0, "", "a text is longer than its column",
     "make the column longer; zeldb describe shows its size"},
    {DriverKind::kAny, "22003", 0, "", "a number is outside the range of its column",
     "give the column a wider type; zeldb describe shows it"},
    {DriverKind::kAny, "22", 0, "", "a value does not fit its column's type",
     "correct the value, or the column's type"},
    {DriverKind::kAny, "23", 0, "", "a key comes twice, a value is missing, or a check fails",
     "correct the row; zeldb load --rejects goes on without it"},
    {DriverKind::kAny, "25006", 0, "", "the server only reads: a standby, or a read-only account",
     "connect to the server that takes writes"},
    {DriverKind::kAny, "25", 0, "", "the transaction is in a state that does not allow this",
     "commit or roll back first, and read a result to its end"},
    {DriverKind::kAny, "40001", 0, "", "the transaction was ended because of another one",
     "send the whole transaction again"},
    {DriverKind::kAny, "40", 0, "", "the transaction was ended by the database",
     "send the whole transaction again"},
    {DriverKind::kAny, "HYC00", 0, "", "the driver does not support this",
     "use another type or option; docs/databases.md lists what drivers cannot do"},
    {DriverKind::kAny, "HY010", 0, "", "calls came in an order that the driver does not allow",
     "read a result to its end before the next statement; update the driver"},
    {DriverKind::kAny, "", 0, "", "the driver gives this reason only",
     "look into the log of the server at this time"},
});

}  // namespace zeldb
