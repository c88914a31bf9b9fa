#include "zeldb/ledger.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <sstream>

#include "zeldb/failure.h"
#include "zeldb/file_descriptor.h"

namespace zeldb {
namespace {

constexpr std::size_t kStartBytes = 65536;  // of a file, summed

// One line, whatever the text is.
std::string escaped(const std::string& text) {
  std::string out;
  for (const char character : text) {
    out += character == '\\' ? "\\\\" : character == '\n' ? "\\n" : std::string(1, character);
  }
  return out;
}

}  // namespace

// FNV-1a.
std::uint64_t ledgerSum(std::string_view text) {
  std::uint64_t sum = 0xcbf29ce484222325;
  for (const char character : text) {
    sum = (sum ^ static_cast<unsigned char>(character)) * 0x100000001b3;
  }
  return sum;
}

Ledger::Identity Ledger::identityOf(const std::string& source) {
  const FileDescriptor file(source, O_RDONLY);
  if (!file.isRegular()) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("{}: only the load of a file can be resumed", source));
  }
  return {{"size of the file", std::to_string(file.sizeBytes())},
          {"start of the file", fmt::format("{:016x}", ledgerSum(file.read(0, kStartBytes)))}};
}

std::vector<std::string> Ledger::linesOf(const Identity& identity) {
  std::vector<std::string> lines;
  for (const auto& [name, value] : identity) {
    lines.push_back(fmt::format("{}: {}", name, escaped(value)));
  }
  return lines;
}

std::vector<std::string> Ledger::linesFrom(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

void Ledger::checkLines(const std::string& name, const std::vector<std::string>& has,
                        const Identity& wanted) {
  const auto lines = linesOf(wanted);
  for (std::size_t at = 0; at < lines.size(); ++at) {
    if (at >= has.size() || has[at] != lines[at]) {
      throw Failure(
          ExitCode::kUsage,
          fmt::format("{}: this is the ledger of another load, which had \"{}\" and not \"{}\"",
                      name, at < has.size() ? has[at] : std::string(), lines[at]));
    }
  }
}

}  // namespace zeldb
