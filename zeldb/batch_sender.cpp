#include "zeldb/batch_sender.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "zeldb/failure_kind.h"
#include "zeldb/interrupt.h"
#include "zeldb/run_status.h"

namespace zeldb {
namespace {

// A server may still be committing what a lost link has left behind.
constexpr std::chrono::milliseconds kSecondLook(1000);

bool isGood(const BatchRecord& record) {
  return !record.fault;
}

}  // namespace

BatchSender::BatchSender(BatchTarget& target, RowParser parser, const RecordSource& source,
                         const LoadOptions& options, LoadCounts& counts,
                         const ProductTraits& product)
    : target_(target),
      parser_(std::move(parser)),
      source_(source),
      options_(options),
      counts_(counts),
      retry_(options.retries),
      oneTransaction_(options.oneTransaction || options.dryRun),
      resumption_(product.resumption) {
  RunStatus::committed(0);
}

void BatchSender::noteIn(Ledger& ledger) {
  ledger_ = &ledger;
  ledgerTells_ = ledger.isCommitted(target_.session()).has_value();
  if (ledgerTells_) {
    target_.rollback();
  }
  position_ = ledger.state().reached;
  RunStatus::committed(position_.committed);
}

void BatchSender::send(Batch batch) {
  const bool alone = triesOut(Resumption::kStatement) && target_.writer().sendsEachRow();
  while (!batch.empty()) {
    const std::size_t size = alone ? 1 : batch.size();
    sendPart(batch.first(size), false);
    batch = batch.subspan(size);
  }
}

void BatchSender::sendDoubted(Batch batch, const Ledger::Intent& intent) {
  std::for_each(batch.begin(), batch.end(), [this](BatchRecord& record) { parse(record); });
  sentRows_ = static_cast<std::uint64_t>(std::count_if(batch.begin(), batch.end(), isGood));
  firstLine_ = intent.firstLine;
  lastLine_ = intent.lastLine;
  const Failure doubt(ExitCode::kInDoubt,
                      fmt::format("{}: in doubt, the earlier load ended before the answer to "
                                  "their commit",
                                  lines()));
  if (sentRows_ != intent.rows) {
    throw doubt.retold(fmt::format("{}; it read {} rows there, this one reads {}", doubt.what(),
                                   intent.rows, sentRows_));
  }
  ++counts_.inDoubt;
  if (options_.inDoubtRows ? *options_.inDoubtRows : settle(batch, doubt)) {
    nameFaults(batch);
    advance(batch);
  } else {
    sendPart(batch, true);
  }
}

void BatchSender::finish() {
  if (options_.dryRun) {
    target_.rollback();
  } else if (oneTransaction_ && openRows_ > 0) {
    RunStatus::committing(lines());
    namingLines([this] { target_.session().commit(); });
    RunStatus::committed(openRows_);
    ++counts_.batches;
  }
  position_.committed += openRows_;
  counts_.rowsCommitted += openRows_;
  openRows_ = 0;
  if (ledger_ != nullptr) {
    ledger_->complete(target_.session());
  }
}

void BatchSender::sendPart(Batch part, bool doubted) {
  const RejectsFile::Mark mark = rejects_ != nullptr ? rejects_->mark() : RejectsFile::Mark();
  for (;;) {
    Interrupt::check();
    try {
      begin();
      insert(part);
      nameFaults(part);
      commit(part);
      return;
    } catch (const Failure& failure) {
      const FailureKind kind = kindOf(failure);
      const bool tooLate = doubted && kind == FailureKind::kRow;  // its rows are in its own way
      if (kind == FailureKind::kInDoubt || tooLate) {
        ++counts_.inDoubt;
        if (settle(part, failure)) {
          advance(part);
          return;
        }
        if (std::exchange(doubted, true) && !tooLate) {
          throw;
        }
      } else if (kind != FailureKind::kRow && !triesAgain(failure)) {
        throw;
      }
      if (kind == FailureKind::kRow && rejects_ == nullptr) {
        throw;
      }
      if (rejects_ != nullptr) {
        rejects_->rewind(mark);
      }
      if (kind == FailureKind::kRow) {
        undo();
        split(part, failure);
        return;
      }
    }
  }
}

bool BatchSender::triesAgain(const Failure& failure) {
  const FailureKind kind = kindOf(failure);
  const bool lost = kind == FailureKind::kLostLink;
  if (oneTransaction_ || (!lost && kind != FailureKind::kTransient)) {
    return false;
  }
  if (lost) {
    target_.disconnect();
  } else {
    target_.rollback();
  }
  if (!retry_.wait(failure.what())) {
    return false;
  }
  ++counts_.retries;
  counts_.reconnects += lost ? 1 : 0;
  return true;
}

void BatchSender::split(Batch part, const Failure& failure) {
  if (std::count_if(part.begin(), part.end(), isGood) == 1) {
    std::find_if(part.begin(), part.end(), isGood)->fault = failure;
    sendPart(part, false);
    return;
  }
  const std::size_t half = part.size() / 2;
  sendPart(part.first(half), false);
  sendPart(part.subspan(half), false);
}

void BatchSender::insert(Batch part) {
  RunStatus::committed(committed());
  BatchWriter& writer = target_.writer();
  firstLine_ = openRows_ == 0 ? part.front().record.line : firstLine_;
  sentRows_ = 0;
  for (BatchRecord& record : part) {
    const Parameters* const row = isGood(record) ? parse(record) : nullptr;
    lastLine_ = record.record.line;
    if (row == nullptr) {
      continue;
    }
    try {
      writer.add(*row);
    } catch (const Failure& failure) {
      const std::string where =
          writer.sendsEachRow() ? source_.place(record.record.line, 0) : lines();
      throw failure.retold(fmt::format("{}: {}", where, failure.what()));
    }
    ++sentRows_;
  }
  if (sentRows_ > 0) {
    namingLines([&] { writer.send(); });
  }
}

// The row's values; null when it has become a fault that is to be named.
const Parameters* BatchSender::parse(BatchRecord& record) {
  try {
    return &parser_.parse(record.record, source_);
  } catch (const Failure& failure) {
    if (rejects_ == nullptr) {
      throw;
    }
    record.fault = failure;
    return nullptr;
  }
}

void BatchSender::nameFaults(Batch part) {
  if (rejects_ == nullptr) return;  // then no record keeps its fault
  for (const BatchRecord& record : part) {
    if (record.fault) {
      rejects_->add(record.record.line, *record.fault);
    }
  }
}

void BatchSender::commit(Batch part) {
  if (oneTransaction_) {
    openRows_ += sentRows_;
    if (triesOut(Resumption::kNothing)) {
      target_.rollback();
    }
    counts_.rowsRejected = rejects_ != nullptr ? rejects_->count() : 0;
    return;
  }
  if (sentRows_ > 0) {
    if (ledger_ != nullptr) {
      if (rejects_ != nullptr) {
        rejects_->sync();
      }
      ledger_->intend(target_.session(), {behind(part), sentRows_, firstLine_, lastLine_});
    }
    RunStatus::committing(lines());
    namingLines([this] { target_.session().commit(); });
    ++counts_.batches;
  }
  advance(part);
}

void BatchSender::advance(Batch part) {
  position_ = behind(part);
  RunStatus::committed(position_.committed);
  counts_.rowsCommitted += sentRows_;
  counts_.rowsRejected = position_.rejected;
  retry_.succeeded();
  if (ledger_ != nullptr) {
    ledger_->reach(position_);
  }
}

// A dry run is one transaction, so that it sees its own rows: of what fails nothing is left, or it
// is undone to a savepoint. Where neither can be each batch is rolled back by itself.
bool BatchSender::triesOut(Resumption resumption) const {
  return options_.dryRun && rejects_ != nullptr && resumption_ == resumption;
}

void BatchSender::begin() {
  if (triesOut(Resumption::kSavepoint)) {
    target_.session().update("savepoint zeldb", {});
  }
}

void BatchSender::undo() {
  if (triesOut(Resumption::kSavepoint)) {
    target_.forget();
    target_.session().update("rollback to savepoint zeldb", {});
  } else if (triesOut(Resumption::kStatement)) {
    target_.forget();
  } else {
    target_.rollback();
  }
}

// Whether the rows of the part, which a commit without an answer has left in doubt, are there.
bool BatchSender::settle(Batch part, const Failure& doubt) {
  if (lookup_ == nullptr && !ledgerTells_) {
    throw doubt.retold(doubt.what() +
                       std::string("; --key COLUMN,... lets the tool look whether they are there"));
  }
  for (;;) {
    target_.disconnect();
    ++counts_.reconnects;
    try {
      if (isThere(part, doubt)) {
        return true;
      }
      std::this_thread::sleep_for(kSecondLook);
      return isThere(part, doubt);
    } catch (const Failure& failure) {
      const FailureKind kind = kindOf(failure);
      if (kind == FailureKind::kInDoubt) {
        throw;
      }
      const bool passes = kind == FailureKind::kLostLink || kind == FailureKind::kTransient;
      if (!passes || !retry_.wait(failure.what())) {
        throw doubt.retold(fmt::format("{}; looking for them: {}", doubt.what(), failure.what()));
      }
    }
  }
}

bool BatchSender::isThere(Batch part, const Failure& doubt) {
  Session& session = target_.session();
  if (ledgerTells_) {
    const bool committed = ledger_->isCommitted(session).value_or(false);
    session.rollback();
    return committed;
  }
  std::uint64_t found = 0;
  for (BatchRecord& record : part) {
    Interrupt::check();
    if (isGood(record) && lookup_->finds(session, parser_.parse(record.record, source_))) {
      ++found;
    }
  }
  session.rollback();  // so that another look sees what has been committed meanwhile
  if (found != 0 && found != sentRows_) {
    throw doubt.retold(
        fmt::format("{}; {} of these {} rows are there, which no commit does: the "
                    "--key is not theirs alone, or others have changed the table",
                    doubt.what(), found, sentRows_));
  }
  return found != 0;
}

LoadPosition BatchSender::behind(Batch part) const {
  const RejectsFile::Mark mark = rejects_ != nullptr ? rejects_->mark() : RejectsFile::Mark();
  return {part.back().record.endByte, part.back().record.endLine, position_.committed + sentRows_,
          mark.rows, mark.bytes};
}

std::string BatchSender::lines() const {
  return firstLine_ == lastLine_ ? source_.place(firstLine_, 0)
                                 : source_.range(firstLine_, lastLine_);
}

template <typename Step>
void BatchSender::namingLines(Step step) const {
  try {
    step();
  } catch (const Failure& failure) {
    throw failure.retold(fmt::format("{}: {}", lines(), failure.what()));
  }
}

}  // namespace zeldb
