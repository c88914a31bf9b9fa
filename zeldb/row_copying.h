#pragma once

#include <cstdint>

#include "zeldb/row_writer.h"
#include "zeldb/session.h"

namespace zeldb {

// Writes all rows of a query, one at a time, and returns their number. Throws Failure when reading
// fails or Ctrl-C was pressed.
std::uint64_t copyRows(RowSource& rows, RowWriter& writer);

}  // namespace zeldb
