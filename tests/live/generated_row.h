#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/parameter.h"
#include "tests/live/quirks.h"

namespace live {

// A column of the table that the live tests fill.
struct LiveColumn {
  const char* name;
  unsigned int type;
  std::string sqlType;
};

// A column for every type that has values; the first one, "id", numbers the rows and is never NULL.
std::vector<LiveColumn> liveColumns(const Quirks& quirks);

// Statements for a table of these columns, the first of which is its key.
std::string createTableSql(const std::string& table, const std::vector<LiveColumn>& columns);
std::string insertSql(const std::string& table, const std::vector<LiveColumn>& columns);

// How the value that came back differs from the one sent; empty when it is the same.
std::string difference(const KORVEX::Zel::DB::Parameter& sent, DataTypes::DataValue got);

// Rows of values that follow from their number alone: one in five NULL, the limits of the types,
// empty texts and bytes, text in several scripts and of lengths at which drivers' buffers end.
class GeneratedRow {
 public:
  // `inBatches`: the rows are sent as arrays, where some drivers want binaries of one length.
  GeneratedRow(const Quirks& quirks, bool inBatches)
      : quirks_(quirks),
        binaryLengthsDiffer_(!inBatches || quirks.binaryLengthsMayDiffer),
        columns_(liveColumns(quirks)) {}

  // The row's parameters, valid until the next call.
  const std::vector<KORVEX::Zel::DB::Parameter>& make(int number);

 private:
  void fill(unsigned int type, DataTypes::DataValue& value);
  void fillString(DataTypes::DataValue& value);
  void fillBinary(DataTypes::DataValue& value);
  void fillDecimal(unsigned int type, DataTypes::DataValue& value);
  std::uint64_t random();
  // A random number from -limit to limit; the limits themselves come often.
  std::int64_t upTo(std::int64_t limit);

  const Quirks& quirks_;
  bool binaryLengthsDiffer_;
  std::vector<LiveColumn> columns_;
  std::vector<KORVEX::Zel::DB::Parameter> row_;
  std::uint64_t state_ = 0;
  std::string text_;
  std::vector<unsigned char> bytes_;
};

}  // namespace live
