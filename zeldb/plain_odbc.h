#pragma once

#include <sql.h>
#include <sqlext.h>

#include <array>
#include <string>
#include <vector>

#include "zeldb/service.h"

namespace zeldb {

// A generated row: int32, int64, double, varchar(20), timestamp(6), decimal(18,4).
struct SampleRow {
  std::int32_t number;
  std::int64_t big;
  double real;
  std::array<char, 21> text;
  std::int64_t micros;       // since 1970-01-01 UTC
  std::int64_t coefficient;  // of the decimal
};

inline constexpr std::size_t kSampleColumns = 6;
inline constexpr int kSampleBatchRows = 1000;

SampleRow makeSampleRow(int index);

// A program without the plug-in that makes the ODBC calls that the plug-in makes: what `zeldb
// bench` compares with. Operations throw Failure with the driver's message; those that write
// commit.
class PlainOdbc {
 public:
  explicit PlainOdbc(const Service& service);
  ~PlainOdbc();
  PlainOdbc(const PlainOdbc&) = delete;
  PlainOdbc& operator=(const PlainOdbc&) = delete;

  // Sample rows as arrays of kSampleBatchRows, and one by one, each value bound anew.
  void insertBatches(const std::string& sql, int rows);
  void insertRows(const std::string& sql, int rows);
  // Reads all rows in the C types that a generation asks for; returns their number.
  int fetch(const std::string& sql, int generation);

 private:
  void check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, const char* call);
  SQLHSTMT prepare(const std::string& sql);
  void sendBatch(const std::string& sql, int first, int rows);
  void commit();

  SQLHENV env_ = SQL_NULL_HENV;
  SQLHDBC dbc_ = SQL_NULL_HDBC;
  bool preparesTwice_ = false;  // where describing parameters makes arrays slow
};

}  // namespace zeldb
