#pragma once

#include "zeldb/failure.h"

namespace zeldb {

// What a failure of a batch calls for.
enum class FailureKind {
  kOther,      // nothing helps: rights, a missing table, a full disk, the user's interruption
  kRow,        // a value or a row that the database refuses
  kTransient,  // others were in the way (deadlock, lock): roll back and try again
  kLostLink,   // connect again and try again
  kInDoubt,    // the answer to a commit was lost
};

FailureKind kindOf(const Failure& failure);

// The failure of a commit: in doubt, unless the database has refused it.
Failure commitFailure(const Failure& failure);

}  // namespace zeldb
