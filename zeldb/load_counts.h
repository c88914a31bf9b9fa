#pragma once

#include <atomic>
#include <cstdint>

namespace zeldb {

// How far a load has come. Counted by the thread that loads, read by any.
struct LoadCounts {
  using Count = std::atomic<std::uint64_t>;

  Count rowsRead = 0;
  Count rowsCommitted = 0;  // or rolled back by a dry run
  Count rowsRejected = 0;
  Count batches = 0;  // committed
  Count retries = 0;
  Count reconnects = 0;
  Count inDoubt = 0;  // commits whose answer was lost
  Count bytesRead = 0;
};

}  // namespace zeldb
