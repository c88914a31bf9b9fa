#pragma once

#include <sql.h>

#include <functional>
#include <map>
#include <set>
#include <string>

#include "host/connection2.h"

namespace KORVEX::Zel::DB::ODBC {

class Env2Odbc;
class PreparedStatement2Odbc;
struct TransferPolicy;

// Orders objects by their address as a `Base`. A base pointer that may be anybody's can be looked
// up without being taken for an object.
template <typename Object, typename Base = Object>
struct compare_ptr {
  using is_transparent = void;
  bool operator()(const Base* a, const Base* b) const { return std::less<>()(a, b); }
};

// A second-generation connection: manual commit, read committed. It owns the statements that it
// made. Operations return 0 or -1 and fill the error record. Nothing throws. A connection and its
// statements are used by one thread at a time.
class Connection2Odbc final : public Connection2 {
 public:
  // `env` must outlive the connection; `policy` is its statements'. Sets the process's TZ to UTC,
  // for good.
  Connection2Odbc(Env2Odbc* env, const char* dsn, const char* user, const TransferPolicy& policy);
  // Disconnects by force, and frees the connection handle.
  ~Connection2Odbc();

  // In slot order.
  const char* getImplementationName() const override;  // "generic odbc v2.0.0"
  const char* getService() const override;
  // Connects with the property "Password"; does nothing when connected.
  int connect(DBError* error) override;
  // By force: rolls back first, and the connection counts as disconnected whatever the driver says.
  // Otherwise a refusal by the driver leaves connection and statements as they were. All statements
  // are destroyed by a disconnect.
  int disconnect(bool force, DBError* error) override;
  // Not supported: "not implemented" and null.
  PreparedStatement* createPreparedStatement(const char* sql, const RecordType* record, bool unused,
                                             DBError* error) override;
  // A prepared statement whose result columns are read as the given types. It belongs to the
  // connection. `error` must be given.
  PreparedStatement* createPreparedStatement(const char* sql, int count, const unsigned int* types,
                                             bool unused, DBError* error) override;
  // The same with the types that the driver describes.
  PreparedStatement* createPreparedStatement(const char* sql, DBError* error) override;
  // Closes and destroys a statement of this connection.
  int releaseStatement(PreparedStatement* statement, DBError* error) override;
  // `error` must be given to both.
  int commit(DBError* error) override;
  int rollback(DBError* error) override;

  // Allocates the handle, with manual commit and read committed. Once it exists, does nothing.
  int initialize(DBError* error);
  void setConnectionProperty(const char* key, const char* value);
  void clearProperties();
  void setService(const std::string& name) { service_ = name; }
  SQLHDBC getHandle() const { return dbc_; }

 private:
  // Runs an ODBC call on the handle; a return code other than 0 fills the record.
  int check(SQLRETURN rc, DBError* error);
  int endTransaction(SQLSMALLINT completion, DBError* error);
  int disconnectFirst(bool force, DBError* error);
  int closeStatementsFirst(bool force, DBError* error);
  void destroyStatements(DBError* error);

  SQLHDBC dbc_ = SQL_NULL_HDBC;
  std::string service_;
  Env2Odbc* env_;
  std::string dsn_;
  std::string user_;
  const TransferPolicy& policy_;
  bool connected_ = false;
  std::map<std::string, std::string> properties_;
  std::set<PreparedStatement2Odbc*, compare_ptr<PreparedStatement2Odbc, PreparedStatement>>
      statements_;
};

}  // namespace KORVEX::Zel::DB::ODBC
