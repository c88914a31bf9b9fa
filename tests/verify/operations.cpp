#include "tests/verify/operations.h"

#include "driver/odbc_statement.h"
#include "driver2/boundary.h"

namespace verify {
namespace {

Outcome of(ResultCode result) {
  if (result == kSuccess) return Outcome::kDone;
  return result == kFailure ? Outcome::kRefused : Outcome::kImpossible;
}

Outcome of2(int result) {
  if (result == 0) return Outcome::kDone;
  return result == -1 ? Outcome::kRefused : Outcome::kImpossible;
}

Outcome made(const void* object) {
  return object != nullptr ? Outcome::kDone : Outcome::kRefused;
}

// States, each built on the one before.

void nothing(World&) {}

void created(World& w) {
  w.connection = w.driver->createConnection(*w.service);
}

void opened(World& w) {
  created(w);
  if (w.connection != nullptr) w.connection->open();
}

void queried(World& w) {
  opened(w);
  if (w.connection == nullptr) return;
  w.connection->executeQuery(w.query, w.queryParameters, 0, w.rows);
}

void onFirstRow(World& w) {
  queried(w);
  bool more = false;
  if (w.rows != nullptr) w.rows->next(more);
}

void batched(World& w) {
  opened(w);
  if (w.connection != nullptr) w.connection->createBatch(w.insert);
}

void batchFilled(World& w) {
  batched(w);
  if (w.connection == nullptr) return;
  for (int row = 0; row < 3; ++row) w.connection->addToBatch(w.rowParameters);
}

void makeMetadata(World& w) {
  w.metadata = std::make_unique<OdbcDatabaseMetadata>(static_cast<OdbcConnection&>(*w.connection));
}

void withMetadata(World& w) {
  opened(w);
  if (w.connection != nullptr) makeMetadata(w);
}

void created2(World& w) {
  w.connection2 = w.driver->createConnection2(*w.service, w.error);
}

void connected2(World& w) {
  created2(w);
  if (w.connection2 != nullptr) w.connection2->connect(w.error);
}

Outcome prepareStatement(World& w) {
  w.statement = w.connection2->createPreparedStatement(
      kQuery2, static_cast<int>(w.cellTypes.size()), w.cellTypes.data(), false, w.error);
  return made(w.statement);
}

void prepared2(World& w) {
  connected2(w);
  if (w.connection2 != nullptr) prepareStatement(w);
}

void bound2(World& w) {
  prepared2(w);
  if (w.statement == nullptr) return;
  w.statement->setBindings(w.bindings, w.parameterTypes.data(), w.error);
}

void packedExecuted2(World& w) {
  bound2(w);
  if (w.statement != nullptr) w.statement->execute(w.packedRow.get(), w.error);
}

void executed2(World& w) {
  prepared2(w);
  if (w.statement == nullptr) return;
  w.statement->execute(w.parameterCells, w.parameterTypes, w.error);
}

void onResult2(World& w) {
  executed2(w);
  bool more = false;
  if (w.statement != nullptr) w.statement->nextResultSet(more, w.error);
}

void onFirstRow2(World& w) {
  onResult2(w);
  bool more = false;
  if (w.statement != nullptr) w.statement->hasMoreData(more, w.error);
}

bool always(const World&) {
  return true;
}
bool hasConnection(const World& w) {
  return w.connection != nullptr;
}
bool hasRows(const World& w) {
  return w.rows != nullptr;
}
bool hasMetadata(const World& w) {
  return w.metadata != nullptr;
}
bool hasConnection2(const World& w) {
  return w.connection2 != nullptr;
}
bool hasStatement(const World& w) {
  return w.statement != nullptr;
}

constexpr Generation kG1 = Generation::kFirst;
constexpr Generation kG2 = Generation::kSecond;

constexpr Operation kOperations[] = {
    {"createConnection", kG1, nothing,
     [](World& w) {
       if (w.connection != nullptr) return Outcome::kDone;
       w.connection = w.driver->createConnection(*w.service);
       return made(w.connection);
     },
     always},
    {"open", kG1, created,
     [](World& w) {
       w.newStatement();
       return of(w.connection->open());
     },
     hasConnection},
    {"open again", kG1, queried,
     [](World& w) {
       w.newStatement();
       return of(w.connection->open());
     },
     hasConnection},
    {"close", kG1, queried,
     [](World& w) {
       w.newStatement();
       return of(w.connection->close());
     },
     hasConnection},
    {"close with a batch", kG1, batchFilled,
     [](World& w) {
       w.newStatement();
       return of(w.connection->close());
     },
     hasConnection},
    {"releaseConnection", kG1, queried,
     [](World& w) {
       w.newStatement();
       w.metadata.reset();
       Connection* const connection = std::exchange(w.connection, nullptr);
       return of(w.driver->releaseConnection(connection));
     },
     hasConnection},
    {"commit", kG1, opened, [](World& w) { return of(w.connection->commit()); }, hasConnection},
    {"rollback", kG1, opened, [](World& w) { return of(w.connection->rollback()); }, hasConnection},
    {"executeQuery", kG1, opened,
     [](World& w) {
       w.newStatement();
       return of(w.connection->executeQuery(w.query, w.queryParameters, 0, w.rows));
     },
     hasConnection},
    {"executeQuery again", kG1, onFirstRow,
     [](World& w) {
       w.newStatement();
       return of(w.connection->executeQuery(w.query, w.queryParameters, 0, w.rows));
     },
     hasConnection},
    {"executeUpdate", kG1, opened,
     [](World& w) {
       w.newStatement();
       int count = 0;
       return of(w.connection->executeUpdate(w.insert, w.rowParameters, count));
     },
     hasConnection},
    {"nextResultSet", kG1, onFirstRow,
     [](World& w) {
       bool more = false;
       return of(w.connection->nextResultSet(more));
     },
     hasConnection},
    {"getResultSet", kG1, queried, [](World& w) { return of(w.connection->getResultSet(w.rows)); },
     hasConnection},
    {"createBatch", kG1, opened,
     [](World& w) {
       w.newStatement();
       return of(w.connection->createBatch(w.insert));
     },
     hasConnection},
    {"addToBatch", kG1, batched,
     [](World& w) { return of(w.connection->addToBatch(w.rowParameters)); }, hasConnection},
    {"clearBatch", kG1, batchFilled, [](World& w) { return of(w.connection->clearBatch()); },
     hasConnection},
    {"executeBatch", kG1, batchFilled,
     [](World& w) { return of(w.connection->executeBatch(w.status)); }, hasConnection},
    {"getSchemaNames", kG1, opened,
     [](World& w) { return of(w.connection->getSchemaNames(w.names)); }, hasConnection},
    {"getTableNames", kG1, opened,
     [](World& w) { return of(w.connection->getTableNames(w.names)); }, hasConnection},
    {"getTableNames of a schema", kG1, opened,
     [](World& w) { return of(w.connection->getTableNames(w.schema, w.names)); }, hasConnection},
    {"getTableNumColumns", kG1, opened,
     [](World& w) {
       int count = 0;
       return of(w.connection->getTableNumColumns(w.table, count));
     },
     hasConnection},
    {"getTableColumnPrimaryKey", kG1, opened,
     [](World& w) {
       bool key = false;
       return of(w.connection->getTableColumnPrimaryKey(w.schema, w.table, 0, key));
     },
     hasConnection},
    {"getTableColumnInfo", kG1, opened,
     [](World& w) {
       unsigned int type = 0;
       return of(w.connection->getTableColumnInfo(w.table, 1, w.name, type));
     },
     hasConnection},
    {"getTableColumnInfo as a column", kG1, opened,
     [](World& w) {
       const Column* column = nullptr;
       return of(w.connection->getTableColumnInfo(w.schema, w.table, 1, column));
     },
     hasConnection},
    {"createTable", kG1, opened,
     [](World& w) {
       w.newStatement();
       return of(
           w.connection->createTable(w.table, w.newNames, w.newTypes, w.newKeys, true, false));
     },
     hasConnection},
    {"createTable in a schema", kG1, opened,
     [](World& w) {
       w.newStatement();
       return of(w.connection->createTable(w.schema, w.table, w.newNames, w.newTypes, w.newKeys,
                                           false, false));
     },
     hasConnection},
    {"next", kG1, queried,
     [](World& w) {
       bool more = false;
       return of(w.rows->next(more));
     },
     hasRows},
    {"getData", kG1, onFirstRow,
     [](World& w) {
       Row* row = nullptr;
       const ResultCode result = w.rows->getData(w.descriptor, row);
       if ((row != nullptr) != (result == kSuccess)) return Outcome::kImpossible;
       delete row;
       return of(result);
     },
     hasRows},
    {"getNumColumns", kG1, queried,
     [](World& w) {
       int count = 0;
       return of(w.rows->getNumColumns(count));
     },
     hasRows},
    {"getColumnInfo", kG1, queried,
     [](World& w) {
       unsigned int type = 0;
       return of(w.rows->getColumnInfo(2, w.name, type));
     },
     hasRows},
    // Made here as the connection makes it, inside its boundary.
    {"metadata", kG1, opened,
     [](World& w) {
       return guarded(Outcome::kRefused, [&w] {
         makeMetadata(w);
         return Outcome::kDone;
       });
     },
     hasConnection},
    {"metadata getSchemaNames", kG1, withMetadata,
     [](World& w) { return of(w.metadata->getSchemaNames(w.names)); }, hasMetadata},
    {"metadata getTableNames", kG1, withMetadata,
     [](World& w) { return of(w.metadata->getTableNames(w.names)); }, hasMetadata},
    {"metadata getTableColumnName", kG1, withMetadata,
     [](World& w) { return of(w.metadata->getTableColumnName(w.table, 0, w.name)); }, hasMetadata},
    {"metadata getTableColumnType", kG1, withMetadata,
     [](World& w) {
       unsigned int type = 0;
       return of(w.metadata->getTableColumnType(w.table, 1, type));
     },
     hasMetadata},
    {"metadata getTableAllColumnInfo", kG1, withMetadata,
     [](World& w) { return of(w.metadata->getTableAllColumnInfo(w.table, true)); }, hasMetadata},

    {"createConnection2", kG2, nothing,
     [](World& w) {
       if (w.connection2 != nullptr) return Outcome::kDone;
       w.connection2 = w.driver->createConnection2(*w.service, w.error);
       return made(w.connection2);
     },
     always},
    {"connect", kG2, created2, [](World& w) { return of2(w.connection2->connect(w.error)); },
     hasConnection2},
    {"disconnect", kG2, executed2,
     [](World& w) {
       w.statement = nullptr;
       return of2(w.connection2->disconnect(false, w.error));
     },
     hasConnection2},
    {"forced disconnect", kG2, executed2,
     [](World& w) {
       w.statement = nullptr;
       return of2(w.connection2->disconnect(true, w.error));
     },
     hasConnection2},
    {"createPreparedStatement", kG2, connected2, prepareStatement, hasConnection2},
    {"createPreparedStatement without types", kG2, connected2,
     [](World& w) {
       w.statement = w.connection2->createPreparedStatement(kInsert, w.error);
       return made(w.statement);
     },
     hasConnection2},
    {"releaseStatement", kG2, onFirstRow2,
     [](World& w) {
       return of2(w.connection2->releaseStatement(std::exchange(w.statement, nullptr), w.error));
     },
     hasStatement},
    {"commit 2", kG2, connected2, [](World& w) { return of2(w.connection2->commit(w.error)); },
     hasConnection2},
    {"rollback 2", kG2, connected2, [](World& w) { return of2(w.connection2->rollback(w.error)); },
     hasConnection2},
    {"getNumberParameters", kG2, prepared2,
     [](World& w) {
       int count = 0;
       return of2(w.statement->getNumberParameters(count, w.error));
     },
     hasStatement},
    {"getEffectiveNumberColumns", kG2, prepared2,
     [](World& w) {
       int count = 0;
       return of2(w.statement->getEffectiveNumberColumns(count, w.error));
     },
     hasStatement},
    {"getColumnName", kG2, prepared2,
     [](World& w) { return made(w.statement->getColumnName(1, w.error)); }, hasStatement},
    {"getEffectiveDataType", kG2, prepared2,
     [](World& w) {
       unsigned int type = 0;
       return of2(w.statement->getEffectiveDataType(1, type, w.error));
     },
     hasStatement},
    {"setBindings", kG2, prepared2,
     [](World& w) {
       return of2(w.statement->setBindings(w.bindings, w.parameterTypes.data(), w.error));
     },
     hasStatement},
    {"execute a packed row", kG2, bound2,
     [](World& w) { return of2(w.statement->execute(w.packedRow.get(), w.error)); }, hasStatement},
    {"execute a packed row again", kG2, packedExecuted2,
     [](World& w) { return of2(w.statement->execute(w.packedRow.get(), w.error)); }, hasStatement},
    {"execute values", kG2, prepared2,
     [](World& w) {
       return of2(w.statement->execute(w.parameterCells, w.parameterTypes, w.error));
     },
     hasStatement},
    {"execute again", kG2, onFirstRow2,
     [](World& w) {
       return of2(w.statement->execute(w.parameterCells, w.parameterTypes, w.error));
     },
     hasStatement},
    {"nextResultSet 2", kG2, executed2,
     [](World& w) {
       bool more = false;
       return of2(w.statement->nextResultSet(more, w.error));
     },
     hasStatement},
    {"nextResultSet 2 again", kG2, onFirstRow2,
     [](World& w) {
       bool more = false;
       return of2(w.statement->nextResultSet(more, w.error));
     },
     hasStatement},
    {"hasMoreData", kG2, onResult2,
     [](World& w) {
       bool more = false;
       return of2(w.statement->hasMoreData(more, w.error));
     },
     hasStatement},
    {"nextRow into cells", kG2, onFirstRow2,
     [](World& w) {
       w.releaseCells();
       return of2(w.statement->nextRow(w.cells, w.error));
     },
     hasStatement},
    {"nextRow packed", kG2, onFirstRow2,
     [](World& w) {
       const RowInternal2* const row = w.statement->nextRow(w.error);
       const Outcome outcome = made(row);
       std::free(const_cast<RowInternal2*>(row));
       return outcome;
     },
     hasStatement},
    {"releaseConnection2", kG2, onFirstRow2,
     [](World& w) {
       w.statement = nullptr;
       w.driver->releaseConnection2(std::exchange(w.connection2, nullptr), w.error);
       return Outcome::kDone;
     },
     hasConnection2},
};

}  // namespace

void expectNothingLeft(Check& check, World& world, std::string_view operation,
                       const std::string& what) {
  world.close();
  Strings left = world.odbc.liveHandles();
  std::erase(left, "env");
  // Kept: a second-generation connection that could not be made stays allocated.
  if (!left.empty() && operation != "createConnection2") {
    check.found(what + ": left a handle, " + left.front());
  }
}

std::span<const Operation> operations() {
  return kOperations;
}

}  // namespace verify
