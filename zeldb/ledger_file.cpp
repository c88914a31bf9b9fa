#include "zeldb/ledger_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

constexpr std::string_view kTitle = "zeldb ledger of a load, 1";
// A disk writes this much at once.
constexpr std::size_t kSlotBytes = 512;
constexpr std::size_t kSlots = 2;
constexpr std::size_t kMaxHeadBytes = std::size_t{1} << 20;
constexpr std::size_t kTailBytes = 4096;

std::string headOf(const Ledger::Identity& identity) {
  std::string head(kTitle);
  head += '\n';
  for (const std::string& line : Ledger::linesOf(identity)) {
    head += line + '\n';
  }
  const std::size_t length = (head.size() + kSlotBytes) / kSlotBytes * kSlotBytes;
  head.resize(length - 1, ' ');
  return head + '\n';
}

// The members of a position in the order in which they are written.
std::array<std::uint64_t*, 5> membersOf(LoadPosition& position) {
  return {&position.byte, &position.line, &position.committed, &position.rejected,
          &position.rejectsBytes};
}

void appendPosition(std::string& text, LoadPosition position) {
  for (const std::uint64_t* const member : membersOf(position)) {
    text += fmt::format(" {}", *member);
  }
}

std::istream& operator>>(std::istream& in, LoadPosition& position) {
  for (std::uint64_t* const member : membersOf(position)) {
    in >> *member;
  }
  return in;
}

}  // namespace

LedgerFile::LedgerFile(const std::string& path, int flags, const std::string& source)
    : file_(std::make_unique<FileDescriptor>(path, flags)),
      source_(std::make_unique<FileDescriptor>(source, O_RDONLY)) {}

LedgerFile LedgerFile::create(const std::string& path, const std::string& source,
                              const Identity& identity, const LoadPosition& start) {
  if (std::filesystem::exists(path)) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("{}: there is a ledger of an earlier load; --resume goes on with it, "
                              "without it the file has to go first",
                              path));
  }
  const std::string draft = fmt::format("{}.{}.part", path, getpid());
  LedgerFile ledger(draft, O_RDWR | O_CREAT | O_TRUNC, source);
  const std::string head = headOf(identity);
  ledger.file_->lock();
  ledger.file_->append(head);
  ledger.slotsAt_ = head.size();
  ledger.reach(start);
  ledger.write();  // both places
  ledger.file_->rename(path);
  return ledger;
}

LedgerFile LedgerFile::open(const std::string& path, const std::string& source,
                            const Identity& identity) {
  LedgerFile ledger(path, O_RDWR, source);
  if (!ledger.file_->lock()) {
    throw Failure(ExitCode::kUsage, fmt::format("{}: another load is using the ledger", path));
  }
  ledger.check(path, identity);
  return ledger;
}

void LedgerFile::check(const std::string& path, const Identity& identity) {
  const auto fail = [&](const std::string& reason) {
    throw Failure(ExitCode::kUsage, fmt::format("{}: {}", path, reason));
  };
  const std::uint64_t size = file_->sizeBytes();
  if (size < (kSlots + 1) * kSlotBytes || size > kMaxHeadBytes) {
    fail("this is no ledger of a load");
  }
  slotsAt_ = size - kSlots * kSlotBytes;
  auto has = linesFrom(file_->read(0, slotsAt_));
  if (has.empty() || has.front() != kTitle) {
    fail("this is no ledger of a load");
  }
  has.erase(has.begin());
  checkLines(path, has, identity);
  bool found = false;
  for (std::size_t slot = 0; slot < kSlots; ++slot) {
    found |= readSlot(file_->read(slotsAt_ + slot * kSlotBytes, kSlotBytes));
  }
  if (!found) {
    fail("the ledger is damaged");
  }
  if (tailSum() != readTailSum_) {
    fail(fmt::format("what the earlier load has read, to line {}, is another text now",
                     state_.reached.line));
  }
}

void LedgerFile::reach(const LoadPosition& reached) {
  state_.reached = reached;
  state_.intent.reset();
  write();
}

void LedgerFile::intend(Session& /*session*/, const Intent& intent) {
  state_.intent = intent;
  write();
}

void LedgerFile::complete(Session& /*session*/) {
  state_.complete = true;
  write();
}

void LedgerFile::write() {
  ++number_;
  file_->write(slotsAt_ + number_ % kSlots * kSlotBytes, slotText());
  file_->sync();
}

std::uint64_t LedgerFile::tailSum() const {
  const std::uint64_t end = state_.reached.byte;
  const std::uint64_t start = end - std::min<std::uint64_t>(end, kTailBytes);
  return ledgerSum(source_->read(start, end - start));
}

std::string LedgerFile::slotText() const {
  std::string text = fmt::format("{} {} {}", number_, state_.complete ? 1 : 0, tailSum());
  appendPosition(text, state_.reached);
  const Intent intent = state_.intent.value_or(Intent());
  text += fmt::format(" {} {} {}", intent.rows, intent.firstLine, intent.lastLine);
  appendPosition(text, intent.to);
  text += fmt::format(" {}", ledgerSum(text));
  text.resize(kSlotBytes - 1, ' ');
  return text + '\n';
}

// Takes over what the place says when it is whole and newer than what is known.
bool LedgerFile::readSlot(const std::string& text) {
  const std::size_t end = text.find_last_not_of(" \n") + 1;
  const std::size_t blank = text.rfind(' ', end - std::min<std::size_t>(end, 1));
  if (end == 0 || blank == std::string::npos ||
      text.substr(blank + 1, end - blank - 1) != std::to_string(ledgerSum(text.substr(0, blank)))) {
    return false;
  }
  std::istringstream in(text);
  std::uint64_t number = 0;
  std::uint64_t tail = 0;
  State state;
  Intent intent;
  in >> number >> state.complete >> tail >> state.reached >> intent.rows >> intent.firstLine >>
      intent.lastLine >> intent.to;
  if (in && number > number_) {
    number_ = number;
    readTailSum_ = tail;
    state_ = state;
    if (intent.rows > 0) {
      state_.intent = intent;
    }
  }
  return static_cast<bool>(in);
}

}  // namespace zeldb
