#include "zeldb/loader.h"

#include <fmt/format.h>

#include "zeldb/failure.h"
#include "zeldb/interrupt.h"

namespace zeldb {

Loader::Loader(RecordSource& source, const LoadTarget& target, const LoadOptions& options,
               LoadMonitor& monitor, Ledger* ledger)
    : source_(source),
      options_(options),
      monitor_(monitor),
      ledger_(ledger),
      target_(target.connect, target.plan.sql),
      sender_(target_, RowParser(target.plan.columns, options.nullText), source, options_,
              monitor.counts(), *target.plan.product) {
  if (!options.keys.empty()) {
    sender_.lookBy(lookup_.emplace(target.table, options.keys, target.plan));
  }
  openRejects(ledger);
  if (!target.prelude.empty()) {
    target_.session().update(target.prelude, {});
  }
  if (ledger != nullptr) {
    sender_.noteIn(*ledger);
  }
}

void Loader::openRejects(const Ledger* ledger) {
  const LoadPosition reached = ledger != nullptr ? ledger->state().reached : LoadPosition();
  if (options_.rejects.empty()) {
    if (reached.rejected > 0) {
      throw Failure(ExitCode::kUsage,
                    "the load to be resumed named bad rows; --rejects is missing");
    }
    return;
  }
  if (reached.rejectsBytes > 0) {
    rejects_.emplace(options_.rejects, options_.maxErrors,
                     RejectsFile::Mark{reached.rejectsBytes, reached.rejected});
  } else {
    rejects_.emplace(options_.rejects, options_.maxErrors);
  }
  sender_.nameRejectsIn(*rejects_);
}

std::uint64_t Loader::run() {
  try {
    loadAll();
  } catch (const Failure& failure) {
    target_.rollback();
    throw failure.retold(fmt::format("{}; {} rows are committed{}", failure.what(),
                                     sender_.committed(),
                                     ledger_ != nullptr ? "; --resume goes on behind them" : ""));
  }
  return sender_.done();
}

std::string Loader::rejectsSummary() const {
  return rejects_ && rejects_->count() > 0 ? rejects_->summary() : std::string();
}

void Loader::loadAll() {
  if (ledger_ != nullptr && ledger_->state().complete) {
    return;
  }
  if (const auto intent = ledger_ != nullptr ? ledger_->state().intent : std::nullopt) {
    settleDoubted(*intent);
  }
  for (BatchSender::Batch batch = readBatch(); !batch.empty(); batch = readBatch()) {
    sender_.send(batch);
    monitor_.update(sender_.done(), source_.bytesRead(), source_.sizeBytes());
  }
  sender_.finish();
}

void Loader::settleDoubted(const Ledger::Intent& intent) {
  std::size_t size = 0;
  while (readRecord(size)) {
    if (batch_[size++].record.endByte >= intent.to.byte) {
      break;
    }
  }
  sender_.sendDoubted(BatchSender::Batch(batch_).first(size), intent);
  batch_.clear();
}

bool Loader::readRecord(std::size_t at) {
  Interrupt::check();
  if (at == batch_.size()) {
    batch_.emplace_back();
  }
  batch_[at].fault.reset();
  if (!source_.next(batch_[at].record)) {
    return false;
  }
  LoadCounts& counts = monitor_.counts();
  ++counts.rowsRead;
  counts.bytesRead = source_.bytesRead();
  return true;
}

BatchSender::Batch Loader::readBatch() {
  std::size_t size = 0;
  while (size < options_.batchRows && readRecord(size)) {
    ++size;
  }
  return BatchSender::Batch(batch_).first(size);
}

}  // namespace zeldb
