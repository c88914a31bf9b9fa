#pragma once

#include <string>

#include "odbc/odbc_query.h"

namespace KORVEX::Zel::DB::ODBC {

class OdbcParam;

// A prepared SQL statement. With parameters it runs either once per Execute, or, prepared as a
// batch, for all rows collected in its parameters at once. Parameters count from 1.
class OdbcStmt : public virtual Odbc, public virtual OdbcQuery {
 public:
  // In slot order.
  // Takes a new text and prepares it, making one parameter object a marker (array parameters for a
  // batch; the driver must then be able to describe parameters). Everything of the old text goes
  // first: cursor, columns, parameters, batch rows. On failure the statement is unprepared.
  virtual e_Status SetSql(const std::string& sql, bool batch) = 0;
  // Prepares the current text again, for single execution.
  virtual e_Status Parse() = 0;
  // Binds what is not bound yet and executes. e_NoData: an UPDATE or DELETE that hit no row, on
  // databases that say so. An open cursor must be closed before.
  virtual e_Status Execute() = 0;
  // Closes the cursor.
  virtual e_Status Close() = 0;
  // The number of rows the last execution changed; -1 when the driver does not know. `count`
  // changes on success only.
  virtual e_Status RowCount(int& count) = 0;
  // The parameter's object, which the statement owns, or null when there is no such parameter.
  virtual OdbcParam* GetParam(int parameter) = 0;

  // Batches. Outside a batch these three change nothing; they always return e_Ok.
  // Counts the row whose values are now in the parameters. A parameter that got no value for this
  // row gets NULL.
  virtual e_Status IncrementBatchSize() = 0;
  virtual e_Status GetBatchSize(int& rows) = 0;
  // After Execute: 0 when the row (from 0) was done, with or without a warning, -1 otherwise.
  // `status` is left alone for a row that is not in the batch.
  virtual e_Status GetBatchParamStatus(int row, int& status) = 0;
  // Takes back the values given since the last IncrementBatchSize. Called before the values of a
  // row are set, it keeps a row that failed half-way from shifting the rows behind it.
  virtual e_Status DiscardPendingRow() = 0;
};

}  // namespace KORVEX::Zel::DB::ODBC
