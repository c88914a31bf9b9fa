#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstdint>
#include <map>
#include <sstream>
#include <string>

#include "odbc/byte_store.h"
#include "odbc/odbc.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcEnv;

// What all objects of a handle tree share: their place in the tree, and the translation of ODBC
// return codes into statuses and into the root's diagnostics record.
//
// An object registers with its parent when it is made and unregisters when it goes. A parent that
// goes deletes its children first, so that statement handles are freed before their connection's
// and connection handles before the environment's. To that end each class that overrides Finalize
// calls DeleteChildren and its Finalize in its destructor.
class OdbcImpl : public virtual Odbc {
 public:
  // The kinds of ODBC handles, by ODBC's own numbers.
  enum e_Handle : SQLSMALLINT {
    e_None = 0,  // of objects without a handle of their own
    e_Env = SQL_HANDLE_ENV,
    e_Dbc = SQL_HANDLE_DBC,
    e_Stmt = SQL_HANDLE_STMT,
  };

  // What a child tells its parent.
  enum e_Notice { e_Created = 0, e_Deleted = 1 };

  // Registers with the parent and shares its root's record. Null makes a root, which holds the
  // record itself.
  explicit OdbcImpl(OdbcImpl* parent);
  ~OdbcImpl() override;

  // These look at the root's record, whichever object of the tree is asked.
  bool HasInfo() override { return root_->hasInfo_; }
  void HasInfo(bool hasInfo) { root_->hasInfo_ = hasInfo; }
  void GetInfo(std::string& state, long& nativeError, std::string& message) override;
  void DumpInfo(const char* prefix) override;
  void DumpInfo(std::ostringstream& out) override;

  // In slot order, behind those of Odbc.
  // Allocates what the object stands for; called once, right after construction. After a failure
  // the object is only good for being deleted.
  virtual e_Status Initialize() = 0;
  // Frees it, whatever the driver says to that. Always e_Ok; calling it again does nothing.
  virtual e_Status Finalize() = 0;
  // The handle of a kind that the object holds or works under, or a null handle.
  virtual SQLHANDLE GetHandle(e_Handle kind) = 0;
  // The object's own handle and its kind.
  virtual SQLHANDLE GetHandle() = 0;
  virtual e_Handle GetHandleType() = 0;

  // Keeps the book of children. A null child is ignored, and so is the farewell of a child that
  // DeleteChildren is deleting.
  void Notify(e_Notice notice, OdbcImpl* child);
  // Deletes every child that is still alive, in the order of their addresses, and so whatever was
  // made under them. Pointers to children that anybody kept dangle afterwards.
  void DeleteChildren();

  // The status of an ODBC call. Forgets the previous record; a failure or a warning leaves the
  // driver's first record of `source`, the object whose handle the call used (null: none).
  e_Status GetStatus(OdbcImpl* source, SQLRETURN rc) {
    root_->hasInfo_ = false;
    return rc == SQL_SUCCESS ? e_Ok : statusOf(source, rc);
  }
  e_Status GetStatus(SQLRETURN rc) { return GetStatus(nullptr, rc); }
  // Reads the first record of `source`'s handle into the root (SQLGetDiagRec, twice for a message
  // of more than 512 bytes). A handle without a record leaves one that says so; when SQLGetDiagRec
  // itself fails there is none. Only the first record of a handle is ever read.
  void SetDiagnosticInfo(OdbcImpl* source);

  // What Odbc::CreateEnv forwards to.
  static OdbcEnv* CreateEnv();

 protected:
  OdbcImpl* parent() const { return parent_; }

  // Initialises a child that was just made. When that fails prints "<what> Failed to initialize
  // <kind>." and the record on standard output, deletes the child and returns false. Without a
  // record `sayWhenNoInfo` decides whether a line is printed.
  static bool initializeOrDelete(OdbcImpl* child, const char* failureText, bool sayWhenNoInfo);

 private:
  e_Status statusOf(OdbcImpl* source, SQLRETURN rc);

  OdbcImpl* root_;  // holds the record of the tree
  OdbcImpl* parent_;
  // By address. The value is the already-being-deleted mark: an entry marked true is a child that
  // DeleteChildren has deleted.
  std::map<OdbcImpl*, bool> children_;
  // The record; used in the root only.
  ByteStore state_;
  ByteStore message_;
  std::int32_t nativeError_ = 0;
  bool hasInfo_ = false;
};

}  // namespace KORVEX::Zel::DB::ODBC
