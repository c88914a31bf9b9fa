#pragma once

#include <iostream>
#include <string>

#include "odbc/odbc.h"

namespace KORVEX::Zel::DB::ODBC {

// What stands before the three parts of a record where it is printed.
struct RecordLabels {
  std::string state;
  std::string error;
  std::string message;
};

// Prints the record of `source`'s tree on standard output, a line a part, each flushed. Prints
// nothing when there is none.
inline void printRecord(Odbc& source, const RecordLabels& labels) {
  if (!source.HasInfo()) return;
  std::string state;
  long nativeError = 0;
  std::string message;
  source.GetInfo(state, nativeError, message);
  std::cout << labels.state << state << '\n' << std::flush;
  std::cout << labels.error << nativeError << '\n' << std::flush;
  std::cout << labels.message << message << '\n' << std::flush;
}

}  // namespace KORVEX::Zel::DB::ODBC
