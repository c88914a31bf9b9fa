#include "zeldb/sampled_records.h"

#include <utility>

namespace zeldb {
namespace {

constexpr std::size_t kMaxSampleBytes = std::size_t{4} << 20;

}  // namespace

SampledRecords::SampledRecords(RecordSource& source, std::size_t count) : source_(source) {
  std::size_t bytes = 0;
  CsvRecord record;
  while (sample_.size() < count && bytes < kMaxSampleBytes && source_.next(record)) {
    for (const CsvField& field : record.fields) {
      bytes += field.text.size();
    }
    sample_.push_back(std::move(record));
    record = CsvRecord();
  }
}

bool SampledRecords::next(CsvRecord& record) {
  if (given_ < sample_.size()) {
    record = std::move(sample_[given_++]);
    return true;
  }
  sample_.clear();
  given_ = 0;
  return source_.next(record);
}

}  // namespace zeldb
