#pragma once

#include <sql.h>

namespace KORVEX::Zel::DB {

class DBError;

namespace ODBC {

class Connection2Odbc;
struct TransferPolicy;

// The ODBC environment of the second generation. Operations return 0 or -1.
class Env2Odbc {
 public:
  Env2Odbc() = default;
  virtual ~Env2Odbc();  // frees the environment handle
  Env2Odbc(const Env2Odbc&) = delete;
  Env2Odbc& operator=(const Env2Odbc&) = delete;

  // Allocates the environment and declares ODBC 3. A failure fills `error`, which must be given,
  // and leaves its error source alone; a handle that was allocated stays until the destructor.
  int initialize(DBError* error);

  // A new connection, not connected yet, that belongs to the caller until releaseConnection2; null
  // when its handle could not be made. Sets the process's TZ to UTC for good. Without a policy it
  // transfers plainly.
  Connection2Odbc* createConnection2(const char* dsn, const char* user, DBError* error);
  Connection2Odbc* createConnection2(const char* dsn, const char* user,
                                     const TransferPolicy& policy, DBError* error);

  // Disconnects and destroys a connection; null is accepted. Always 0.
  int releaseConnection2(Connection2Odbc* connection, DBError* error);

  SQLHENV getHandle() const { return env_; }

 private:
  SQLHENV env_ = SQL_NULL_HENV;
};

}  // namespace ODBC
}  // namespace KORVEX::Zel::DB
