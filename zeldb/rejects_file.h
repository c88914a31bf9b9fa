#pragma once

#include <cstdint>
#include <string>

#include "zeldb/failure.h"
#include "zeldb/file_descriptor.h"
#include "zeldb/load_position.h"

namespace zeldb {

// The rows that were refused, as CSV: line (or row number), SQLSTATE, reason. Each is in the file
// as soon as it is added.
class RejectsFile {
 public:
  // How much of it there is.
  struct Mark {
    std::uint64_t bytes = 0;
    std::uint64_t rows = 0;
  };

  // Replaces the file. More than `maxErrors` rows are not to be borne. Throws Failure when it
  // cannot be written.
  RejectsFile(const std::string& path, std::uint64_t maxErrors);
  // Goes on with a file of an earlier load and cuts what it has behind the mark. Throws Failure
  // when it is shorter.
  RejectsFile(const std::string& path, std::uint64_t maxErrors, const Mark& mark);

  // Throws Failure with kRowsRejected when this row is one too many, after it has been written.
  void add(std::uint64_t line, const Failure& failure);

  const Mark& mark() const { return mark_; }
  // Takes back what was added since the mark.
  void rewind(const Mark& mark);
  // Returns when all of it is on the disk.
  void sync();

  std::uint64_t count() const { return mark_.rows; }
  // "37 rows rejected, named in FILE"
  std::string summary() const;

 private:
  void writeLine(const std::string& line);

  std::string path_;
  std::uint64_t maxErrors_;
  FileDescriptor file_;
  bool regular_;  // no pipe or device
  Mark mark_;
  std::uint64_t syncedBytes_ = 0;
};

}  // namespace zeldb
