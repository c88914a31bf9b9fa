#pragma once

#include <cstring>
#include <string>

namespace KORVEX::Zel::DB {

// Overwrites a secret before its memory goes back, so that no later core file shows it.
inline void wipe(std::string& secret) {
  explicit_bzero(secret.data(), secret.size());
}

}  // namespace KORVEX::Zel::DB
