#include "zeldb/ledger_table.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <sstream>

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

KORVEX::Zel::DB::Parameter number(std::uint64_t value) {
  KORVEX::Zel::DB::Parameter parameter{};
  parameter.type = DataTypes::kLong;
  parameter.value.int64 = static_cast<std::int64_t>(value);
  return parameter;
}

KORVEX::Zel::DB::Parameter text(const std::string& value) {
  KORVEX::Zel::DB::Parameter parameter{};
  parameter.type = DataTypes::kString;
  parameter.value.string = value.c_str();
  return parameter;
}

std::uint64_t numberFrom(const std::string& digits) {
  std::uint64_t value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

std::vector<std::string> linesOfText(const std::string& lines) {
  std::vector<std::string> out;
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) {
    out.push_back(line);
  }
  return out;
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
  Parameters parameters = {text(key_), text(identity_)};
  for (const PositionColumn& column : kColumns) {
    parameters.push_back(number(start.*column.member));
  }
  session.update(fmt::format("insert into {} (load_key, load_identity, {}, complete) "
                             "values (?, ?, ?, ?, ?, ?, ?, 0)",
                             table_, columnList("")),
                 parameters);
  session.commit();
}

void LedgerTable::check(const Identity& identity) const {
  checkLines(table_, linesOfText(identity_), identity);
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
                    {text(key_)});
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
    parameters.push_back(number(position.*column.member));
  }
  parameters.push_back(number(complete ? 1 : 0));
  parameters.push_back(text(key_));
  parameters.push_back(number(inTable_.byte));
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
