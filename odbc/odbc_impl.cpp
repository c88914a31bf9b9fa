#include "odbc/odbc_impl.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <limits>

#include "odbc/odbc_env_impl.h"
#include "odbc/print_record.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

// How an ODBC return code other than SQL_SUCCESS reads. Codes that are not listed are e_Other.
struct ReturnCodeRule {
  SQLRETURN rc;
  Odbc::e_Status status;
  bool hasRecord;
};

constexpr ReturnCodeRule kReturnCodes[] = {
    {SQL_SUCCESS_WITH_INFO, Odbc::e_Ok, true},  {SQL_ERROR, Odbc::e_Error, true},
    {SQL_INVALID_HANDLE, Odbc::e_Error, false}, {SQL_NO_DATA, Odbc::e_NoData, false},
    {SQL_NEED_DATA, Odbc::e_NeedData, false},
};

constexpr ReturnCodeRule kOtherReturnCode = {0, Odbc::e_Other, false};

constexpr unsigned int kStateBytes = 6;  // five characters and a NUL
constexpr unsigned int kMessageBytes =
    513;  // the longest message that is read in one go, and a NUL

constexpr unsigned int kMaxMessageBytes = std::numeric_limits<SQLSMALLINT>::max();

constexpr char kNoRecordState[] = "ZEL";
constexpr char kNoRecordMessage[] = "No error message returned by driver";

void zeroFill(ByteStore& text, unsigned int bytes) {
  text.Truncate(0, 0);
  text.Extend(bytes, 0);
}

void replace(ByteStore& text, const char* replacement) {
  text = ByteStore(replacement, ByteStore::kUntilNul);
}

}  // namespace

OdbcEnv* Odbc::CreateEnv() {
  return OdbcImpl::CreateEnv();
}

OdbcImpl::OdbcImpl(OdbcImpl* parent)
    : root_(parent == nullptr ? this : parent->root_), parent_(parent) {
  if (parent_ != nullptr) parent_->Notify(e_Created, this);
}

OdbcImpl::~OdbcImpl() {
  if (parent_ != nullptr) parent_->Notify(e_Deleted, this);
}

void OdbcImpl::Notify(e_Notice notice, OdbcImpl* child) {
  if (child == nullptr) return;
  if (notice == e_Created) {
    children_[child] = false;  // revives the entry of a deleted child at the same address
  } else if (notice == e_Deleted) {
    const auto entry = children_.find(child);
    if (entry != children_.end() && !entry->second) children_.erase(entry);
  }
}

void OdbcImpl::DeleteChildren() {
  // Kept: entries of deleted children stay. The mark keeps a child's farewell from erasing the
  // entry under the walk, and a later child at that address from being taken for the old one.
  for (auto& [child, deleted] : children_) {
    if (deleted) continue;
    deleted = true;
    delete child;
  }
}

Odbc::e_Status OdbcImpl::statusOf(OdbcImpl* source, SQLRETURN rc) {
  const auto* rule = std::find_if(std::begin(kReturnCodes), std::end(kReturnCodes),
                                  [rc](const ReturnCodeRule& row) { return row.rc == rc; });
  if (rule == std::end(kReturnCodes)) rule = &kOtherReturnCode;
  if (rule->hasRecord) SetDiagnosticInfo(source);
  return rule->status;
}

void OdbcImpl::SetDiagnosticInfo(OdbcImpl* source) {
  if (source == nullptr) return;
  if (this != root_) return root_->SetDiagnosticInfo(source);

  zeroFill(state_, kStateBytes);
  zeroFill(message_, kMessageBytes);
  SQLINTEGER native = 0;
  SQLSMALLINT textLength = 0;
  const auto read = [&] {
    const auto room = std::min(message_.Length(), kMaxMessageBytes);
    return SQLGetDiagRec(source->GetHandleType(), source->GetHandle(), 1, state_.Data(), &native,
                         message_.Data(), static_cast<SQLSMALLINT>(room), &textLength);
  };
  SQLRETURN rc = read();
  if (rc == SQL_SUCCESS_WITH_INFO) {
    message_.Extend(static_cast<unsigned int>(std::max<SQLSMALLINT>(textLength, 0)) + 1, 0);
    rc = read();
  }
  nativeError_ = native;
  hasInfo_ = rc == SQL_SUCCESS || rc == SQL_NO_DATA;
  if (rc == SQL_NO_DATA) {
    replace(state_, kNoRecordState);
    replace(message_, kNoRecordMessage);
  }
}

void OdbcImpl::GetInfo(std::string& state, long& nativeError, std::string& message) {
  if (this != root_) return root_->GetInfo(state, nativeError, message);
  state = state_.Text();
  nativeError = nativeError_;
  message = message_.Text();
}

void OdbcImpl::DumpInfo(std::ostringstream& out) {
  if (HasInfo()) {
    std::string state;
    long nativeError = 0;
    std::string message;
    GetInfo(state, nativeError, message);
    out << '[' << state << "][" << nativeError << "][" << message << ']';
  }
  out << '\0';
}

void OdbcImpl::DumpInfo(const char* prefix) {
  const std::string start = prefix == nullptr ? "" : prefix;
  printRecord(*this, {start + ":  state: ", start + ":  error: ", start + ":  message: "});
}

bool OdbcImpl::initializeOrDelete(OdbcImpl* child, const char* failureText, bool sayWhenNoInfo) {
  if (child->Initialize() == e_Ok) return true;
  if (child->HasInfo()) {
    std::ostringstream record;
    child->DumpInfo(record);
    std::cout << failureText << record.str().c_str() << '\n';
  } else if (sayWhenNoInfo) {
    std::cout << failureText << "  No error info available" << '\n';
  }
  delete child;
  return false;
}

OdbcEnv* OdbcImpl::CreateEnv() {
  auto* env = new OdbcEnvImpl;
  const bool made =
      initializeOrDelete(env, "OdbcImpl::CreateEnv()  Failed to initialize env.", true);
  return made ? env : nullptr;
}

}  // namespace KORVEX::Zel::DB::ODBC
