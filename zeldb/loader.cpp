#include "zeldb/loader.h"

#include <fmt/format.h>

#include <algorithm>

#include "zeldb/failure.h"
#include "zeldb/interrupt.h"

namespace zeldb {

Loader::Loader(Session& session, RecordSource& source, const InsertPlan& plan,
               const LoadOptions& options)
    : session_(session),
      source_(source),
      options_(options),
      batch_(session.insert(plan.sql)),
      row_(plan.columns.size()) {
  for (const ResultColumn& column : plan.columns) {
    columns_.push_back({column.name, ValueParser(column.type)});
  }
  for (std::size_t at = 0; at < row_.size(); ++at) {
    row_[at].type = columns_[at].parser.valueType();
  }
}

std::uint64_t Loader::run() {
  try {
    loadAll();
  } catch (const Failure& failure) {
    session_.rollback();
    throw Failure(failure.exitCode(),
                  fmt::format("{}; {} rows are committed", failure.what(), committedRows_));
  }
  return committedRows_;
}

void Loader::loadAll() {
  while (const CsvRecord* const record = source_.next()) {
    Interrupt::check();
    addRecord(*record);
    if (batchedRows_ == options_.batchRows) {
      sendBatch();
    }
  }
  sendBatch();
  commit();
}

void Loader::addRecord(const CsvRecord& record) {
  if (record.fields.size() != columns_.size()) {
    throw Failure(
        ExitCode::kRowsRejected,
        fmt::format("{}: the row has {} fields, the header {}",
                    source_.place(record.line, std::min(record.fields.size(), columns_.size())),
                    record.fields.size(), columns_.size()));
  }
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    const CsvField& field = record.fields[at];
    DataTypes::DataValue& value = row_[at].value;
    if (field.empty) {
      value.clear();
      value.setNull();
    } else if (!columns_[at].parser.parse(field.text, value)) {
      throw Failure(ExitCode::kRowsRejected,
                    fmt::format("{}: column \"{}\": {}: \"{}\"", source_.place(record.line, at),
                                columns_[at].name, columns_[at].parser.reason(), field.text));
    }
  }
  if (batchedRows_ + sentRows_ == 0) {
    firstLine_ = record.line;
  }
  lastLine_ = record.line;
  try {
    batch_->add(row_);
  } catch (const Failure& failure) {
    throw Failure(failure.exitCode(),
                  fmt::format("{}: {}", source_.place(record.line, 0), failure.what()));
  }
  ++batchedRows_;
}

void Loader::sendBatch() {
  if (batchedRows_ == 0) {
    return;
  }
  namingLines([this] { batch_->send(); });
  sentRows_ += batchedRows_;
  batchedRows_ = 0;
  if (!options_.oneTransaction) {
    commit();
  }
  progress_.update(committedRows_ + sentRows_, source_.bytesRead(), source_.sizeBytes());
}

void Loader::commit() {
  namingLines([this] { session_.commit(); });
  committedRows_ += sentRows_;
  sentRows_ = 0;
}

template <typename Step>
void Loader::namingLines(Step step) const {
  try {
    step();
  } catch (const Failure& failure) {
    throw Failure(failure.exitCode(),
                  fmt::format("{}: {}", source_.range(firstLine_, lastLine_), failure.what()));
  }
}

}  // namespace zeldb
