#include "zeldb/loader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "zeldb/failure.h"
#include "zeldb/interrupt.h"

namespace zeldb {
namespace {

// SQLSTATEs of values that do not fit their column, and of rows with too few or too many of them.
constexpr const char* kBadValueState = "22018";
constexpr const char* kFieldCountState = "21S01";

// Classes of SQLSTATE that are not the fault of a row: transaction state, rollback, statement or
// rights, resources, operator's intervention.
constexpr std::array<std::string_view, 5> kNotOfRows = {"25", "40", "42", "53", "57"};

bool isFaultOfRow(const Failure& failure) {
  return failure.exitCode() == ExitCode::kSql &&
         std::none_of(kNotOfRows.begin(), kNotOfRows.end(),
                      [&](std::string_view prefix) { return failure.state().starts_with(prefix); });
}

}  // namespace

Loader::Loader(Session& session, RecordSource& source, const InsertPlan& plan,
               const LoadOptions& options)
    : session_(session),
      source_(source),
      options_(options),
      sql_(plan.sql),
      batch_(session.insert(plan.sql)),
      row_(plan.columns.size()) {
  for (const ResultColumn& column : plan.columns) {
    columns_.push_back({column.name, ValueParser(column.type)});
  }
  for (std::size_t at = 0; at < row_.size(); ++at) {
    row_[at].type = columns_[at].parser.valueType();
  }
  if (!options_.rejects.empty()) {
    rejects_.emplace(options_.rejects, options_.maxErrors);
  }
}

std::uint64_t Loader::run() {
  try {
    loadAll();
  } catch (const Failure& failure) {
    session_.rollback();
    throw Failure(failure.exitCode(), fmt::format("{}; {} rows are committed", failure.what(),
                                                  options_.dryRun ? 0 : doneRows_));
  }
  return doneRows_;
}

void Loader::loadAll() {
  while (const CsvRecord* const record = source_.next()) {
    Interrupt::check();
    if (rejects_) {
      keepRecord(*record);
    } else {
      addRecord(*record);
    }
    if (batchedRows_ + kept_.size() == options_.batchRows) {
      finishBatch();
    }
  }
  finishBatch();
  commit();
  if (rejects_ && rejects_->count() > 0) {
    throw Failure(ExitCode::kRowsRejected, rejects_->summary());
  }
}

void Loader::fillRow(const CsvRecord& record) {
  if (record.fields.size() != columns_.size()) {
    throw Failure(
        ExitCode::kRowsRejected,
        fmt::format("{}: the row has {} fields, the header {}",
                    source_.place(record.line, std::min(record.fields.size(), columns_.size())),
                    record.fields.size(), columns_.size()),
        kFieldCountState);
  }
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    const CsvField& field = record.fields[at];
    DataTypes::DataValue& value = row_[at].value;
    if (field.empty || field.text == options_.nullText) {
      value.clear();
      value.setNull();
    } else if (!columns_[at].parser.parse(field.text, value)) {
      throw Failure(ExitCode::kRowsRejected,
                    fmt::format("{}: column \"{}\": {}: \"{}\"", source_.place(record.line, at),
                                columns_[at].name, columns_[at].parser.reason(), field.text),
                    kBadValueState);
    }
  }
}

void Loader::addRecord(const CsvRecord& record) {
  fillRow(record);
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

void Loader::keepRecord(const CsvRecord& record) {
  try {
    fillRow(record);
    kept_.push_back(record);
  } catch (const Failure& failure) {
    rejects_->add(record.line, failure);
  }
}

void Loader::finishBatch() {
  if (rejects_) {
    sendKept(kept_);
    kept_.clear();
  } else {
    sendBatch();
  }
  progress_.update(doneRows_ + sentRows_, source_.bytesRead(), source_.sizeBytes());
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
}

void Loader::sendKept(std::span<const CsvRecord> records) {
  if (records.empty()) {
    return;
  }
  Interrupt::check();
  firstLine_ = records.front().line;
  lastLine_ = records.back().line;
  try {
    namingLines([&] { insertKept(records); });
    commit();
    return;
  } catch (const Failure& failure) {
    if (!isFaultOfRow(failure)) {
      throw;
    }
    startAfresh();
    if (records.size() == 1) {
      rejects_->add(records.front().line, failure);
      return;
    }
  }
  const std::size_t half = records.size() / 2;
  sendKept(records.first(half));
  sendKept(records.subspan(half));
}

void Loader::insertKept(std::span<const CsvRecord> records) {
  for (const CsvRecord& record : records) {
    fillRow(record);
    batch_->add(row_);
  }
  batch_->send();
  sentRows_ = records.size();
}

// The old writer goes first: a session has room for one.
void Loader::startAfresh() {
  sentRows_ = 0;
  batch_.reset();
  session_.rollback();
  batch_ = session_.insert(sql_);
}

void Loader::commit() {
  if (options_.dryRun) {
    session_.rollback();
  } else {
    namingLines([this] { session_.commit(); });
  }
  doneRows_ += sentRows_;
  sentRows_ = 0;
}

template <typename Step>
void Loader::namingLines(Step step) const {
  try {
    step();
  } catch (const Failure& failure) {
    throw Failure(failure.exitCode(),
                  fmt::format("{}: {}", source_.range(firstLine_, lastLine_), failure.what()),
                  failure.state());
  }
}

}  // namespace zeldb
