#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "driver/odbc_connection.h"
#include "driver/odbc_database_metadata.h"
#include "host/host.h"
#include "standin/log_sink.h"
#include "tests/support/fake_odbc_client.h"
#include "tests/support/packed_row.h"

namespace verify {

using namespace KORVEX::Zel::DB;

using Strings = std::vector<std::string>;

// How an operation of the plug-in ended.
enum class Outcome {
  kDone,
  kRefused,     // with the result that its interface has for that
  kImpossible,  // with a result that its interface does not have
};

inline constexpr char kQuery[] = "select ?";            // for the first generation
inline constexpr char kQuery2[] = "select ? for rows";  // the same for the second
inline constexpr char kInsert[] = "insert ?,?";
inline constexpr char kTable[] = "t";
inline constexpr char kDiagnostic[] = "[42000][7][no]";  // a record as it is logged

// A server in small: a driver, a connection of each generation, and what they have handed out.
// Below is the scripted ODBC. The arguments of all operations are made beforehand, so that what an
// operation allocates is the plug-in's.
struct World {
  explicit World(bool safeTransfer);
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  // Gives back what was handed out, connections and all.
  void close();
  // Forgets pointers that a new statement makes invalid.
  void newStatement() { rows = nullptr; }
  void releaseCells();

  fake::FakeOdbc& odbc = fake::fakeOdbc();
  bool safe;
  std::unique_ptr<Driver> driver;
  DBError* error = nullptr;

  // First generation.
  Connection* connection = nullptr;
  ResultSet* rows = nullptr;
  std::unique_ptr<OdbcDatabaseMetadata> metadata;

  // Second generation.
  Connection2* connection2 = nullptr;
  PreparedStatement* statement = nullptr;

  // Arguments.
  std::unique_ptr<KORVEX::Zel::DataService> service;
  std::vector<Parameter> queryParameters;
  std::vector<Parameter> rowParameters;
  const std::string query = kQuery;
  const std::string insert = kInsert;
  const std::string table = kTable;
  const std::string schema = "schema";
  const std::vector<unsigned int> types;  // of the columns of the query, first generation
  std::vector<unsigned int> cellTypes;    // the same for the second
  const RowDescriptor descriptor;
  const Strings newNames = {"id", "name"};
  const std::vector<unsigned int> newTypes = {DataTypes::kInteger, DataTypes::kString};
  const std::vector<bool> newKeys = {true, false};
  std::vector<DataTypes::DataValue> cells;
  std::vector<DataTypes::DataValue> parameterCells;
  std::vector<unsigned int> parameterTypes = {DataTypes::kInteger};
  std::vector<int> bindings = {0};
  PackedRow packedRow;

  std::uint64_t logLines = 0;     // since the world was made
  bool diagnosticLogged = false;  // in any of them
  std::uint64_t keysLogged = 0;   // bit NN for a key 8010NN
  KORVEX::Zel::LogSink previousSink;

  // Results.
  Strings names;
  std::string name;
  std::vector<int> status;
};

// Takes back every script and lays out the tables that the operations read.
void script(fake::FakeOdbc& odbc);

}  // namespace verify
