// A damaged ledger of a load: refused, or it tells the position that one of its places holds.

#include "tests/fuzz/memory_file.h"
#include "zeldb/failure.h"
#include "zeldb/ledger_file.h"

namespace {

constexpr zeldb::LoadPosition kStart = {.byte = 10, .line = 2};
constexpr zeldb::LoadPosition kReached = {.byte = 40, .line = 5, .committed = 3};

// A ledger that has come from one position to another, its places in that order.
std::string wholeLedger(const std::string& path, const std::string& source) {
  zeldb::LedgerFile::create(path, source, {{"table", "t"}}, kStart).reach(kReached);
  std::string text(std::size_t{1} << 16, '\0');
  const int descriptor = open(path.c_str(), O_RDONLY);
  const ssize_t length = read(descriptor, text.data(), text.size());
  close(descriptor);
  require(length > 0);
  text.resize(static_cast<std::size_t>(length));
  unlink(path.c_str());
  return text;
}

}  // namespace

// The input is a list of changes: where (2 bytes), what becomes of the byte there.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static MemoryFile file;
  static MemoryFile source;
  static const std::string whole = [] {
    source.write("a,b\n1,2\n3,4\n5,6\n7,8\n9,10\n11,12\n13,14\n15,16\n");
    return wholeLedger("/tmp/ledger_fuzz." + std::to_string(getpid()), source.path());
  }();
  std::string text = whole;
  FuzzInput input(data, size);
  for (std::size_t changes = size / 3; changes > 0; --changes) {
    const auto at = input.number<std::uint16_t>();
    const auto byte = static_cast<char>(input.byte());
    if (at == 0xFFFF) {
      text.resize(text.size() * static_cast<unsigned char>(byte) / 255);
    } else if (!text.empty()) {
      text[at % text.size()] = byte;
    }
  }
  file.write(text);
  try {
    const auto ledger = zeldb::LedgerFile::open(file.path(), source.path(), {{"table", "t"}});
    const zeldb::LoadPosition& reached = ledger.state().reached;
    require(reached == kStart || reached == kReached);
    require(!(text == whole) || reached == kReached);
  } catch (const zeldb::Failure& failure) {
    require(failure.what()[0] != '\0' && text != whole);
  }
  return 0;
}
