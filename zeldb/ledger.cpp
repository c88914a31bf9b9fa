#include "zeldb/ledger.h"

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
constexpr std::size_t kStartBytes = 65536;  // of a file, summed
constexpr std::size_t kTailBytes = 4096;

// FNV-1a, 64 bits.
std::uint64_t sumOf(std::string_view text) {
  std::uint64_t sum = 0xcbf29ce484222325;
  for (const char character : text) {
    sum = (sum ^ static_cast<unsigned char>(character)) * 0x100000001b3;
  }
  return sum;
}

// One line, whatever the text is.
std::string escaped(const std::string& text) {
  std::string out;
  for (const char character : text) {
    out += character == '\\' ? "\\\\" : character == '\n' ? "\\n" : std::string(1, character);
  }
  return out;
}

std::string headOf(const Ledger::Identity& identity) {
  std::string head(kTitle);
  head += '\n';
  for (const auto& [name, value] : identity) {
    head += fmt::format("{}: {}\n", name, escaped(value));
  }
  const std::size_t length = (head.size() + kSlotBytes) / kSlotBytes * kSlotBytes;
  head.resize(length - 1, ' ');
  return head + '\n';
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
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

Ledger::Ledger(const std::string& path, int flags, const std::string& source)
    : file_(std::make_unique<FileDescriptor>(path, flags)),
      source_(std::make_unique<FileDescriptor>(source, O_RDONLY)) {}

Ledger Ledger::create(const std::string& path, const std::string& source, const Identity& identity,
                      const LoadPosition& start) {
  if (std::filesystem::exists(path)) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("{}: there is a ledger of an earlier load; --resume goes on with it, "
                              "without it the file has to go first",
                              path));
  }
  const std::string draft = fmt::format("{}.{}.part", path, getpid());
  Ledger ledger(draft, O_RDWR | O_CREAT | O_TRUNC, source);
  const std::string head = headOf(identity);
  ledger.file_->lock();
  ledger.file_->append(head);
  ledger.slotsAt_ = head.size();
  ledger.reach(start);
  ledger.write();  // both places
  ledger.file_->rename(path);
  return ledger;
}

Ledger Ledger::open(const std::string& path, const std::string& source, const Identity& identity) {
  Ledger ledger(path, O_RDWR, source);
  if (!ledger.file_->lock()) {
    throw Failure(ExitCode::kUsage, fmt::format("{}: another load is using the ledger", path));
  }
  ledger.check(path, identity);
  return ledger;
}

Ledger::Identity Ledger::identityOf(const std::string& source) {
  const FileDescriptor file(source, O_RDONLY);
  if (!file.isRegular()) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("{}: only the load of a file can be resumed", source));
  }
  return {{"size of the file", std::to_string(file.sizeBytes())},
          {"start of the file", fmt::format("{:016x}", sumOf(file.read(0, kStartBytes)))}};
}

void Ledger::check(const std::string& path, const Identity& identity) {
  const auto fail = [&](const std::string& reason) {
    throw Failure(ExitCode::kUsage, fmt::format("{}: {}", path, reason));
  };
  const std::uint64_t size = file_->sizeBytes();
  if (size < (kSlots + 1) * kSlotBytes || size > kMaxHeadBytes) {
    fail("this is no ledger of a load");
  }
  slotsAt_ = size - kSlots * kSlotBytes;
  const auto has = linesOf(file_->read(0, slotsAt_));
  const auto wanted = linesOf(headOf(identity));
  if (has.empty() || has.front() != kTitle) {
    fail("this is no ledger of a load");
  }
  for (std::size_t at = 0; at < wanted.size(); ++at) {
    if (at >= has.size() || has[at] != wanted[at]) {
      fail(fmt::format("this is the ledger of another load, which had \"{}\" and not \"{}\"",
                       at < has.size() ? has[at] : std::string(), wanted[at]));
    }
  }
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

void Ledger::reach(const LoadPosition& reached) {
  state_.reached = reached;
  state_.intent.reset();
  write();
}

void Ledger::intend(const Intent& intent) {
  state_.intent = intent;
  write();
}

void Ledger::complete() {
  state_.complete = true;
  write();
}

void Ledger::write() {
  ++number_;
  file_->write(slotsAt_ + number_ % kSlots * kSlotBytes, slotText());
  file_->sync();
}

std::uint64_t Ledger::tailSum() const {
  const std::uint64_t end = state_.reached.byte;
  const std::uint64_t start = end - std::min<std::uint64_t>(end, kTailBytes);
  return sumOf(source_->read(start, end - start));
}

std::string Ledger::slotText() const {
  std::string text = fmt::format("{} {} {}", number_, state_.complete ? 1 : 0, tailSum());
  appendPosition(text, state_.reached);
  const Intent intent = state_.intent.value_or(Intent());
  text += fmt::format(" {} {} {}", intent.rows, intent.firstLine, intent.lastLine);
  appendPosition(text, intent.to);
  text += fmt::format(" {}", sumOf(text));
  text.resize(kSlotBytes - 1, ' ');
  return text + '\n';
}

// Takes over what the place says when it is whole and newer than what is known.
bool Ledger::readSlot(const std::string& text) {
  const std::size_t end = text.find_last_not_of(" \n") + 1;
  const std::size_t blank = text.rfind(' ', end - std::min<std::size_t>(end, 1));
  if (end == 0 || blank == std::string::npos ||
      text.substr(blank + 1, end - blank - 1) != std::to_string(sumOf(text.substr(0, blank)))) {
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
