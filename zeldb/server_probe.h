#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "zeldb/odbc_driver_table.h"

namespace zeldb {

struct ServerAddress {
  std::string host;
  std::string port;

  std::string toString() const { return host + ":" + port; }
};

enum class Reach : std::uint8_t {
  kReached,   // a server of the expected kind answers
  kSilent,    // the connection is accepted, but no greeting comes in time
  kStranger,  // something answers that is no such server
  kRefused,
  kTimeout,
  kUnknownName,
  kFailed,  // for another reason
};

struct ProbeResult {
  Reach reach = Reach::kFailed;
  std::string reason;  // the system's own words, when there are any
};

// Connects to the address over TCP, looks at the greeting, and closes again; sends no names and no
// passwords. Connecting takes as long as the limit at most, and so does waiting for the greeting;
// only asking for the name's address takes what the system's resolver takes.
ProbeResult probeServer(const ServerAddress& address, Greeting greeting,
                        std::chrono::milliseconds limit);

}  // namespace zeldb
