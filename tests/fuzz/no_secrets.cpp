// A fuzzer makes up passwords by the million, and what is to be masked is kept for ever.

#include "zeldb/secrets.h"

void zeldb::Secrets::add(const std::string& /*secret*/) {}
std::string zeldb::Secrets::masked(std::string_view text) {
  return std::string(text);
}
