#include "tests/support/fake_odbc.h"

#include <algorithm>

namespace fake {

namespace {

struct FixedCType {
  SQLSMALLINT cType;
  std::size_t bytes;
};

constexpr FixedCType kFixedCTypes[] = {
    {SQL_C_BIT, 1},
    {SQL_C_TINYINT, 1},
    {SQL_C_STINYINT, 1},
    {SQL_C_UTINYINT, 1},
    {SQL_C_SHORT, 2},
    {SQL_C_SSHORT, 2},
    {SQL_C_USHORT, 2},
    {SQL_C_LONG, 4},
    {SQL_C_SLONG, 4},
    {SQL_C_ULONG, 4},
    {SQL_C_FLOAT, 4},
    {SQL_C_DOUBLE, 8},
    {SQL_C_SBIGINT, 8},
    {SQL_C_UBIGINT, 8},
    {SQL_C_TYPE_DATE, sizeof(SQL_DATE_STRUCT)},
    {SQL_C_TYPE_TIME, sizeof(SQL_TIME_STRUCT)},
    {SQL_C_TYPE_TIMESTAMP, sizeof(SQL_TIMESTAMP_STRUCT)},
    {SQL_C_NUMERIC, sizeof(SQL_NUMERIC_STRUCT)},
};

BoundValue readValue(const Binding& binding, std::size_t row) {
  const std::size_t fixed = fixedBytes(binding.cType);
  const std::size_t stride = fixed != 0 ? fixed : static_cast<std::size_t>(binding.bufferBytes);
  const SQLLEN indicator = binding.indicators == nullptr ? SQL_NTS : binding.indicators[row];
  BoundValue value = {binding.cType, indicator, {}};
  if (indicator == SQL_NULL_DATA || binding.data == nullptr) return value;
  const char* data = static_cast<const char*>(binding.data) + row * stride;
  std::size_t length = fixed;
  if (fixed == 0) length = indicator >= 0 ? static_cast<std::size_t>(indicator) : std::strlen(data);
  value.bytes.assign(data, length);
  return value;
}

}  // namespace

std::size_t fixedBytes(SQLSMALLINT cType) {
  for (const FixedCType& fixed : kFixedCTypes) {
    if (fixed.cType == cType) return fixed.bytes;
  }
  return 0;
}

Answer FakeOdbc::enter(const char* function, Handle* handle, const std::string& arguments) {
  const int ofAll = ++callCounts_[""];
  const int ofName = ++callCounts_[function];
  const bool diagnostics = std::string_view(function).starts_with("SQLGetDiag");
  if (logging && !diagnostics) log.push_back(std::string(function) + "(" + arguments + ")");
  if (handle != nullptr && !diagnostics) handle->records.clear();

  Answer answer;
  for (const Fault& fault : faults_) {
    if (!fault.function.empty() && fault.function != function) continue;
    const int call = fault.function.empty() ? ofAll : ofName;
    if (call == fault.call || (fault.fromThenOn && call > fault.call)) {
      answer = fault.answer;
      lastFault = function;
    }
  }
  if (auto waiting = answers_.find(function);
      waiting != answers_.end() && !waiting->second.empty() && answer.rc == SQL_SUCCESS) {
    answer = waiting->second.front();
    waiting->second.pop_front();
  }
  if (handle != nullptr && !diagnostics) handle->records = answer.records;
  return answer;
}

Handle* FakeOdbc::makeHandle(SQLSMALLINT type, Handle* parent) {
  handles_.push_back(std::make_unique<Handle>());
  handles_.back()->type = type;
  handles_.back()->parent = parent;
  return handles_.back().get();
}

bool FakeOdbc::hasLiveChildren(const Handle* handle) const {
  return std::any_of(handles_.begin(), handles_.end(), [handle](const auto& child) {
    return child->live && child->parent == handle;
  });
}

// A disconnect frees the statements.
void FakeOdbc::freeChildren(const Handle* handle) {
  for (const auto& own : handles_) {
    if (own->parent == handle) own->live = false;
  }
}

void FakeOdbc::freeHandle(Handle* handle) {
  if (hasLiveChildren(handle))
    misuses.push_back("freed " + std::string(handleName(handle->type)) +
                      " before what was made under it");
  if (handle->connected) misuses.push_back("freed a dbc that is connected");
  handle->live = false;
}

bool FakeOdbc::check(const char* function, SQLSMALLINT type, Handle* handle) {
  const bool known = std::any_of(handles_.begin(), handles_.end(), [&](const auto& own) {
    return own.get() == handle && own->live && own->type == type;
  });
  if (!known) misuses.push_back(std::string(function) + " on no live " + handleName(type));
  return known;
}

const std::vector<ParamDescription>& FakeOdbc::describeParams(const std::string& sql) {
  const auto found = params.find(sql);
  if (found != params.end()) return found->second;
  const auto marks = static_cast<std::size_t>(std::count(sql.begin(), sql.end(), '?'));
  return params.emplace(sql, std::vector<ParamDescription>(marks)).first->second;
}

const Result* FakeOdbc::currentResult(const Handle* statement) const {
  const auto found = results.find(statement->key);
  if (found == results.end() || statement->result >= found->second.size()) return nullptr;
  return &found->second[statement->result];
}

Execution FakeOdbc::snapshot(const Handle& statement) const {
  Execution execution = {statement.key, {}};
  if (statement.bindings.empty()) return execution;
  for (std::size_t row = 0; row < statement.paramsetSize; ++row) {
    std::vector<BoundValue> values;
    values.reserve(statement.bindings.size());
    for (const auto& [number, binding] : statement.bindings) {
      values.push_back(readValue(binding, row));
    }
    execution.rows.push_back(std::move(values));
  }
  return execution;
}

}  // namespace fake
