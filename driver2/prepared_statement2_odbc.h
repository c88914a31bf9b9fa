#pragma once

#include <sql.h>
#include <sqlext.h>

#include <array>
#include <cstddef>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/short_number.h"
#include "driver2/malloc_block.h"
#include "driver2/parameter_conversion.h"
#include "driver2/timestamp_structure.h"
#include "driver2/transfer_policy.h"
#include "driver2/transfer_tables.h"
#include "host/prepared_statement.h"

namespace KORVEX::Zel::DB::ODBC {

class Connection2Odbc;

// Kept: the one length or indicator of every parameter of every statement. At execution it holds
// what the last binding put there.
extern SQLLEN glen;

// A prepared statement of the second generation, made by its connection and prepared once. It calls
// ODBC directly, and moves values as its policy says. Operations return 0 or -1 and fill the error
// record when one is given. Nothing throws. One thread at a time.
class PreparedStatement2Odbc final : public PreparedStatement {
 public:
  PreparedStatement2Odbc(Connection2Odbc* connection, const char* sql,
                         const TransferPolicy& policy);
  ~PreparedStatement2Odbc();  // closes and frees the handle and every buffer

  // In slot order.
  int getNumberParameters(int& count, DBError* error) const override;
  int getEffectiveNumberColumns(int& count, DBError* error) const override;
  // `column` must be below the number of columns.
  const char* getColumnName(std::size_t column, DBError* error) const override;
  // Kept: the index that equals the number of columns is accepted, and gives 0.
  int getEffectiveDataType(int column, unsigned int& type, DBError* error) const override;
  int setBindings(std::vector<int>& columns, const unsigned int* types, DBError* error) override;
  int execute(const RowInternal2* row, DBError* error) override;
  int execute(const RowInternal2** rows, DBError* error) override;  // "not implemented"
  // Holds m_mx throughout. Kept: the null flag of a cell is not looked at.
  int execute(std::vector<DataTypes::DataValue>& values, std::vector<unsigned int>& types,
              DBError* error) override;
  int execute(DBError* error) override;
  // Kept: the null flag is set for NULL and not cleared for a value.
  int nextRow(std::vector<DataTypes::DataValue>& row, DBError* error) override;
  const RowInternal2* nextRow(DBError* error) override;
  int hasMoreData(bool& more, DBError* error) override;
  int nextResultSet(bool& more, DBError* error) override;
  int nextCount(int& count, DBError* error) override;  // "not implemented"

  // Prepares the text, describes parameters and columns, and chooses how each column is fetched: as
  // types[i] where `types` is given, as described otherwise. Called once.
  int initialize(int count, const unsigned int* types, DBError* error);
  // Closes the cursor and drops all bindings.
  int close(DBError* error);
  // Forgets the handle without a call: the disconnect has freed it.
  void abandonHandle() { stmt_ = SQL_NULL_HSTMT; }

  // The fetch routine of each transfer (see transfer_tables.h).
  template <SQLSMALLINT C>
  int getDataColumn(std::size_t column, void* destination, int& length, DBError* error);

  // The same for texts, bytes and numbers of any length, also when the driver cannot tell it.
  int getWholeText(std::size_t column, void* destination, int& length, DBError* error);
  int getWholeBinary(std::size_t column, void* destination, int& length, DBError* error);
  int getWholeNumericText(std::size_t column, void* destination, int& length, DBError* error);

  // The C type in which each type number is bound, in the order of the numbers.
  static const std::array<std::pair<unsigned int, SQLSMALLINT>, 28> s_zelToSqlTypeMap;
  // The type number of each money scale from 0.
  static const std::array<unsigned int, 16> s_moneyPrecisionMapping;
  // Serialises execution from value vectors in the whole process.
  static std::mutex m_mx;

 private:
  // How a column is fetched, laid down when the statement is prepared.
  struct ColumnPlan {
    FetchRoutine routine;  // null for a column that is not fetched
    int bufferBytes;       // of a value of fixed size; 0 for texts and bytes, which come in blocks
    bool isText;
    bool isBinary;
    bool isDecimal;
    const DateUnit* dateUnit;  // null for a type that is no date
    // The C type of a value that one call puts where it belongs, or 0. Its routine does just that
    // call, which is then made without the routine.
    SQLSMALLINT inPlaceAs;

    bool comesInBlock() const { return isText || isBinary; }
  };

  // A text or bytes that were read to their end.
  struct WholeValue {
    MallocBlock block;
    std::size_t bytes = 0;
    bool isNull = false;
  };

  // 0 for what the policy takes for success; everything else, with the driver's record, is -1.
  int check(SQLRETURN rc, DBError* error) const {
    return rc == SQL_SUCCESS ? 0 : checkUnusual(rc, error);
  }
  int checkUnusual(SQLRETURN rc, DBError* error) const;
  int describeParameters(DBError* error);
  int describeColumn(SQLUSMALLINT number, std::vector<SQLCHAR>& name, DBError* error);
  int describeColumns(std::size_t count, DBError* error);
  void addColumn(unsigned int type, SQLSMALLINT fetchAs);
  void processZelTypes(int count, const unsigned int* types);
  void createZelDataTypes();
  int bindParameter(std::size_t index, const void* value, unsigned int& type, DBError* error);
  int bindValues(std::vector<DataTypes::DataValue>& values, std::vector<unsigned int>& types,
                 std::vector<std::vector<unsigned char>>& packed, DBError* error);
  int closeCursor(DBError* error);
  int run(DBError* error);
  SQLRETURN getData(std::size_t column, SQLSMALLINT cType, void* destination, SQLLEN size,
                    SQLLEN& indicator) {
    return SQLGetData(stmt_, static_cast<SQLUSMALLINT>(column + 1), cType, destination, size,
                      &indicator);
  }
  bool parseShortNumber(std::size_t column, const char* text, SQLLEN reported, SQLLEN textBytes,
                        void* destination, int& length) const;
  int parseNumber(std::size_t column, const char* text, void* destination, int& length,
                  DBError* error) const;
  int readWhole(std::size_t column, SQLSMALLINT cType, std::size_t headBytes, WholeValue& value,
                DBError* error);
  int getFixed(std::size_t column, SQLSMALLINT cType, void* destination, int& length,
               DBError* error);
  int fetchValue(std::size_t column, const ColumnPlan& plan, void* destination, int& length,
                 DBError* error);
  int fetchBytesIntoCell(std::size_t column, DataTypes::DataValue& cell, int& length,
                         DBError* error);
  RowInternal2* packValues(std::size_t totalBytes, DBError* error);

  std::string sql_;
  SQLHSTMT stmt_ = SQL_NULL_HSTMT;
  Connection2Odbc* connection_;
  std::vector<DATA_XFER_SETTINGS> parameters_;
  std::vector<DATA_XFER_SETTINGS> columns_;
  std::vector<std::string> columnNames_;
  std::vector<ColumnPlan> plans_;
  std::vector<unsigned int> columnTypes_;  // and a 0 behind the last
  std::vector<void*> columnBuffers_;       // from malloc, of g_column_lengths bytes; or null
  std::vector<int> columnLengths_;
  std::vector<int> columnOffsets_ = {0};   // and the end of the data behind the last
  std::vector<const void*> columnValues_;  // of the row being packed
  std::vector<MallocBlock> columnBlocks_;  // its texts and bytes
  bool bound_ = false;                     // parameters are bound, or a result may be open
  int resultSet_ = 0;                      // -1 after an execution: no result set opened yet
  bool executed_ = false;                  // a cursor may be open
  const TransferPolicy& policy_;
  std::vector<ParameterScratch> scratch_;  // one for all parameters, or one each
};

// The usual decimal, without the checks and messages of the general parser; false leaves the text
// to that one. A driver that reports too long a text is found out by the NUL within it, which is no
// digit, and one that reports too short a text by the character behind.
inline bool PreparedStatement2Odbc::parseShortNumber(std::size_t column, const char* text,
                                                     SQLLEN reported, SQLLEN textBytes,
                                                     void* destination, int& length) const {
  if (!plans_[column].isDecimal || reported < 0 || reported >= textBytes) return false;
  const auto bytes = static_cast<std::size_t>(reported);
  auto& value = *static_cast<DataTypes::FixedDecimalValue*>(destination);
  if (text[bytes] != '\0' ||
      !DataTypes::readShortDecimal(text, bytes, columnTypes_[column], value)) {
    return false;
  }
  length = sizeof value;
  return true;
}

}  // namespace KORVEX::Zel::DB::ODBC
