#pragma once

#include "host/export.h"

namespace KORVEX::Zel::DB {

// What went wrong in a second-generation operation. Made and released by the driver; it has no
// virtual destructor. Texts belong to the record and last until it is written to again.
class ZEL_EXPORT DBError {
 public:
  // In slot order.
  virtual const char* getService() const = 0;
  virtual int getNativeErrorCode() const = 0;
  virtual const char* getErrorString() const = 0;
  virtual bool isConnectionError() const = 0;
  virtual bool isSuccessWithInfo() const = 0;
  virtual const char* toString() const = 0;
  virtual const char* getErrorSource() const = 0;

 protected:
  DBError() = default;
  DBError(const DBError&) = default;
  DBError& operator=(const DBError&) = default;
  ~DBError() = default;
};

}  // namespace KORVEX::Zel::DB
