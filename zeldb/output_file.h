#pragma once

#include <filesystem>
#include <fstream>

namespace zeldb {

// A file that is there whole or not at all: it is written under another name in the same folder and
// renamed when it is complete. What exists under its name stays until then. Pipes and devices are
// written to directly.
class OutputFile {
 public:
  // Throws Failure when nothing can be written there.
  explicit OutputFile(const std::filesystem::path& path);
  // Removes what has been written, unless complete() was called.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Throws std::ios_base::failure when writing fails.
  std::ostream& stream() { return stream_; }

  // Gives the file its name. Throws Failure when it cannot be written completely.
  void complete();

  // A Failure that names the file and the system's reason.
  [[noreturn]] void fail() const;

 private:
  std::filesystem::path path_;
  std::filesystem::path written_;  // where the bytes go until then
  std::ofstream stream_;
};

}  // namespace zeldb
