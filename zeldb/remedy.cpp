#include "zeldb/remedy.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "zeldb/diagnostic.h"
#include "zeldb/remedy_table.h"

namespace zeldb {
namespace {

constexpr std::string_view kStateMark = " (SQLSTATE ";
constexpr std::string_view kNativeMark = ", native ";

struct Codes {
  std::string_view state;
  int native = 0;
};

// Takes the end of Diagnostic::toString() apart again.
std::optional<Codes> codesOf(std::string_view failure) {
  const std::size_t mark = failure.rfind(kStateMark);
  const std::size_t comma = failure.rfind(kNativeMark);
  if (mark == std::string_view::npos || comma == std::string_view::npos || comma < mark) {
    return std::nullopt;
  }
  const std::size_t begin = mark + kStateMark.size();
  Codes codes{failure.substr(begin, comma - begin)};
  const std::string_view number = failure.substr(comma + kNativeMark.size());
  std::from_chars(number.data(), number.data() + number.size(), codes.native);
  return codes;
}

// The driver that has left its mark in the message, or kAny.
DriverKind kindOf(std::string_view failure) {
  for (const OdbcDriver& driver : kOdbcDrivers) {
    if (!driver.messageMark.empty() && failure.find(driver.messageMark) != std::string_view::npos) {
      return driver.kind;
    }
  }
  return DriverKind::kAny;
}

std::string filled(std::string_view text, const RemedyNames& names) {
  return fmt::format(fmt::runtime(text), fmt::arg("dsn", names.dsn), fmt::arg("user", names.user),
                     fmt::arg("database", names.database), fmt::arg("server", names.server),
                     fmt::arg("section", names.section), fmt::arg("services", names.services));
}

}  // namespace

std::optional<Advice> adviceFor(DriverKind kind, std::string_view failure,
                                const RemedyNames& names) {
  const auto codes = codesOf(failure);
  if (!codes) {
    return std::nullopt;
  }
  if (kind == DriverKind::kAny) {
    kind = kindOf(failure);
  }
  const auto fits = [&](const Remedy& row) {
    // Of a driver unknown, a telling message makes up for its name.
    const bool ofThisDriver = row.kind == DriverKind::kAny || row.kind == kind ||
                              (kind == DriverKind::kAny && !row.message.empty());
    return ofThisDriver && codes->state.starts_with(row.state) &&
           (row.native == 0 || row.native == codes->native) &&
           failure.find(row.message) != std::string_view::npos;
  };
  const auto* const row = std::find_if(kRemedies.begin(), kRemedies.end(), fits);
  return Advice{filled(row->cause, names), filled(row->remedy, names)};
}

}  // namespace zeldb
