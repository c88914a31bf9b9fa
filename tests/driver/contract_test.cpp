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
template <typename Class, typename Result, typename... Arguments>
std::ptrdiff_t slot(Result (Class::*operation)(Arguments...)) {
  return slotOf(operation);
}

template <typename Class, typename Result, typename... Arguments>
std::ptrdiff_t constSlot(Result (Class::*operation)(Arguments...) const) {
  return slotOf(operation);
}

using Slots = std::vector<std::ptrdiff_t>;
using Params = const std::vector<Parameter>&;
using Text = const std::string&;
using Names = const std::vector<std::string>&;
using Types = const std::vector<unsigned int>&;
using Keys = const std::vector<bool>&;
using Value = const DataTypes::DataValue&;
using C = Connection;
using R = ResultCode;

// 0, 1, 2 ... from `first`: the operations were named in slot order.
Slots inOrder(std::ptrdiff_t first, std::size_t count) {
  Slots slots(count);
  for (std::size_t i = 0; i < count; ++i) slots[i] = first + static_cast<std::ptrdiff_t>(i);
  return slots;
}

constexpr std::ptrdiff_t kBehindDestructors = 2;

void expectOrder(const char* name, const Slots& slots, std::ptrdiff_t first) {
  EXPECT_EQ(slots, inOrder(first, slots.size())) << name;
}

TEST(HostContractTest, ConnectionAndDriverSlots) {
  expectOrder(
      "Driver",
      {slot(&Driver::createConnection), slot(&Driver::releaseConnection),
       slot(&Driver::createError), slot(&Driver::releaseError), slot(&Driver::createConnection2),
       slot(&Driver::releaseConnection2), slot(&Driver::initialize)},
      kBehindDestructors);
  expectOrder("Connection",
              {slot(&C::open),
               slot(&C::close),
               slot(&C::commit),
               slot(&C::rollback),
               slot(&C::executeQuery),
               slot(&C::executeUpdate),
               slot(&C::nextResultSet),
               slot(&C::getResultSet),
               slot(&C::createBatch),
               slot(&C::addToBatch),
               slot(&C::clearBatch),
               slot(&C::executeBatch),
               slot(&C::getSchemaNames),
               slot<C, R, std::vector<std::string>&>(&C::getTableNames),
               slot<C, R, Text, int&>(&C::getTableNumColumns),
               slot<C, R, Text, int, bool&>(&C::getTableColumnPrimaryKey),
               slot<C, R, Text, int, std::string&, unsigned&>(&C::getTableColumnInfo),
               slot<C, R, Text, int, const Column*&>(&C::getTableColumnInfo),
               slot<C, R, Text, Names, Types, Keys, bool, bool>(&C::createTable),
               slot<C, R, Text, std::vector<std::string>&>(&C::getTableNames),
               slot<C, R, Text, Text, int&>(&C::getTableNumColumns),
               slot<C, R, Text, Text, int, bool&>(&C::getTableColumnPrimaryKey),
               slot<C, R, Text, Text, int, std::string&, unsigned&>(&C::getTableColumnInfo),
               slot<C, R, Text, Text, int, const Column*&>(&C::getTableColumnInfo),
               slot<C, R, Text, Text, Names, Types, Keys, bool, bool>(&C::createTable),
               slot(&C::getDriverProperty),
               slot(&C::getLastErrors),
               slot(&C::getHandle)},
              kBehindDestructors);
}

TEST(HostContractTest, StatementAndResultSetSlots) {
  using S = Statement;
  expectOrder("Statement",
              {slot(&S::close),
               slot<S, R, Params, int, ResultSet*&>(&S::executeQuery),
               slot<S, R, Text, Params, int, ResultSet*&>(&S::executeQuery),
               slot<S, R, Params, int&>(&S::executeUpdate),
               slot<S, R, Text, Params, int&>(&S::executeUpdate),
               slot(&S::nextResultSet),
               slot(&S::getResultSet),
               slot(&S::createBatch),
               slot(&S::addToBatch),
               slot(&S::clearBatch),
               slot(&S::executeBatch),
               slot(&S::bindParameters),
               slot(&S::bindParameterInt16),
               slot(&S::bindParameterInt32),
               slot(&S::bindParameterInt64),
               slot(&S::bindParameterDouble),
               slot(&S::bindParameterDate),
               slot(&S::bindParameterString),
               slot(&S::bindParameterMoney),
               slot(&S::bindParameterTimestamp),
               slot(&S::bindParameterBoolean),
               slot(&S::bindParameterInterval),
               slot(&S::bindParameterBigDateTime),
               slot(&S::bindParameterTime),
               slot(&S::bindParameterFixedDecimal),
               slot(&S::bindParameterBinary)},
              kBehindDestructors);
  using RS = ResultSet;
  expectOrder("ResultSet",
              {slot(&RS::close),
               slot(&RS::next),
               slot(&RS::getData),
               slot(&RS::getNumColumns),
               slot(&RS::getColumnInfo),
               slot(&RS::getColumnName),
               slot(&RS::getColumnType),
               slot(&RS::getColumn),
               slot(&RS::getColumnInt16),
               slot(&RS::getColumnInt32),
               slot(&RS::getColumnInt64),
               slot(&RS::getColumnDouble),
               slot(&RS::getColumnDate),
               slot(&RS::getColumnString),
               slot(&RS::getColumnMoney),
               slot(&RS::getColumnTimestamp),
               slot(&RS::getColumnBoolean),
               slot(&RS::getColumnInterval),
               slot(&RS::getColumnBigDateTime),
               slot(&RS::getColumnTime),
               slot(&RS::getColumnFixedDecimal),
               slot(&RS::getColumnBinary)},
              kBehindDestructors);
}

TEST(HostContractTest, MetadataAndColumnSlots) {
  using M = DatabaseMetadata;
  expectOrder("DatabaseMetadata",
              {slot(&M::getSchemaNames), slot(&M::getTableNames), slot(&M::getTableNumColumns),
               slot(&M::getTableColumnName), slot(&M::getTableColumnType),
               slot(&M::getTableColumnPrimaryKey),
               slot<M, R, Text, int, std::string&, unsigned&>(&M::getTableColumnInfo),
               slot<M, R, Text, int, const Column*&>(&M::getTableColumnInfo),
               slot(&M::getLastErrors), slot(&M::getTableAllColumnInfo)},
              kBehindDestructors);
  expectOrder("Column", {constSlot(&Column::getZelDataType), constSlot(&Column::getSqlTypeString)},
              kBehindDestructors);
}

TEST(HostContractTest, SecondGenerationHasNoDestructorSlots) {
  using C2 = Connection2;
  using Sql = const char*;
  expectOrder("Connection2",
              {constSlot(&C2::getImplementationName), constSlot(&C2::getService),
               slot(&C2::connect), slot(&C2::disconnect),
               slot<C2, PreparedStatement*, Sql, const RecordType*, bool, DBError*>(
                   &C2::createPreparedStatement),
               slot<C2, PreparedStatement*, Sql, int, const unsigned*, bool, DBError*>(
                   &C2::createPreparedStatement),
               slot<C2, PreparedStatement*, Sql, DBError*>(&C2::createPreparedStatement),
               slot(&C2::releaseStatement), slot(&C2::commit), slot(&C2::rollback)},
              0);
  using P = PreparedStatement;
  using Cells = std::vector<DataTypes::DataValue>&;
  expectOrder("PreparedStatement",
              {constSlot(&P::getNumberParameters), constSlot(&P::getEffectiveNumberColumns),
               constSlot(&P::getColumnName), constSlot(&P::getEffectiveDataType),
               slot(&P::setBindings), slot<P, int, const RowInternal2*, DBError*>(&P::execute),
               slot<P, int, const RowInternal2**, DBError*>(&P::execute),
               slot<P, int, Cells, std::vector<unsigned>&, DBError*>(&P::execute),
               slot<P, int, DBError*>(&P::execute), slot<P, int, Cells, DBError*>(&P::nextRow),
               slot<P, const RowInternal2*, DBError*>(&P::nextRow), slot(&P::hasMoreData),
               slot(&P::nextResultSet), slot(&P::nextCount)},
              0);
  expectOrder("DBError",
              {constSlot(&DBError::getService), constSlot(&DBError::getNativeErrorCode),
               constSlot(&DBError::getErrorString), constSlot(&DBError::isConnectionError),
               constSlot(&DBError::isSuccessWithInfo), constSlot(&DBError::toString),
               constSlot(&DBError::getErrorSource)},
              0);
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
