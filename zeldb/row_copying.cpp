#include "zeldb/row_copying.h"

#include "zeldb/interrupt.h"

namespace zeldb {

std::uint64_t copyRows(RowSource& rows, RowWriter& writer) {
  std::uint64_t count = 0;
  writer.begin(rows.columns());
  while (const auto* const row = rows.next()) {
    Interrupt::check();
    writer.row(*row);
    ++count;
  }
  writer.end();
  return count;
}

}  // namespace zeldb
