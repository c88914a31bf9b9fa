#pragma once

#include "zeldb/failure.h"
#include "zeldb/failure_kind.h"
#include "zeldb/load_counts.h"
#include "zeldb/load_options.h"
#include "zeldb/retry_policy.h"

namespace zeldb {

// What `connect` opens; tried again, as often as the options allow, while the server cannot be
// reached. Throws Failure: the last one's, at once when waiting does not help.
template <typename Connect>
auto connectPatiently(const LoadOptions& options, LoadCounts& counts, Connect connect) {
  RetryPolicy retry(options.retries);
  for (;;) {
    try {
      return connect();
    } catch (const Failure& failure) {
      if (kindOf(failure) != FailureKind::kLostLink || !retry.wait(failure.what())) {
        throw;
      }
      ++counts.retries;
    }
  }
}

}  // namespace zeldb
