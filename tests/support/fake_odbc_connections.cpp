// The ODBC functions of the scripted ODBC: handles, connections and diagnostics.

#include "tests/support/fake_odbc_call.h"

namespace fake {

FakeOdbc& self() {
  static FakeOdbc fake;
  return fake;
}

}  // namespace fake

using fake::Answer;
using fake::attribute;
using fake::Call;
using fake::FakeOdbc;
using fake::give;
using fake::Handle;
using fake::join;
using fake::quoted;
using fake::self;

extern "C" {

FakeOdbc* fakeOdbcInstance() {
  return &self();
}

SQLRETURN SQLAllocHandle(SQLSMALLINT type, SQLHANDLE parent, SQLHANDLE* handle) {
  const std::lock_guard<std::recursive_mutex> lock(self().mutex);
  auto* owner = static_cast<Handle*>(parent);
  if (owner != nullptr &&
      !self().check("SQLAllocHandle", static_cast<SQLSMALLINT>(type - 1), owner)) {
    return SQL_INVALID_HANDLE;
  }
  const Answer answer = self().enter("SQLAllocHandle", owner, join(type));
  if (!SQL_SUCCEEDED(answer.rc)) return answer.rc;
  *handle = self().lies.nullHandles ? nullptr : self().makeHandle(type, owner);
  return answer.rc;
}

SQLRETURN SQLFreeHandle(SQLSMALLINT type, SQLHANDLE handle) {
  Call call("SQLFreeHandle", type, handle, join(type));
  if (call.valid()) self().freeHandle(&*call);  // also when it says it failed
  return call.rc();
}

SQLRETURN SQLSetEnvAttr(SQLHENV env, SQLINTEGER name, SQLPOINTER value, SQLINTEGER length) {
  return Call("SQLSetEnvAttr", SQL_HANDLE_ENV, env, join(name, attribute(value), length)).rc();
}

SQLRETURN SQLSetConnectAttr(SQLHDBC dbc, SQLINTEGER name, SQLPOINTER value, SQLINTEGER length) {
  return Call("SQLSetConnectAttr", SQL_HANDLE_DBC, dbc, join(name, attribute(value), length)).rc();
}

SQLRETURN SQLGetConnectAttr(SQLHDBC dbc, SQLINTEGER name, SQLPOINTER value, SQLINTEGER room,
                            SQLINTEGER* length) {
  Call call("SQLGetConnectAttr", SQL_HANDLE_DBC, dbc, join(name, room));
  if (call.refused()) return call.rc();
  give(static_cast<SQLUINTEGER*>(value), self().linksLost ? SQL_CD_TRUE : SQL_CD_FALSE);
  give(length, sizeof(SQLUINTEGER));
  return call.rc();
}

SQLRETURN SQLConnect(SQLHDBC dbc, SQLCHAR* dsn, SQLSMALLINT dsnLength, SQLCHAR* user,
                     SQLSMALLINT userLength, SQLCHAR* password, SQLSMALLINT passwordLength) {
  Call call(
      "SQLConnect", SQL_HANDLE_DBC, dbc,
      join(quoted(dsn, dsnLength), quoted(user, userLength), quoted(password, passwordLength)));
  if (!call.refused()) call->connected = true;
  return call.rc();
}

SQLRETURN SQLDisconnect(SQLHDBC dbc) {
  Call call("SQLDisconnect", SQL_HANDLE_DBC, dbc, "");
  if (call.refused()) return call.rc();
  if (self().hasLiveChildren(&*call)) self().misuses.push_back("disconnected with live statements");
  self().freeChildren(&*call);
  call->connected = false;
  return call.rc();
}

SQLRETURN SQLEndTran(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT completion) {
  return Call("SQLEndTran", type, handle, join(type, completion)).rc();
}

SQLRETURN SQLGetInfo(SQLHDBC dbc, SQLUSMALLINT type, SQLPOINTER value, SQLSMALLINT room,
                     SQLSMALLINT* length) {
  Call call("SQLGetInfo", SQL_HANDLE_DBC, dbc, join(type, room));
  if (call.refused()) return call.rc();
  if (type == SQL_DBMS_NAME) {
    give(self().dbmsName, value, room, length);
  } else if (type == SQL_DRIVER_ODBC_VER) {
    give("03.52", value, room, length);
  } else if (value != nullptr) {
    const bool cursor = type == SQL_CURSOR_COMMIT_BEHAVIOR || type == SQL_CURSOR_ROLLBACK_BEHAVIOR;
    give(static_cast<SQLUSMALLINT*>(value), cursor ? SQL_CB_PRESERVE : 0);
    give(length, sizeof(SQLUSMALLINT));
  }
  return call.rc();
}

SQLRETURN SQLGetDiagRec(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number, SQLCHAR* state,
                        SQLINTEGER* native, SQLCHAR* message, SQLSMALLINT room,
                        SQLSMALLINT* length) {
  Call call("SQLGetDiagRec", type, handle, join(number, room));
  if (call.refused()) return call.rc();
  if (number < 1 || static_cast<std::size_t>(number) > call->records.size()) return SQL_NO_DATA;
  const fake::Diagnostic& record = call->records[static_cast<std::size_t>(number) - 1];
  if (state != nullptr) give(record.state, state, 6, nullptr);
  give(native, record.native);
  return give(record.message, message, room, length) ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

// The driver manager asks so.
SQLRETURN SQLGetDiagField(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number, SQLSMALLINT field,
                          SQLPOINTER value, SQLSMALLINT room, SQLSMALLINT* length) {
  Call call("SQLGetDiagField", type, handle, join(number, field, room));
  if (call.refused()) return call.rc();
  if (number < 1 || static_cast<std::size_t>(number) > call->records.size()) return SQL_NO_DATA;
  const fake::Diagnostic& record = call->records[static_cast<std::size_t>(number) - 1];
  if (field == SQL_DIAG_NATIVE) {
    give(static_cast<SQLINTEGER*>(value), record.native);
    return SQL_SUCCESS;
  }
  const std::string text = field == SQL_DIAG_SQLSTATE       ? record.state
                           : field == SQL_DIAG_MESSAGE_TEXT ? record.message
                                                            : "";
  return give(text, value, room, length) ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

}  // extern "C"
