#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "zeldb/session.h"

namespace zeldb {

// Sends rows together only as long as their binary values have the same lengths: SQLite's driver
// takes the first row's length for all rows of a batch.
class EvenBatchWriter : public BatchWriter {
 public:
  explicit EvenBatchWriter(std::unique_ptr<BatchWriter> writer) : writer_(std::move(writer)) {}

  void add(const Parameters& row) override;
  void send() override;

 private:
  std::unique_ptr<BatchWriter> writer_;
  std::vector<std::ptrdiff_t> lengths_;     // of the waiting rows' binary values, -1 for NULL
  std::vector<std::ptrdiff_t> rowLengths_;  // of the row being added
  bool waiting_ = false;
};

}  // namespace zeldb
