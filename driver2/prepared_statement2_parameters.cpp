// Binding and execution of PreparedStatement2Odbc.

#include "datatypes/data_types.h"
#include "driver2/boundary.h"
#include "driver2/db_error2_odbc.h"
#include "driver2/packed_binary.h"
#include "driver2/prepared_statement2_odbc.h"
#include "host/row_internal2.h"

namespace KORVEX::Zel::DB::ODBC {

using DataTypes::DataValue;

SQLLEN glen = 0;
std::mutex PreparedStatement2Odbc::m_mx;

// Kept: a 16-bit integer has no entry and is bound with C type 0.
const std::array<std::pair<unsigned int, SQLSMALLINT>, 28>
    PreparedStatement2Odbc::s_zelToSqlTypeMap = {{
        {DataTypes::kInteger, SQL_C_SLONG},
        {DataTypes::kLong, SQL_C_SBIGINT},
        {DataTypes::kFloat, SQL_C_DOUBLE},
        {DataTypes::kDate, SQL_C_TYPE_TIMESTAMP},
        {DataTypes::kString, SQL_C_CHAR},
        {DataTypes::kMoney, SQL_C_CHAR},
        {DataTypes::kTimestamp, SQL_C_TYPE_TIMESTAMP},
        {DataTypes::kBoolean, SQL_C_BIT},
        {11, SQL_C_CHAR},
        {12, SQL_C_CHAR},
        {13, SQL_C_CHAR},
        {14, SQL_C_CHAR},
        {15, SQL_C_CHAR},
        {16, SQL_C_CHAR},
        {17, SQL_C_CHAR},
        {18, SQL_C_CHAR},
        {19, SQL_C_CHAR},
        {20, SQL_C_CHAR},
        {21, SQL_C_CHAR},
        {22, SQL_C_CHAR},
        {23, SQL_C_CHAR},
        {24, SQL_C_CHAR},
        {25, SQL_C_CHAR},
        {DataTypes::kInterval, SQL_C_SBIGINT},
        {DataTypes::kBigDateTime, SQL_C_TYPE_TIMESTAMP},
        {DataTypes::kBinary, SQL_C_BINARY},
        {DataTypes::kTime, SQL_C_TYPE_TIME},
        {DataTypes::kFixedDecimal, SQL_C_CHAR},
    }};

const std::array<unsigned int, 16> PreparedStatement2Odbc::s_moneyPrecisionMapping = {
    DataTypes::kLong, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25};

namespace {

// The length, most significant byte first, and the bytes.
std::vector<unsigned char> packedBinary(const DataTypes::BinaryValue& bytes) {
  std::vector<unsigned char> packed;
  packed.reserve(kPackedLengthBytes + bytes.length);
  packed.resize(kPackedLengthBytes);
  storePackedLength(packed.data(), bytes.length);
  packed.insert(packed.end(), bytes.data, bytes.data + bytes.length);
  return packed;
}

}  // namespace

int PreparedStatement2Odbc::setBindings(std::vector<int>& columns, const unsigned int* types,
                                        DBError* error) {
  if (columns.size() != parameters_.size()) return failAccess(error, "Invalid number of columns");
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    parameters_[i].rowColumn = columns[i];
    parameters_[i].valueType = types[i];
  }
  bound_ = true;
  return 0;
}

int PreparedStatement2Odbc::bindParameter(std::size_t index, const void* value, unsigned int& type,
                                          DBError* error) {
  const DATA_XFER_SETTINGS& parameter = parameters_[index];
  ParameterScratch& scratch = scratch_[policy_.ownIndicators ? index : 0];
  SQLLEN& indicator = policy_.ownIndicators ? scratch.indicator : glen;
  BoundValue bound;
  SQLULEN columnSize = parameter.columnSize;
  if (value == nullptr) {
    columnSize = 1;
    indicator = SQL_NULL_DATA;
  } else {
    if (convertParameter(value, type, scratch, bound, error) != 0) return -1;
    indicator = bound.lengthBytes;
  }
  const SQLRETURN rc =
      SQLBindParameter(stmt_, static_cast<SQLUSMALLINT>(index + 1), SQL_PARAM_INPUT,
                       policy_.boundCType(type), parameter.sqlType, columnSize,
                       parameter.decimalDigits, bound.data, bound.lengthBytes, &indicator);
  return check(rc, error);
}

int PreparedStatement2Odbc::run(DBError* error) {
  const SQLRETURN rc = SQLExecute(stmt_);
  if (!policy_.executed(rc)) return failOdbc(error, SQL_HANDLE_STMT, stmt_, rc);
  resultSet_ = -1;
  executed_ = true;
  return 0;
}

int PreparedStatement2Odbc::closeCursor(DBError* error) {
  if (!policy_.closesCursor || !executed_ || columns_.empty()) return 0;
  executed_ = false;
  return check(SQLFreeStmt(stmt_, SQL_CLOSE), error);
}

// Binds every cell; bytes get a packed copy that must last until the execution is over.
int PreparedStatement2Odbc::bindValues(std::vector<DataValue>& values,
                                       std::vector<unsigned int>& types,
                                       std::vector<std::vector<unsigned char>>& packed,
                                       DBError* error) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const void* value = &values[i];
    const unsigned int number = DataTypes::typeNumber(types[i]);
    if (policy_.nullFlagsCount && values[i].isNull()) {
      value = nullptr;
    } else if (number == DataTypes::kString) {
      value = values[i].string;
    } else if (number == DataTypes::kBinary) {
      value = packed.emplace_back(packedBinary(values[i].binary)).data();
    }
    if (bindParameter(i, value, types[i], error) != 0) {
      close(nullptr);
      return -1;
    }
  }
  return 0;
}

int PreparedStatement2Odbc::execute(std::vector<DataValue>& values,
                                    std::vector<unsigned int>& types, DBError* error) {
  return guardedAccess(error, [&] {
    const std::lock_guard lock(m_mx);
    if (bound_ && close(error) != 0) return -1;
    if (closeCursor(error) != 0) return -1;
    if (values.size() != parameters_.size() || types.size() < values.size()) {
      return failAccess(error, "param count mismatch");
    }
    std::vector<std::vector<unsigned char>> packed;
    packed.reserve(values.size());
    if (bindValues(values, types, packed, error) != 0) return -1;
    bound_ = true;
    return run(error);
  });
}

int PreparedStatement2Odbc::execute(const RowInternal2* row, DBError* error) {
  return guardedAccess(error, [&] {
    if (!bound_) return failAccess(error, "No param binding in effect");
    if (closeCursor(error) != 0) return -1;
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      const auto column = static_cast<std::size_t>(parameters_[i].rowColumn);
      if (bindParameter(i, row->value(column), parameters_[i].valueType, error) != 0) {
        close(nullptr);
        return -1;
      }
    }
    return run(error);
  });
}

int PreparedStatement2Odbc::execute(const RowInternal2** /*rows*/, DBError* error) {
  return failAccess(error, "not implemented");
}

int PreparedStatement2Odbc::execute(DBError* error) {
  if (!parameters_.empty() && !bound_) return failAccess(error, "unbound parameter(s)");
  if (closeCursor(error) != 0) return -1;
  return run(error);
}

}  // namespace KORVEX::Zel::DB::ODBC
