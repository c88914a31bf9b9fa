#pragma once

#include "host/export.h"

namespace KORVEX::Zel::DB {

class DBError;
class PreparedStatement;
class RecordType;

// A second-generation connection, made and released by a driver; it has no virtual destructor.
// Operations return 0 or -1, and fill the error record when one is given.
class ZEL_EXPORT Connection2 {
 public:
  // In slot order.
  virtual const char* getImplementationName() const = 0;
  virtual const char* getService() const = 0;
  virtual int connect(DBError* error) = 0;
  virtual int disconnect(bool force, DBError* error) = 0;
  virtual PreparedStatement* createPreparedStatement(const char* sql, const RecordType* record,
                                                     bool unused, DBError* error) = 0;
  virtual PreparedStatement* createPreparedStatement(const char* sql, int count,
                                                     const unsigned int* types, bool unused,
                                                     DBError* error) = 0;
  virtual PreparedStatement* createPreparedStatement(const char* sql, DBError* error) = 0;
  virtual int releaseStatement(PreparedStatement* statement, DBError* error) = 0;
  virtual int commit(DBError* error) = 0;
  virtual int rollback(DBError* error) = 0;

 protected:
  Connection2() = default;
  Connection2(const Connection2&) = delete;
  Connection2& operator=(const Connection2&) = delete;
  ~Connection2() = default;
};

}  // namespace KORVEX::Zel::DB
