// CSV text: places that grow, and records that are the same when written with every field in
// quotes.

#include <vector>

#include "tests/fuzz/memory_file.h"
#include "zeldb/csv_reader.h"
#include "zeldb/failure.h"

namespace {

using Fields = std::vector<std::string>;

// The records up to the first malformed one.
std::vector<Fields> read(const MemoryFile& file, char delimiter, std::size_t sizeBytes) {
  std::vector<Fields> records;
  zeldb::CsvReader reader(file.path(), delimiter);
  zeldb::CsvRecord record;
  std::uint64_t line = 0;
  std::uint64_t byte = 0;
  try {
    while (reader.next(record)) {
      require(record.line > line && record.endLine >= record.line);
      require(record.endByte > byte && record.endByte <= sizeBytes);
      line = record.line;
      byte = record.endByte;
      records.emplace_back();
      for (const zeldb::CsvField& field : record.fields) {
        require(!field.empty || field.text.empty());
        records.back().push_back(field.text);
      }
    }
  } catch (const zeldb::Failure& failure) {
    require(failure.exitCode() == zeldb::ExitCode::kFile);
  }
  return records;
}

std::string written(const std::vector<Fields>& records, char delimiter) {
  std::string text;
  for (const Fields& fields : records) {
    const char* separator = "";
    const char between[] = {delimiter, '\0'};
    for (const std::string& field : fields) {
      text.append(separator).append("\"");
      for (const char character : field) text.append(character == '"' ? 2 : 1, character);
      text.append("\"");
      separator = between;
    }
    text.append("\n");
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static MemoryFile file;
  FuzzInput input(data, size);
  const char delimiter = input.byte() % 2 == 0 ? ',' : ';';
  const std::string text = input.rest();
  file.write(text);
  const auto records = read(file, delimiter, text.size());
  const std::string again = written(records, delimiter);
  file.write(again);
  require(read(file, delimiter, again.size()) == records);
  return 0;
}
