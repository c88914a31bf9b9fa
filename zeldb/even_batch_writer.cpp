#include "zeldb/even_batch_writer.h"

#include "datatypes/type_code.h"

namespace zeldb {

void EvenBatchWriter::add(const Parameters& row) {
  rowLengths_.clear();
  for (const KORVEX::Zel::DB::Parameter& parameter : row) {
    if (DataTypes::typeNumber(parameter.type) == DataTypes::kBinary) {
      rowLengths_.push_back(
          parameter.value.isNull() ? -1 : std::ptrdiff_t{parameter.value.binary.length});
    }
  }
  if (waiting_ && rowLengths_ != lengths_) {
    send();
  }
  lengths_.swap(rowLengths_);
  writer_->add(row);
  waiting_ = true;
}

void EvenBatchWriter::send() {
  waiting_ = false;
  writer_->send();
}

}  // namespace zeldb
