#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zeldb/record_source.h"

namespace zeldb {

// A source that can be looked ahead into.
class SampledRecords : public RecordSource {
 public:
  // Reads up to `count` records, and not more than some megabytes, from the source, which must
  // outlive this.
  SampledRecords(RecordSource& source, std::size_t count);

  const std::vector<CsvRecord>& sample() const { return sample_; }

  // First the sample, then what follows.
  bool next(CsvRecord& record) override;
  std::string place(std::uint64_t line, std::size_t field) const override {
    return source_.place(line, field);
  }
  std::string range(std::uint64_t firstLine, std::uint64_t lastLine) const override {
    return source_.range(firstLine, lastLine);
  }
  std::uint64_t bytesRead() const override { return source_.bytesRead(); }
  std::uint64_t sizeBytes() const override { return source_.sizeBytes(); }

 private:
  RecordSource& source_;
  std::vector<CsvRecord> sample_;
  std::size_t given_ = 0;
};

}  // namespace zeldb
