#pragma once

#include <sql.h>

#include <cstdint>

namespace KORVEX::Zel::DB::ODBC {

// An integer attribute value in the pointer that SQLSet...Attr takes it in.
inline SQLPOINTER attributeValue(std::uintptr_t value) {
  return reinterpret_cast<SQLPOINTER>(value);  // NOLINT(performance-no-int-to-ptr): ODBC's way
}

// A text argument of an ODBC call. ODBC takes its inputs as pointers to non-const bytes, and does
// not write to them.
inline SQLCHAR* inputText(const char* text) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text));
}

}  // namespace KORVEX::Zel::DB::ODBC
