// bench_instructions DSN [SUFFIX]: counts, under callgrind, what the plug-in executes for a value,
// over the data source of the stub driver: for the published row, and for columns of one kind each.
// With a suffix the published row only, under names that end in it: for another allocator.

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "instructions/counted.h"
#include "rows/kinds.h"
#include "rows/reader.h"
#include "rows/writer.h"

namespace {

constexpr int kFewRows = 100;
constexpr int kManyRows = 600;

void countReading(const std::string& name, bench::Reader& reader, const std::string& kinds) {
  const auto columns = static_cast<double>(kinds.size());
  countInstructions(name.c_str(), kFewRows, kManyRows, columns, [&](int rows) {
    const bench::Query query = {"fetch " + std::to_string(rows) + " " + kinds, kinds};
    if (reader.read(query) != rows) throw std::runtime_error("rows are missing");
  });
}

void countWriting(const std::string& name, bench::Writer& writer) {
  const std::string kinds(bench::kRowKinds);
  countInstructions(name.c_str(), kFewRows, kManyRows, bench::kColumns,
                    [&](int rows) { writer.write("insert " + kinds, rows); });
}

void countRow(const bench::DataSource& source, const std::string& suffix) {
  const std::string row(bench::kRowKinds);
  countReading("plain-as-first" + suffix, *bench::makePlainReader(source, 1), row);
  countReading("first-generation" + suffix, *bench::makeFirstGenerationReader(source), row);
  countReading("plain-as-second" + suffix, *bench::makePlainReader(source, 2), row);
  countReading("second-generation" + suffix, *bench::makeSecondGenerationReader(source, false),
               row);
}

void countReadings(const bench::DataSource& source) {
  const auto plain1 = bench::makePlainReader(source, 1);
  const auto plain2 = bench::makePlainReader(source, 2);
  const auto first = bench::makeFirstGenerationReader(source);
  const auto second = bench::makeSecondGenerationReader(source, false);
  const auto safe = bench::makeSecondGenerationReader(source, true);
  const auto packed = bench::makeSecondGenerationReader(source, false, bench::Rows::kPacked);
  const std::string row(bench::kRowKinds);
  countReading("second-generation-safe", *safe, row);
  countReading("second-generation-packed", *packed, row);
  // Many columns of one kind: what a row costs besides hardly counts.
  for (const bench::Kind& kind : bench::kKinds) {
    // Few texts: the allocator keeps few blocks of a size at hand.
    const std::string columns(kind.letter == 's' ? 5 : 50, kind.letter);
    const std::string suffix = std::string("-") + kind.name;
    countReading("plain-as-first" + suffix, *plain1, columns);
    countReading("first-generation" + suffix, *first, columns);
    countReading("plain-as-second" + suffix, *plain2, columns);
    countReading("second-generation" + suffix, *second, columns);
  }
}

void countWritings(const bench::DataSource& source) {
  countWriting("plain-batch", *bench::makePlainBatchWriter(source, false));
  countWriting("first-generation-batch", *bench::makeFirstGenerationBatchWriter(source));
  countWriting("plain-rows", *bench::makePlainRowWriter(source));
  countWriting("second-generation-rows", *bench::makeSecondGenerationRowWriter(source, false));
  countWriting("second-generation-rows-safe", *bench::makeSecondGenerationRowWriter(source, true));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const bench::DataSource source = {argc > 1 ? argv[1] : "Stub", "u", "p"};
    const std::string suffix = argc > 2 ? argv[2] : "";
    countRow(source, suffix);
    if (!suffix.empty()) return 0;
    countReadings(source);
    countWritings(source);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_instructions: %s\n", error.what());
    return 1;
  }
}
