// What the server counts on without including a header of this library: the slots of the virtual
// tables, the names that the plug-in exports, and the layout of the shared records.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/host.h"
#include "standin/property_data_service.h"

namespace KORVEX::Zel::DB {
namespace {

// The slot of a virtual operation: a pointer to it holds its offset in the virtual table plus 1.
template <typename Operation>
std::ptrdiff_t slotOf(Operation operation) {
  std::ptrdiff_t word = 0;
  std::memcpy(&word, &operation, sizeof word);
  return (word - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

// One overload of an operation, by its argument types.
template <typename... Arguments, typename Class, typename Result>
auto over(Result (Class::*operation)(Arguments...)) {
  return operation;
}

constexpr std::ptrdiff_t kNoDestructor = 0;
constexpr std::ptrdiff_t kBehindDestructors = 2;

// The operations have the slots from `first` on, in the order in which they are named.
template <typename... Operation>
void expectOrder(const char* name, std::ptrdiff_t first, Operation... operations) {
  std::ptrdiff_t expected = first;
  for (const std::ptrdiff_t slot : {slotOf(operations)...}) {
    EXPECT_EQ(slot, expected) << name << ", operation " << expected - first;
    ++expected;
  }
}

using Params = const std::vector<Parameter>&;
using Text = const std::string&;
using Strings = std::vector<std::string>;
using Names = const Strings&;
using Types = const std::vector<unsigned int>&;
using Keys = const std::vector<bool>&;

TEST(HostContractTest, ConnectionAndDriverSlots) {
  expectOrder("Driver", kBehindDestructors, &Driver::createConnection, &Driver::releaseConnection,
              &Driver::createError, &Driver::releaseError, &Driver::createConnection2,
              &Driver::releaseConnection2, &Driver::initialize);
  using C = Connection;
  expectOrder("Connection", kBehindDestructors, &C::open, &C::close, &C::commit, &C::rollback,
              &C::executeQuery, &C::executeUpdate, &C::nextResultSet, &C::getResultSet,
              &C::createBatch, &C::addToBatch, &C::clearBatch, &C::executeBatch, &C::getSchemaNames,
              over<Strings&>(&C::getTableNames), over<Text, int&>(&C::getTableNumColumns),
              over<Text, int, bool&>(&C::getTableColumnPrimaryKey),
              over<Text, int, std::string&, unsigned&>(&C::getTableColumnInfo),
              over<Text, int, const Column*&>(&C::getTableColumnInfo),
              over<Text, Names, Types, Keys, bool, bool>(&C::createTable),
              over<Text, Strings&>(&C::getTableNames),
              over<Text, Text, int&>(&C::getTableNumColumns),
              over<Text, Text, int, bool&>(&C::getTableColumnPrimaryKey),
              over<Text, Text, int, std::string&, unsigned&>(&C::getTableColumnInfo),
              over<Text, Text, int, const Column*&>(&C::getTableColumnInfo),
              over<Text, Text, Names, Types, Keys, bool, bool>(&C::createTable),
              &C::getDriverProperty, &C::getLastErrors, &C::getHandle);
}

TEST(HostContractTest, StatementAndResultSetSlots) {
  using S = Statement;
  expectOrder("Statement", kBehindDestructors, &S::close,
              over<Params, int, ResultSet*&>(&S::executeQuery),
              over<Text, Params, int, ResultSet*&>(&S::executeQuery),
              over<Params, int&>(&S::executeUpdate), over<Text, Params, int&>(&S::executeUpdate),
              &S::nextResultSet, &S::getResultSet, &S::createBatch, &S::addToBatch, &S::clearBatch,
              &S::executeBatch, &S::bindParameters, &S::bindParameterInt16, &S::bindParameterInt32,
              &S::bindParameterInt64, &S::bindParameterDouble, &S::bindParameterDate,
              &S::bindParameterString, &S::bindParameterMoney, &S::bindParameterTimestamp,
              &S::bindParameterBoolean, &S::bindParameterInterval, &S::bindParameterBigDateTime,
              &S::bindParameterTime, &S::bindParameterFixedDecimal, &S::bindParameterBinary);
  using R = ResultSet;
  expectOrder("ResultSet", kBehindDestructors, &R::close, &R::next, &R::getData, &R::getNumColumns,
              &R::getColumnInfo, &R::getColumnName, &R::getColumnType, &R::getColumn,
              &R::getColumnInt16, &R::getColumnInt32, &R::getColumnInt64, &R::getColumnDouble,
              &R::getColumnDate, &R::getColumnString, &R::getColumnMoney, &R::getColumnTimestamp,
              &R::getColumnBoolean, &R::getColumnInterval, &R::getColumnBigDateTime,
              &R::getColumnTime, &R::getColumnFixedDecimal, &R::getColumnBinary);
}

TEST(HostContractTest, MetadataAndColumnSlots) {
  using M = DatabaseMetadata;
  expectOrder("DatabaseMetadata", kBehindDestructors, &M::getSchemaNames, &M::getTableNames,
              &M::getTableNumColumns, &M::getTableColumnName, &M::getTableColumnType,
              &M::getTableColumnPrimaryKey,
              over<Text, int, std::string&, unsigned&>(&M::getTableColumnInfo),
              over<Text, int, const Column*&>(&M::getTableColumnInfo), &M::getLastErrors,
              &M::getTableAllColumnInfo);
  expectOrder("Column", kBehindDestructors, &Column::getZelDataType, &Column::getSqlTypeString);
}

TEST(HostContractTest, SecondGenerationHasNoDestructorSlots) {
  using C = Connection2;
  using Sql = const char*;
  expectOrder("Connection2", kNoDestructor, &C::getImplementationName, &C::getService, &C::connect,
              &C::disconnect,
              over<Sql, const RecordType*, bool, DBError*>(&C::createPreparedStatement),
              over<Sql, int, const unsigned*, bool, DBError*>(&C::createPreparedStatement),
              over<Sql, DBError*>(&C::createPreparedStatement), &C::releaseStatement, &C::commit,
              &C::rollback);
  using P = PreparedStatement;
  using Cells = std::vector<DataTypes::DataValue>&;
  expectOrder("PreparedStatement", kNoDestructor, &P::getNumberParameters,
              &P::getEffectiveNumberColumns, &P::getColumnName, &P::getEffectiveDataType,
              &P::setBindings, over<const RowInternal2*, DBError*>(&P::execute),
              over<const RowInternal2**, DBError*>(&P::execute),
              over<Cells, std::vector<unsigned>&, DBError*>(&P::execute),
              over<DBError*>(&P::execute), over<Cells, DBError*>(&P::nextRow),
              over<DBError*>(&P::nextRow), &P::hasMoreData, &P::nextResultSet, &P::nextCount);
  using E = DBError;
  expectOrder("DBError", kNoDestructor, &E::getService, &E::getNativeErrorCode, &E::getErrorString,
              &E::isConnectionError, &E::isSuccessWithInfo, &E::toString, &E::getErrorSource);
}

TEST(HostContractTest, PluginExportsWhatItMayAndNothingElse) {
  const std::set<std::string> expected = {
      "FactoryDriver",
      "DataTypes::TimestampToString",
      "DataTypes::DateToString",
      "DataTypes::BigDateTimeToString",
      "DataTypes::TimestampFromString",
      "DataTypes::DateFromString",
      "DataTypes::TimeFromString",
      "DataTypes::BigDateTimeFromString",
      "DataTypes::longdivmod128",
      "DataTypes::longdivmod",
      "DataTypes::mul1",
      "DataTypes::divmod1",
  };
  const std::string command = "nm -DC --defined-only '" ZEL_PLUGIN_FILE "' | sed 's/^[^ ]* . //'";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  ASSERT_NE(pipe, nullptr);
  std::set<std::string> exported;
  char line[1024];
  while (std::fgets(line, sizeof line, pipe.get()) != nullptr) {
    const std::string name(line);
    exported.insert(name.substr(0, name.find_first_of("(\n")));
  }
  EXPECT_EQ(exported, expected);
}

// Loads the plug-in, makes a second-generation connection, and unloads it again. Returns what is
// wrong, or nothing. Runs in a child: it changes the environment of its process.
const char* loadConnectUnload() {
  void* plugIn = dlopen(ZEL_PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
  if (plugIn == nullptr) return dlerror();
  using Factory = Driver* (*)(const char*);
  const auto factory = reinterpret_cast<Factory>(dlsym(plugIn, "FactoryDriver"));
  if (factory == nullptr) return "no FactoryDriver";
  Driver* driver = factory("child");
  DBError* error = driver->createError("");
  Connection2* connection =
      driver->createConnection2(PropertyDataService("s", {{"DSN", "d"}, {"User", "u"}}), error);
  if (connection == nullptr) return "no connection";
  driver->releaseConnection2(connection, error);
  driver->releaseError(error);
  delete driver;
  dlclose(plugIn);
  if (dlopen(ZEL_PLUGIN_FILE, RTLD_NOLOAD | RTLD_NOW) != nullptr) return "still loaded";
  const char* zone = std::getenv("TZ");
  if (zone == nullptr || std::strcmp(zone, "UTC") != 0) return "TZ is not UTC";
  return timezone == 0 ? nullptr : "local time is not UTC";
}

TEST(HostContractTest, TheProcessZoneOutlivesThePlugin) {
  const pid_t child = fork();
  if (child == 0) {
    setenv("TZ", "UTC-5", 1);
    tzset();
    const char* wrong = loadConnectUnload();
    if (wrong != nullptr) std::fprintf(stderr, "%s\n", wrong);
    _exit(wrong == nullptr ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace KORVEX::Zel::DB
