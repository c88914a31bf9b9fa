#pragma once

// What the functions of the scripted ODBC have in common; not for tests.

#include <algorithm>
#include <sstream>

#include "tests/support/fake_odbc.h"

namespace fake {

// The one scripted ODBC of this library.
FakeOdbc& self();

inline std::string text(const SQLCHAR* chars, SQLINTEGER length) {
  if (chars == nullptr) return {};
  const char* start = reinterpret_cast<const char*>(chars);
  return length < 0 ? std::string(start) : std::string(start, static_cast<std::size_t>(length));
}

inline std::string quoted(const SQLCHAR* chars, SQLINTEGER length) {
  return chars == nullptr ? "null" : '"' + text(chars, length) + '"';
}

inline const char* address(const void* pointer) {
  return pointer == nullptr ? "null" : "ptr";
}

// An attribute value: the number, or that it is an address.
inline std::string attribute(SQLPOINTER value) {
  constexpr std::uintptr_t kLargestNumber = 0xFFFFFF;
  const auto number = reinterpret_cast<std::uintptr_t>(value);
  return number > kLargestNumber ? "ptr" : std::to_string(number);
}

template <typename... Argument>
std::string join(const Argument&... arguments) {
  std::ostringstream out;
  const char* separator = "";
  ((out << separator << arguments, separator = ","), ...);
  return out.str();
}

// A call under way: holds the lock, and knows what a script wants answered.
class Call {
 public:
  Call(const char* function, SQLSMALLINT type, SQLHANDLE handle, const std::string& arguments)
      : lock_(self().mutex), handle_(static_cast<Handle*>(handle)) {
    valid_ = self().check(function, type, handle_);
    answer_ = self().enter(function, valid_ ? handle_ : nullptr, arguments);
  }

  // Whether the call is to do nothing but give this answer.
  bool valid() const { return valid_; }
  bool refused() const { return !valid_ || !SQL_SUCCEEDED(answer_.rc); }
  SQLRETURN rc() const { return valid_ ? answer_.rc : static_cast<SQLRETURN>(SQL_INVALID_HANDLE); }
  // Ends a call that the script leaves alone.
  SQLRETURN answer(SQLRETURN rc, const char* state, const char* message) {
    handle_->records.push_back({state, 0, message});
    return rc;
  }
  Handle& operator*() const { return *handle_; }
  Handle* operator->() const { return handle_; }

 private:
  std::lock_guard<std::recursive_mutex> lock_;
  Handle* handle_;
  bool valid_ = false;
  Answer answer_;
};

// Copies a text into a caller's buffer; false when it was cut.
inline bool give(const std::string& from, SQLPOINTER to, SQLSMALLINT room, SQLSMALLINT* length) {
  const Lies& lies = self().lies;
  if (length != nullptr) *length = lies.textLength.value_or(static_cast<SQLSMALLINT>(from.size()));
  if (to == nullptr || room <= 0) return true;
  if (lies.unterminated) {
    std::memset(to, 'x', static_cast<std::size_t>(room));
    return true;
  }
  const std::size_t copied = std::min(from.size(), static_cast<std::size_t>(room - 1));
  std::memcpy(to, from.data(), copied);
  static_cast<char*>(to)[copied] = 0;
  return copied == from.size();
}

template <typename Out, typename Value>
void give(Out* to, Value value) {
  if (to != nullptr) *to = static_cast<Out>(value);
}

}  // namespace fake
