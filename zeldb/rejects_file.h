#pragma once

#include <cstdint>
#include <fstream>
#include <string>

#include "zeldb/failure.h"

namespace zeldb {

// The rows that were refused, as CSV: line (or row number), SQLSTATE, reason. Each is in the file
// as soon as it is added.
class RejectsFile {
 public:
  // Replaces the file. More than `maxErrors` rows are not to be borne. Throws Failure when it
  // cannot be written.
  RejectsFile(const std::string& path, std::uint64_t maxErrors);

  // Throws Failure with kRowsRejected when this row is one too many, after it has been written.
  void add(std::uint64_t line, const Failure& failure);

  std::uint64_t count() const { return count_; }
  // "37 rows rejected, named in FILE"
  std::string summary() const;

 private:
  void writeLine(const std::string& line);

  std::string path_;
  std::uint64_t maxErrors_;
  std::ofstream file_;
  std::uint64_t count_ = 0;
};

}  // namespace zeldb
