#pragma once

#include <cstddef>
#include <vector>

#include "datatypes/data_value.h"
#include "host/export.h"

namespace KORVEX::Zel::DB {

class DBError;
struct RowInternal2;

// A statement of a second-generation connection, which makes and releases it; it has no virtual
// destructor. Operations return 0 or -1, and fill the error record when one is given.
class ZEL_EXPORT PreparedStatement {
 public:
  // In slot order.
  virtual int getNumberParameters(int& count, DBError* error) const = 0;
  virtual int getEffectiveNumberColumns(int& count, DBError* error) const = 0;
  virtual const char* getColumnName(std::size_t column, DBError* error) const = 0;
  virtual int getEffectiveDataType(int column, unsigned int& type, DBError* error) const = 0;
  // Parameter i takes its value from column columns[i] of a packed row, with type types[i].
  virtual int setBindings(std::vector<int>& columns, const unsigned int* types, DBError* error) = 0;
  virtual int execute(const RowInternal2* row, DBError* error) = 0;
  virtual int execute(const RowInternal2** rows, DBError* error) = 0;
  virtual int execute(std::vector<DataTypes::DataValue>& values, std::vector<unsigned int>& types,
                      DBError* error) = 0;
  virtual int execute(DBError* error) = 0;
  // Fills the caller's cells; malloc'ed text and bytes in them belong to the caller.
  virtual int nextRow(std::vector<DataTypes::DataValue>& row, DBError* error) = 0;
  // A packed row that the caller frees with free(), or null.
  virtual const RowInternal2* nextRow(DBError* error) = 0;
  virtual int hasMoreData(bool& more, DBError* error) = 0;
  virtual int nextResultSet(bool& more, DBError* error) = 0;
  virtual int nextCount(int& count, DBError* error) = 0;

 protected:
  PreparedStatement() = default;
  PreparedStatement(const PreparedStatement&) = delete;
  PreparedStatement& operator=(const PreparedStatement&) = delete;
  ~PreparedStatement() = default;
};

}  // namespace KORVEX::Zel::DB
