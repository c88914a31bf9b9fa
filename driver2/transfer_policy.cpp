#include "driver2/transfer_policy.h"

#include <sqlext.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "datatypes/data_types.h"
#include "driver2/prepared_statement2_odbc.h"
#include "driver2/transfer_tables.h"

namespace KORVEX::Zel::DB::ODBC {

namespace {

using Statement = PreparedStatement2Odbc;

struct RoutineRow {
  SQLSMALLINT fetchAs;
  FetchRoutine plain;
  FetchRoutine safe;
};

// Fixed-size values are fetched alike in both modes; the return code is judged by the policy.
constexpr RoutineRow kRoutines[] = {
    {SQL_C_SSHORT, &Statement::getDataColumn<SQL_C_SSHORT>,
     &Statement::getDataColumn<SQL_C_SSHORT>},
    {SQL_C_SLONG, &Statement::getDataColumn<SQL_C_SLONG>, &Statement::getDataColumn<SQL_C_SLONG>},
    {SQL_C_SBIGINT, &Statement::getDataColumn<SQL_C_SBIGINT>,
     &Statement::getDataColumn<SQL_C_SBIGINT>},
    {SQL_C_DOUBLE, &Statement::getDataColumn<SQL_C_DOUBLE>,
     &Statement::getDataColumn<SQL_C_DOUBLE>},
    {SQL_C_BIT, &Statement::getDataColumn<SQL_C_BIT>, &Statement::getDataColumn<SQL_C_BIT>},
    {SQL_C_TYPE_TIMESTAMP, &Statement::getDataColumn<SQL_C_TYPE_TIMESTAMP>,
     &Statement::getDataColumn<SQL_C_TYPE_TIMESTAMP>},
    {SQL_C_TYPE_DATE, &Statement::getDataColumn<SQL_C_TYPE_DATE>,
     &Statement::getDataColumn<SQL_C_TYPE_DATE>},
    {kNumericText, &Statement::getDataColumn<kNumericText>, &Statement::getWholeNumericText},
    {SQL_C_CHAR, &Statement::getDataColumn<SQL_C_CHAR>, &Statement::getWholeText},
    {SQL_C_BINARY, &Statement::getDataColumn<SQL_C_BINARY>, &Statement::getWholeBinary},
};

template <FetchRoutine RoutineRow::* Mode>
FetchRoutine routineFor(SQLSMALLINT fetchAs) {
  const auto* row = std::ranges::find(kRoutines, fetchAs, &RoutineRow::fetchAs);
  return row == std::end(kRoutines) ? nullptr : row->*Mode;
}

bool onlySuccess(SQLRETURN rc) {
  return rc == SQL_SUCCESS;
}

bool successOrInfo(SQLRETURN rc) {
  return SQL_SUCCEEDED(rc);
}

// An UPDATE or DELETE that hits no row is no failure.
bool successOrNoRows(SQLRETURN rc) {
  return SQL_SUCCEEDED(rc) || rc == SQL_NO_DATA;
}

// The map of C types by type number. Kept: a type without an entry (16-bit integers among them) is
// bound with C type 0.
const auto kMappedCTypes = [] {
  std::array<SQLSMALLINT, DataTypes::kTypeCount> cTypes{};
  for (const auto& [number, cType] : Statement::s_zelToSqlTypeMap) cTypes[number] = cType;
  return cTypes;
}();

SQLSMALLINT mappedCType(unsigned int typeCode) {
  const unsigned int number = DataTypes::typeNumber(typeCode);
  return number < kMappedCTypes.size() ? kMappedCTypes[number] : SQLSMALLINT{0};
}

SQLSMALLINT everyCType(unsigned int typeCode) {
  return DataTypes::typeNumber(typeCode) == DataTypes::kInt16 ? SQLSMALLINT{SQL_C_SSHORT}
                                                              : mappedCType(typeCode);
}

SQLSMALLINT everyFetchType(unsigned int typeCode) {
  return DataTypes::typeNumber(typeCode) == DataTypes::kInt16 ? SQLSMALLINT{SQL_C_SSHORT}
                                                              : fetchTypeFor(typeCode);
}

}  // namespace

const TransferPolicy kPlainTransfer = {
    .succeeded = onlySuccess,
    .executed = onlySuccess,
    .boundCType = mappedCType,
    .fetchTypeFor = fetchTypeFor,
    .routineFor = routineFor<&RoutineRow::plain>,
    .secondsOf = DataTypes::tm2sec,
    .ownIndicators = false,
    .nullFlagsCount = false,
    .closesCursor = false,
    .closesBeforeDisconnect = false,
    .asksBeforeCommit = false,
};

const TransferPolicy kSafeTransfer = {
    .succeeded = successOrInfo,
    .executed = successOrNoRows,
    .boundCType = everyCType,
    .fetchTypeFor = everyFetchType,
    .routineFor = routineFor<&RoutineRow::safe>,
    .secondsOf = DataTypes::tm2secUtc,
    .ownIndicators = true,
    .nullFlagsCount = true,
    .closesCursor = true,
    .closesBeforeDisconnect = true,
    .asksBeforeCommit = true,
};

}  // namespace KORVEX::Zel::DB::ODBC
