#include "driver2/db_error2_odbc.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <string_view>

namespace KORVEX::Zel::DB::ODBC {

namespace {

constexpr char kSourceOdbc[] = "odbc";
constexpr char kSourceAccess[] = "dbaccess";

struct ReturnCodeWord {
  short rc;
  const char* word;
};

constexpr ReturnCodeWord kWords[] = {
    {SQL_SUCCESS, ""},
    {SQL_STILL_EXECUTING, "Still executing"},
    {SQL_NEED_DATA, "Need data"},
    {SQL_NO_DATA, "No data"},
    {SQL_INVALID_HANDLE, "Invalid handle"},
};
constexpr char kOtherWord[] = "Unknown error";

// The link to the database is gone. Any other SQLSTATE leaves the flag as it is.
constexpr std::string_view kLostLinkStates[] = {"08003", "08007", "08S01"};

}  // namespace

DBError2Odbc::DBError2Odbc(const char* text) {
  if (text != nullptr) errorString = text;
}

// Kept: the result of SQLGetDiagRec is not looked at; the zeroed buffers make an absent record read
// as empty texts.
void DBError2Odbc::appendDiagnostic(short handleType, void* handle) {
  constexpr SQLSMALLINT kMessageBytes = 512;
  std::array<SQLCHAR, kMessageBytes + 1> message{};
  std::array<SQLCHAR, sizeof sqlState> state{};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  SQLGetDiagRec(handleType, handle, 1, state.data(), &native, message.data(), kMessageBytes,
                &length);
  state.back() = 0;
  std::copy(state.begin(), state.end(), sqlState);
  nativeErrorCode = native;
  errorString += std::string("[") + sqlState + ']';
  errorString.append(message.begin(), std::find(message.begin(), message.end(), SQLCHAR{0}));
  if (std::ranges::find(kLostLinkStates, std::string_view(sqlState)) != std::end(kLostLinkStates)) {
    connectionError = true;
  }
}

void DBError2Odbc::processOdbcError(short handleType, void* handle, short rc) noexcept {
  try {
    errorString = '[' + std::to_string(rc) + ']';
    if (rc == SQL_ERROR || rc == SQL_SUCCESS_WITH_INFO) {
      appendDiagnostic(handleType, handle);
      return;
    }
    const auto* word = std::ranges::find(kWords, rc, &ReturnCodeWord::rc);
    errorString += word == std::end(kWords) ? kOtherWord : word->word;
    if (rc == SQL_SUCCESS) nativeErrorCode = 0;
  } catch (...) {  // NOLINT(bugprone-empty-catch)
    // No memory for the text; the caller still learns of the failure.
  }
}

int failOdbc(DBError* error, short handleType, void* handle, short rc) noexcept {
  if (error != nullptr) {
    auto* record = static_cast<DBError2Odbc*>(error);
    record->errorSource = kSourceOdbc;  // short enough to need no memory
    record->processOdbcError(handleType, handle, rc);
  }
  return -1;
}

int failAccess(DBError* error, const char* text) noexcept {
  if (error != nullptr) {
    auto* record = static_cast<DBError2Odbc*>(error);
    try {
      record->errorSource = kSourceAccess;
      record->errorString = text;
    } catch (...) {
      record->errorString.clear();
    }
  }
  return -1;
}

int failNotConnected(DBError* error) noexcept {
  if (error != nullptr) static_cast<DBError2Odbc*>(error)->connectionError = true;
  return failAccess(error, "not connected");
}

}  // namespace KORVEX::Zel::DB::ODBC
