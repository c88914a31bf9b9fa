#include "zeldb/diagnostic.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace zeldb {
namespace {

struct StateClass {
  std::string_view prefix;
  ExitCode code;
};

// The first row whose prefix fits holds.
constexpr std::array<StateClass, 4> kStateClasses = {{
    {"IM", ExitCode::kConnect},
    {"08", ExitCode::kConnect},
    {"28", ExitCode::kConnect},
    {"HYT", ExitCode::kTimeout},
}};

// Takes "[part]" from the front of the text.
std::optional<std::string_view> takeBracketed(std::string_view& text) {
  const std::size_t end = text.find(']');
  if (!text.starts_with('[') || end == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view part = text.substr(1, end - 1);
  text.remove_prefix(end + 1);
  return part;
}

}  // namespace

std::optional<Diagnostic> Diagnostic::parse(std::string_view text) {
  const auto state = takeBracketed(text);
  const auto native = state ? takeBracketed(text) : std::nullopt;
  if (!native || state->size() != 5 || !text.starts_with('[')) {
    return std::nullopt;
  }
  text.remove_prefix(1);
  // The message may hold brackets itself; only the last one closes it.
  const std::size_t end = text.rfind(']');
  Diagnostic diagnostic{std::string(*state), std::string(*native),
                        std::string(text.substr(0, end))};
  std::replace(diagnostic.message.begin(), diagnostic.message.end(), '\n', ' ');
  return diagnostic;
}

std::optional<Diagnostic> Diagnostic::fromRecord(std::string_view text, int native) {
  const auto returnCode = takeBracketed(text);
  const auto state = returnCode ? takeBracketed(text) : std::nullopt;
  if (!state || state->size() != 5) {
    return std::nullopt;
  }
  Diagnostic diagnostic{std::string(*state), std::to_string(native), std::string(text)};
  std::replace(diagnostic.message.begin(), diagnostic.message.end(), '\n', ' ');
  return diagnostic;
}

ExitCode Diagnostic::exitCode() const {
  const auto* const row = std::find_if(
      kStateClasses.begin(), kStateClasses.end(),
      [&](const StateClass& candidate) { return state.starts_with(candidate.prefix); });
  return row != kStateClasses.end() ? row->code : ExitCode::kSql;
}

std::string Diagnostic::toString() const {
  return fmt::format("{} (SQLSTATE {}, native {})", message, state, native);
}

}  // namespace zeldb
