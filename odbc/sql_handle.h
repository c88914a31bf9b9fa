#pragma once

#include <sql.h>
#include <sqlext.h>

#include <utility>

namespace KORVEX::Zel::DB::ODBC {

// The one owner of an ODBC handle of a kind (SQL_HANDLE_ENV, _DBC or _STMT); frees it when it goes.
template <SQLSMALLINT Kind>
class SqlHandle {
 public:
  SqlHandle() = default;
  SqlHandle(SqlHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  SqlHandle& operator=(SqlHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~SqlHandle() { reset(); }

  SQLHANDLE get() const { return handle_; }

  // Frees what it holds and allocates a new handle under `parent`; holds nothing on failure.
  SQLRETURN allocate(SQLHANDLE parent) {
    reset();
    SQLHANDLE handle = nullptr;
    const SQLRETURN rc = SQLAllocHandle(Kind, parent, &handle);
    if (SQL_SUCCEEDED(rc)) handle_ = handle;
    return rc;
  }

  // Frees the handle, if any. A refusal is ignored: there is nobody left to tell.
  void reset() {
    if (handle_ != nullptr) SQLFreeHandle(Kind, std::exchange(handle_, nullptr));
  }

 private:
  SQLHANDLE handle_ = nullptr;
};

}  // namespace KORVEX::Zel::DB::ODBC
