#include "zeldb/ledger_table.h"

#include <fmt/format.h>

#include <array>
#include <charconv>

#include "datatypes/type_code.h"
#include "zeldb/failure.h"
#include "zeldb/sql_type_name.h"
#include "zeldb/value_text.h"

namespace zeldb {
namespace {

struct PositionColumn {
  const char* name;
  std::uint64_t LoadPosition::* member;
};

constexpr std::array<PositionColumn, 5> kColumns = {{
    {"at_byte", &LoadPosition::byte},
    {"at_line", &LoadPosition::line},
    {"committed_rows", &LoadPosition::committed},
    {"rejected_rows", &LoadPosition::rejected},
    {"rejects_bytes", &LoadPosition::rejectsBytes},
}};

std::uint64_t numberFrom(const std::string& digits) {
  std::uint64_t value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

// "a, b" or "a = ?, b = ?", of all columns of a position.
std::string columnList(std::string_view behind) {
  std::string list;
  for (const PositionColumn& column : kColumns) {
    list += fmt::format("{}{}{}", list.empty() ? "" : ", ", column.name, behind);
  }
  return list;
}

bool exists(FirstGenerationSession& session, const std::string& table) {
  try {
    session.query(fmt::format("select at_byte from {} where 1 = 0", table), {});
    return true;
  } catch (const Failure& failure) {
    if (failure.exitCode() != ExitCode::kSql) {
      throw;
    }
    session.rollback();
    return false;
  }
}

}  // namespace

LedgerTable::LedgerTable(FirstGenerationSession& session, const ProductTraits& product,
                         std::string table, const std::string& loadName)
    : table_(std::move(table)), key_(fmt::format("{:016x}", ledgerSum(loadName))) {
  if (!exists(session, table_)) {
    session.update(
        fmt::format("create table {} (load_key {} not null primary key, load_identity {}, {}, "
                    "complete {})",
                    table_, sqlTypeName(DataTypes::kString, product, true),
                    sqlTypeName(DataTypes::kString, product, false), columnList(" bigint"),
                    sqlTypeName(DataTypes::kInteger, product, false)),
        {});
    session.commit();
  }
  if (read(session, inTable_)) {
    state_.reached = inTable_;
  }
  session.rollback();
}

void LedgerTable::start(FirstGenerationSession& session, const Identity& identity,
                        const LoadPosition& start) {
  identity_ = fmt::format("{}", fmt::join(linesOf(identity), "\n"));
  state_.reached = inTable_ = start;
  Parameters parameters = {textParameter(key_), textParameter(identity_)};
  for (const PositionColumn& column : kColumns) {
    parameters.push_back(longParameter(start.*column.member));
  }
  session.update(fmt::format("insert into {} (load_key, load_identity, {}, complete) "
                             "values (?, ?, ?, ?, ?, ?, ?, 0)",
                             table_, columnList("")),
                 parameters);
  session.commit();
}

void LedgerTable::check(const Identity& identity) const {
  checkLines(table_, linesFrom(identity_), identity);
}

void LedgerTable::intend(Session& session, const Intent& intent) {
  update(session, intent.to, false);
  state_.intent = intent;
}

void LedgerTable::complete(Session& session) {
  update(session, state_.reached, true);
  session.commit();
  state_.complete = true;
}

// Rows that are only named as bad move the place without a commit.
void LedgerTable::reach(const LoadPosition& reached) {
  if (state_.intent && state_.intent->to == reached) {
    inTable_ = reached;
  }
  state_.intent.reset();
  state_.reached = reached;
}

std::optional<bool> LedgerTable::isCommitted(Session& session) {
  LoadPosition there;
  return read(session, there) && state_.intent && there == state_.intent->to;
}

bool LedgerTable::read(Session& session, LoadPosition& position) {
  const auto rows =
      session.query(fmt::format("select load_identity, complete, {} from {} where load_key = ?",
                                columnList(""), table_),
                    {textParameter(key_)});
  const auto* const row = rows->next();
  if (row == nullptr) {
    return false;
  }
  const auto field = [&](std::size_t at) {
    return valueText(rows->columns()[at].type, (*row)[at]);
  };
  identity_ = field(0);
  state_.complete = field(1) == "1";
  for (std::size_t at = 0; at < kColumns.size(); ++at) {
    position.*kColumns[at].member = numberFrom(field(at + 2));
  }
  return true;
}

// What an earlier load left on its way to the database may arrive after the place has been read:
// its row is then not the one that is looked for.
void LedgerTable::update(Session& session, const LoadPosition& position, bool complete) {
  Parameters parameters;
  for (const PositionColumn& column : kColumns) {
    parameters.push_back(longParameter(position.*column.member));
  }
  parameters.push_back(longParameter(complete ? 1 : 0));
  parameters.push_back(textParameter(key_));
  parameters.push_back(longParameter(inTable_.byte));
  const std::int64_t rows =
      session.update(fmt::format("update {} set {}, complete = ? where load_key = ? and "
                                 "at_byte = ?",
                                 table_, columnList(" = ?")),
                     parameters);
  LoadPosition there;
  if (rows == 0 || (rows < 0 && !(read(session, there) && there == position))) {
    throw Failure(
        ExitCode::kUsage,
        fmt::format("{}: another load has moved the ledger; --resume looks again", table_));
  }
}

}  // namespace zeldb
